// What a plugin has for itself, with the id of no effect.
extern const char sfx_frei0r_effect[];
const char sfx_frei0r_effect[] = "no-such-effect";
