/*
 * The module as an outside program sees it: one exported name, tables of operations counted from 0, and
 * records.
 *
 * Nothing here comes from the module's own headers; the slot numbers, the record layouts and the codes are
 * written down a second time on purpose, so that a change on one side only is noticed.
 */
#ifndef ABI_MODULE_H
#define ABI_MODULE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* ---- result codes, format codes, property types --------------------------------------------------- */

enum { SUCCESS = 0 };
#define INVALID_ARGUMENT UINT32_C(0x80070057)
#define FAILURE UINT32_C(0x80004005)
#define NOT_IMPLEMENTED UINT32_C(0x80004001)

enum { PLANAR = 0, PACKED = 2 };
enum { NO_PROPERTY = -1, INTEGER = 0, BOOLEAN = 3, COLOR = 6 };
enum { LARGEST_SIDE = 16384, TEXT_SIZE = 256 };

/* ---- records -------------------------------------------------------------------------------------- */

typedef uint16_t Wide; /* one UTF-16 unit */

typedef struct {
    uint32_t data1;
    uint16_t data2, data3;
    uint8_t data4[8];
} Guid;

typedef struct {
    uint32_t reserved;
    int32_t width, height, format;
} Stream;

typedef struct {
    int32_t format;
    uint8_t* plane[3];
    uint32_t reserved;
    int32_t plane_size[3];
} Image;

typedef struct {
    uint32_t reserved[3];
    Image* image;
} Frame;

typedef struct {
    uint32_t cookie;
    char *name, *value;
} Property;

typedef struct {
    uint32_t cookie;
    Wide *name, *value;
} WideProperty;

typedef struct {
    uint32_t cookie;
    char *name, *path;
    uint32_t reserved[2];
} Settings;

typedef struct {
    uint32_t cookie;
    Wide *name, *path;
    uint32_t reserved[2];
} WideSettings;

_Static_assert(sizeof(Guid) == 16, "a GUID is 16 bytes");
_Static_assert(sizeof(Stream) == 16 && offsetof(Stream, format) == 12, "four words");
#if UINTPTR_MAX == UINT64_MAX
_Static_assert(offsetof(Image, format) == 0 && offsetof(Image, plane) == 8 &&
                   offsetof(Image, reserved) == 32 && offsetof(Image, plane_size) == 36 &&
                   sizeof(Image) == 48,
               "image record");
_Static_assert(offsetof(Frame, image) == 16 && sizeof(Frame) == 24, "frame record");
_Static_assert(offsetof(Property, cookie) == 0 && offsetof(Property, name) == 8 &&
                   offsetof(Property, value) == 16 && sizeof(Property) == 24 &&
                   sizeof(WideProperty) == sizeof(Property),
               "property record");
_Static_assert(offsetof(Settings, name) == 8 && offsetof(Settings, path) == 16 &&
                   offsetof(Settings, reserved) == 24 && sizeof(Settings) == 32 &&
                   sizeof(WideSettings) == sizeof(Settings),
               "settings record");
#endif

/* ---- objects -------------------------------------------------------------------------------------- */

/* The first word of every object points to its table of operations. */
typedef void (*Operation)(void);
typedef struct {
    const Operation* operations;
} Factory;
typedef struct {
    const Operation* operations;
} Effect;
typedef struct {
    const Operation* operations;
} Description;

/* Loads the library at `path`; ends the program with a message when that fails. */
void load_module(const char* path);

/* Unloads and loads it again. */
void reload_module(void);

/* The address of an exported name, or null. */
void* exported(const char* name);

/* CreateSpecialEffectFactory */
Factory* create_factory(void);

/* ---- the factory's slots -------------------------------------------------------------------------- */

static inline uint32_t add_ref(Factory* f) {
    return ((uint32_t(*)(Factory*))f->operations[0])(f);
}
static inline uint32_t release(Factory* f) {
    return ((uint32_t(*)(Factory*))f->operations[1])(f);
}
static inline uint32_t create_effect(Factory* f, Guid id, uint32_t ignored, Effect** out) {
    return ((uint32_t(*)(Factory*, Guid, uint32_t, Effect**))f->operations[2])(f, id, ignored, out);
}
static inline void destroy_effect(Factory* f, Effect* effect) {
    ((void (*)(Factory*, Effect*))f->operations[3])(f, effect);
}
static inline uint32_t reserved_query(Factory* f, uint32_t a, uint32_t b, uint32_t c, uint32_t d,
                                      uint32_t e) {
    return ((uint32_t(*)(Factory*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t))f->operations[4])(
        f, a, b, c, d, e);
}
static inline uint32_t enumerate_effects(Factory* f, Guid* list, uint32_t* count) {
    return ((uint32_t(*)(Factory*, Guid*, uint32_t*))f->operations[5])(f, list, count);
}
static inline void reserved_no_op(Factory* f) {
    ((void (*)(Factory*))f->operations[6])(f);
}
static inline void* delete_factory(Factory* f, uint32_t flags) {
    return ((void* (*)(Factory*, uint32_t))f->operations[7])(f, flags);
}

/* ---- an effect's slots ---------------------------------------------------------------------------- */

static inline void* delete_effect(Effect* e, uint32_t flags) {
    return ((void* (*)(Effect*, uint32_t))e->operations[0])(e, flags);
}
static inline uint32_t get_filter_flags(Effect* e, uint32_t* flags) {
    return ((uint32_t(*)(Effect*, uint32_t*))e->operations[1])(e, flags);
}
static inline uint32_t get_supported_formats(Effect* e, int32_t* list, int32_t* count) {
    return ((uint32_t(*)(Effect*, int32_t*, int32_t*))e->operations[2])(e, list, count);
}
static inline uint32_t configure(Effect* e, Stream* stream) {
    return ((uint32_t(*)(Effect*, Stream*))e->operations[3])(e, stream);
}
static inline uint32_t load_settings_wide(Effect* e, WideSettings* settings) {
    return ((uint32_t(*)(Effect*, WideSettings*))e->operations[4])(e, settings);
}
static inline uint32_t load_settings(Effect* e, Settings* settings) {
    return ((uint32_t(*)(Effect*, Settings*))e->operations[5])(e, settings);
}
static inline uint32_t process_frame(Effect* e, Frame* frame) {
    return ((uint32_t(*)(Effect*, Frame*))e->operations[6])(e, frame);
}
static inline uint32_t set_property_wide(Effect* e, WideProperty* property) {
    return ((uint32_t(*)(Effect*, WideProperty*))e->operations[7])(e, property);
}
static inline uint32_t set_property(Effect* e, Property* property) {
    return ((uint32_t(*)(Effect*, Property*))e->operations[8])(e, property);
}
static inline uint32_t apply_property_wide(Effect* e, WideProperty* property, int32_t argument) {
    return ((uint32_t(*)(Effect*, WideProperty*, int32_t))e->operations[9])(e, property, argument);
}
static inline uint32_t apply_property(Effect* e, Property* property, int32_t argument) {
    return ((uint32_t(*)(Effect*, Property*, int32_t))e->operations[10])(e, property, argument);
}
static inline uint32_t get_property_wide(Effect* e, WideProperty* property) {
    return ((uint32_t(*)(Effect*, WideProperty*))e->operations[11])(e, property);
}
static inline uint32_t get_property(Effect* e, Property* property) {
    return ((uint32_t(*)(Effect*, Property*))e->operations[12])(e, property);
}
static inline uint32_t shutdown_effect(Effect* e) {
    return ((uint32_t(*)(Effect*))e->operations[13])(e);
}
static inline uint32_t flush(Effect* e, uint32_t ignored) {
    return ((uint32_t(*)(Effect*, uint32_t))e->operations[14])(e, ignored);
}
static inline Description* get_internal_info(Effect* e) {
    return ((Description * (*)(Effect*)) e->operations[15])(e);
}
static inline int32_t filter_prop_count(Effect* e) {
    return ((int32_t(*)(Effect*))e->operations[16])(e);
}
typedef int32_t (*WidePropTypeInfo)(const void*, int32_t, Wide*, uint32_t, Wide*, uint32_t, Wide*, uint32_t);
typedef int32_t (*PropTypeInfo)(const void*, int32_t, char*, uint32_t, char*, uint32_t, char*, uint32_t);
static inline int32_t filter_prop_type_info_wide(Effect* e, int32_t index, Wide* name, uint32_t name_length,
                                                 Wide* initial, uint32_t initial_length, Wide* range,
                                                 uint32_t range_length) {
    return ((WidePropTypeInfo)e->operations[17])(e, index, name, name_length, initial, initial_length, range,
                                                 range_length);
}
static inline int32_t filter_prop_type_info(Effect* e, int32_t index, char* name, uint32_t name_size,
                                            char* initial, uint32_t initial_size, char* range,
                                            uint32_t range_size) {
    return ((PropTypeInfo)e->operations[18])(e, index, name, name_size, initial, initial_size, range,
                                             range_size);
}

/* ---- slots of the object that get_internal_info returns ------------------------------------------- */

static inline int32_t get_name_wide(Description* d, Wide* name, int32_t length) {
    return ((int32_t(*)(Description*, Wide*, int32_t))d->operations[0])(d, name, length);
}
static inline int32_t get_name(Description* d, char* name, uint32_t size) {
    return ((int32_t(*)(Description*, char*, uint32_t))d->operations[1])(d, name, size);
}
static inline int32_t prop_count(Description* d) {
    return ((int32_t(*)(Description*))d->operations[2])(d);
}
static inline int32_t prop_type_info_wide(Description* d, int32_t index, Wide* name, uint32_t name_length,
                                          Wide* initial, uint32_t initial_length, Wide* range,
                                          uint32_t range_length) {
    return ((WidePropTypeInfo)d->operations[3])(d, index, name, name_length, initial, initial_length, range,
                                                range_length);
}
static inline int32_t prop_type_info(Description* d, int32_t index, char* name, uint32_t name_size,
                                     char* initial, uint32_t initial_size, char* range, uint32_t range_size) {
    return ((PropTypeInfo)d->operations[4])(d, index, name, name_size, initial, initial_size, range,
                                            range_size);
}

#endif
