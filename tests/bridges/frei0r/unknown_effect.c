// The source of a plugin, with an id that no effect has.
extern const char sfx_frei0r_effect[];
const char sfx_frei0r_effect[] = "no-such-effect";
