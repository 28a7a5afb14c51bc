/*
 * libsfx: live video effects behind a flat C interface.
 *
 *     #include <sfx/sfx.h>
 *
 *     sfx_effect *effect;
 *     if (sfx_create("sepia+rain:drop-size=9", &effect) < 0) {
 *         fprintf(stderr, "%s\n", sfx_message());
 *         return 1;
 *     }
 *     for each frame
 *         sfx_process(effect, &picture, nanoseconds);      // changes the picture in place
 *     sfx_destroy(effect);
 *
 * Texts.  All texts are UTF-8 and terminated. Texts that the library returns belong to the library; those of
 * the lists (sfx_effect_info, sfx_preset_info) stay valid until the library is unloaded. The library copies
 * the texts that it is given. A relative path means what it means at the time of the call.
 *
 * Status.  Operations return a sfx_status. Negative: an error, and nothing was done unless the description
 * says otherwise. 0: done. Positive: done, with something worth reporting. After any result but 0,
 * sfx_message() describes it in a sentence. A null pointer where none is allowed is SFX_ERROR_ARGUMENT.
 *
 * Threads.  All functions may be called from any thread at any time, also for one effect: each effect has a
 * lock of its own, which a call holds until it returns. A setting may therefore be changed on one thread
 * while another processes frames; it takes effect from the next frame on. Only sfx_destroy must not run
 * beside another call for the same effect. Nothing is shared between effects: the same calls give the same
 * frames, independent of other effects.
 *
 * Versions.  Structures have a size as their first member and may grow at their end in later versions of
 * this major version. Read the structures of the lists through the pointers that the library gives, and set
 * struct_size of a sfx_picture to sizeof(sfx_picture); SFX_PICTURE_INIT and sfx_picture_layout do it.
 *
 * Nothing here throws, ends the process, reads the environment beyond the folders named below, or
 * writes to the current directory.
 */
#ifndef SFX_SFX_H
#define SFX_SFX_H

#include <stddef.h>
#include <stdint.h>

#if defined(SFX_STATIC)
#define SFX_API
#elif defined(_WIN32) && defined(SFX_BUILDING)
#define SFX_API __declspec(dllexport)
#elif defined(_WIN32)
#define SFX_API __declspec(dllimport)
#elif defined(__GNUC__)
#define SFX_API __attribute__((visibility("default")))
#else
#define SFX_API
#endif

#ifdef __cplusplus
#define SFX_NOEXCEPT noexcept
extern "C" {
#else
#define SFX_NOEXCEPT
#endif

/* ---- version ------------------------------------------------------------------------------------------ */

#define SFX_VERSION_MAJOR 1
#define SFX_VERSION_MINOR 0
#define SFX_VERSION_PATCH 0
/* One number that grows with each version. */
#define SFX_VERSION (SFX_VERSION_MAJOR * 10000 + SFX_VERSION_MINOR * 100 + SFX_VERSION_PATCH)

/* The version of the library that runs, in the form of SFX_VERSION, and as "1.0.0". */
SFX_API int sfx_version(void) SFX_NOEXCEPT;
SFX_API const char* sfx_version_text(void) SFX_NOEXCEPT;

/* ---- status ------------------------------------------------------------------------------------------- */

typedef enum sfx_status {
    SFX_OK = 0,
    SFX_CLAMPED = 1,         /* a value was out of range; the nearest bound was set */
    SFX_DATA_MISSING = 2,    /* a data file cannot be had; the effect runs without it */
    SFX_ERROR_ARGUMENT = -1, /* a null pointer, an index out of range, a structure of an unknown size */
    SFX_ERROR_UNKNOWN = -2,  /* no such effect, preset, property or value name */
    SFX_ERROR_VALUE = -3,    /* a text that does not have the required form */
    SFX_ERROR_PICTURE = -4,  /* a format, size, stride, plane, matrix or range that is refused */
    SFX_ERROR_FILE = -5,     /* a file that cannot be read, or does not hold what it should */
    SFX_ERROR_MEMORY = -6,   /* out of memory; the effect stays usable */
    SFX_ERROR_FAILED = -7    /* the effect failed on this frame */
} sfx_status;

/* A short constant text for a status, such as "out of memory". Never null. */
SFX_API const char* sfx_status_text(int32_t status) SFX_NOEXCEPT;

/*
 * The message of the last call on this thread that returned anything but SFX_OK; "" before the first. For
 * unknown names it suggests near ones. The text stays valid until the next call of the library on this
 * thread.
 */
SFX_API const char* sfx_message(void) SFX_NOEXCEPT;

/* ---- the list of effects ------------------------------------------------------------------------------ */

typedef enum sfx_type {
    SFX_INTEGER = 0, /* minimum to maximum */
    SFX_BOOLEAN = 1, /* 0 or 1 */
    SFX_COLOR = 2,   /* 0xRRGGBB */
    SFX_CHOICE = 3   /* an integer from minimum to maximum whose values have names */
} sfx_type;

/* A named value of a property. This structure never grows. */
typedef struct sfx_choice {
    int32_t value;
    const char* id;          /* lower case, dashed: "regular-stars" */
    const char* description; /* a few words, for people */
} sfx_choice;

typedef struct sfx_property_info {
    size_t struct_size;
    const char* id;          /* lower case, dashed: "drop-size" */
    const char* name;        /* for people: "Drop size" */
    const char* description; /* one sentence */
    sfx_type type;
    int32_t minimum, maximum; /* inclusive */
    int32_t start;            /* of a new effect, from minimum to maximum; where it depends on the size of
                                 pictures (tile-size of tiled-up), at 640 by 480 */
    size_t choice_count;      /* above 0 for SFX_CHOICE; a boolean may have names for its two values */
    const sfx_choice* choices;
} sfx_property_info;

enum {
    SFX_HAS_MEMORY = 1,  /* a frame depends on earlier frames; a still picture shows less */
    SFX_MOVES = 2,       /* a still picture gives a different frame each time */
    SFX_NEEDS_DATA = 4,  /* reads data_file */
    SFX_USES_CHANCE = 8, /* depends on the seed */
    SFX_USES_TIME = 16,  /* reads the clock, which follows the time stamps of frames */
    SFX_LISTED = 32      /* among those that hosts of the module's own contract are shown */
};

typedef struct sfx_effect_info {
    size_t struct_size;
    const char* id;          /* lower case, dashed, unique: "sketch-2" */
    const char* guid;        /* "{4DD74959-BE0F-44B1-92B6-043DC61D9F39}" */
    const char* name;        /* for people; the variants of an effect share it: "Sketch" */
    const char* title;       /* for people, unique: "Sketch 2" */
    const char* kind;        /* "tone", "distortion", "drawing", "time", "animated" or "faces" */
    const char* description; /* one sentence */
    int32_t variant;         /* number of the variant, 0 or more; -1 where there is only one */
    uint32_t flags;          /* SFX_HAS_MEMORY and so on */
    const char* data_file;   /* name of the file for SFX_NEEDS_DATA, else null */
    size_t property_count;
    const sfx_property_info* const* properties;
} sfx_effect_info;

/* Effects, in a constant order. Null for an index of sfx_effect_count() or more. */
SFX_API size_t sfx_effect_count(void) SFX_NOEXCEPT;
SFX_API const sfx_effect_info* sfx_effect_at(size_t index) SFX_NOEXCEPT;

/*
 * The effect with this id, GUID (braces optional), title or name; a name that variants share means the first
 * of them. Case does not matter; blanks and underscores count as dashes. Null, with a message, when there is
 * no such effect.
 */
SFX_API const sfx_effect_info* sfx_find(const char* text) SFX_NOEXCEPT;

/* ---- presets ------------------------------------------------------------------------------------------ */

typedef struct sfx_preset_info {
    size_t struct_size;
    const char* id;          /* "noir" */
    const char* title;       /* for people: "Noir" */
    const char* description; /* one sentence */
    const char* effect;      /* the effect's text: "spot-light-2+gray-scale" */
    int32_t is_user;         /* 1: from a file of the user's */
} sfx_preset_info;

/*
 * Presets are effect texts with a name, usable as "preset:noir". They come from these files; a later one may
 * replace a preset of an earlier one:
 *   presets.ini in the installed data folder, or, without it, a copy inside the library;
 *   $XDG_CONFIG_HOME/specialeffects/presets.ini, by default in ~/.config; on Windows in %APPDATA%;
 *   files given to sfx_load_presets.
 * The first two are read once, when presets are first asked for. A preset whose text is not valid is left
 * out. A file has a section for each preset:
 *
 *     [noir]
 *     title = Noir
 *     description = Black and white, in a bright beam of light from above.
 *     effect = spot-light-2+gray-scale
 *
 * Lines that begin with # or ; are comments. Ids have lower-case letters, digits and dashes. A preset's text
 * names no other presets.
 */
SFX_API size_t sfx_preset_count(void) SFX_NOEXCEPT;
/* Null for an index of sfx_preset_count() or more. */
SFX_API const sfx_preset_info* sfx_preset_at(size_t index) SFX_NOEXCEPT;

/*
 * Adds the presets of a file of at most 16 MB. SFX_ERROR_FILE: it cannot be read. SFX_ERROR_VALUE: a line has
 * another form, or a preset's effect is not valid; the message names the line, and no preset was added.
 */
SFX_API sfx_status sfx_load_presets(const char* path) SFX_NOEXCEPT;

/* ---- life --------------------------------------------------------------------------------------------- */

/* One effect, or several that are applied in a row. */
typedef struct sfx_effect sfx_effect;

/*
 * Creates what a text describes:
 *
 *     text     = link { "+" link }                          applied from left to right
 *     link     = effect [ ":" settings ] | "preset:" id     a preset stands for its own links
 *     settings = property "=" value { "," property "=" value }
 *
 * An effect is named as for sfx_find, a property by its id or by the name that the module has for it
 * ("drop-size", "DropSize"). Values: a whole number; true, false, yes, no, on, off, 1, 0; "#rrggbb" or
 * "red,green,blue" in decimal; the id of a choice or its number. Numbers out of range are clamped. A later
 * setting of a property replaces an earlier one. Blanks around names and values do not matter; case does not
 * matter. At most 64 links. Examples: "sketch-2", "rain:drop-size=9,drop-period=2", "sepia+preset:noir".
 *
 * Stores the new effect, which belongs to the caller, or null. SFX_CLAMPED: created, with a clamped value.
 * SFX_ERROR_UNKNOWN, SFX_ERROR_VALUE, SFX_ERROR_MEMORY: not created.
 */
SFX_API sfx_status sfx_create(const char* text, sfx_effect** effect) SFX_NOEXCEPT;

/* A new effect with the same links, settings, seed, data folder and settings files, but no history. */
SFX_API sfx_status sfx_clone(const sfx_effect* effect, sfx_effect** copy) SFX_NOEXCEPT;

/* Null is ignored. */
SFX_API void sfx_destroy(sfx_effect* effect) SFX_NOEXCEPT;

/* Number of links; 0 for null. */
SFX_API size_t sfx_link_count(const sfx_effect* effect) SFX_NOEXCEPT;
/* What a link is; null for an index out of range. Counted from 0. */
SFX_API const sfx_effect_info* sfx_link_info(const sfx_effect* effect, size_t link) SFX_NOEXCEPT;

/*
 * Writes the effect as a text that creates the same effect: ids, and what has been set. Works like snprintf:
 * writes at most size bytes with the terminator (none when size is 0; buffer may then be null), and returns
 * the length of the whole text without terminator, or a negative sfx_status.
 */
SFX_API int sfx_print(const sfx_effect* effect, char* buffer, size_t size) SFX_NOEXCEPT;

/* ---- settings ----------------------------------------------------------------------------------------- */

/*
 * A property is named by its id ("drop-size") or the module's name for it ("DropSize"). In a row of several
 * effects that means the first effect that has the property; "2.drop-size" means link 2, counted from 0.
 *
 * Settings survive changes of size and sfx_reset. A new value takes effect with the next frame.
 * SFX_ERROR_UNKNOWN: no such property (or choice). SFX_ERROR_VALUE: the text is not a value of the property's
 * type. SFX_CLAMPED: the nearest bound was set.
 */

/* A value as text, in the forms that sfx_create takes. */
SFX_API sfx_status sfx_set(sfx_effect* effect, const char* property, const char* value) SFX_NOEXCEPT;
/* A value as number, for every type: 0xRRGGBB for a colour, and any value but 0 is true. */
SFX_API sfx_status sfx_set_int(sfx_effect* effect, const char* property, int32_t value) SFX_NOEXCEPT;

/* Large enough for every value's text with its terminator. */
#define SFX_VALUE_SIZE 64

/*
 * The present value, what has been set since the last frame included: as number; or as text, "9", "true",
 * "#0000c0" or the id of a choice. The text is cut to size bytes with the terminator; a size of 0 is
 * SFX_ERROR_ARGUMENT.
 */
SFX_API sfx_status sfx_get(const sfx_effect* effect, const char* property, char* buffer,
                           size_t size) SFX_NOEXCEPT;
SFX_API sfx_status sfx_get_int(const sfx_effect* effect, const char* property, int32_t* value) SFX_NOEXCEPT;

/*
 * Gives all properties of all links their starting values, and forgets settings files. Starts the effect
 * anew, like sfx_reset.
 */
SFX_API sfx_status sfx_set_defaults(sfx_effect* effect) SFX_NOEXCEPT;

/*
 * Reads a settings file into every link that takes one: Line Art (three numbers: its background colour) and
 * Picture Me (a cascade of another object). SFX_ERROR_UNKNOWN: no link takes one. SFX_ERROR_FILE: it is not a
 * regular file, is larger than 16 MB or cannot be read. All links take the file or, after an error, none
 * does. (For a file that is not a cascade the module prints a line to the standard error stream, and finds no
 * faces.)
 */
SFX_API sfx_status sfx_load_settings(sfx_effect* effect, const char* path) SFX_NOEXCEPT;

/*
 * Every link has a random generator of its own; that of link n starts with seed + n. The default is 1. The
 * generator starts when the effect is created, and again here and in sfx_reset: setting the seed starts the
 * effect anew, like sfx_reset.
 */
#define SFX_DEFAULT_SEED 1u
SFX_API sfx_status sfx_set_seed(sfx_effect* effect, uint32_t seed) SFX_NOEXCEPT;
SFX_API sfx_status sfx_get_seed(const sfx_effect* effect, uint32_t* seed) SFX_NOEXCEPT;

/*
 * Where data files are looked for: first in this folder (null: none, the default), then in the installed
 * data folder, then in $XDG_CACHE_HOME/specialeffects, by default ~/.cache/specialeffects, on Windows
 * %LOCALAPPDATA%/specialeffects. The noise file of Clouds is made once when it is in none of them, in the
 * given folder or, where that cannot be written or none is given, in the cache folder; that takes a second or
 * two, in sfx_prepare or in the first frame. Takes effect when the effect is next configured (first frame,
 * change of size, sfx_reset).
 */
SFX_API sfx_status sfx_set_data_folder(sfx_effect* effect, const char* folder) SFX_NOEXCEPT;

/* ---- pictures ----------------------------------------------------------------------------------------- */

typedef enum sfx_format {
    /* Planar YUV. Chroma planes are (width + 1) / 2 wide except in I444, and (height + 1) / 2 high in the
       first four. */
    SFX_I420 = 0, /* planes Y, U, V */
    SFX_YV12 = 1, /* planes Y, V, U */
    SFX_NV12 = 2, /* planes Y, then U and V by turns */
    SFX_NV21 = 3, /* planes Y, then V and U by turns */
    SFX_I422 = 4, /* planes Y, U, V */
    SFX_I444 = 5, /* planes Y, U, V */
    /* Packed YUV 4:2:2, one plane; rows have (width + 1) / 2 groups of 4 bytes. */
    SFX_YUY2 = 6, /* Y U Y V */
    SFX_UYVY = 7, /* U Y V Y */
    /* Packed RGB, one plane; named in the order of the bytes in memory. Alpha is never changed. */
    SFX_RGB24 = 8,
    SFX_BGR24 = 9,
    SFX_RGBA = 10, /* also for RGBx and so on: the fourth byte is left alone */
    SFX_BGRA = 11,
    SFX_ARGB = 12,
    SFX_ABGR = 13
} sfx_format;
#define SFX_FORMAT_COUNT 14

/* How RGB pictures and luma and chroma correspond. Pictures that are YUV already have no use for it. */
typedef enum sfx_matrix {
    SFX_BT601 = 0, /* the default; the colours that effects paint are made for it */
    SFX_BT709 = 1,
    SFX_BT2020 = 2 /* non-constant luminance */
} sfx_matrix;
typedef enum sfx_range {
    SFX_LIMITED = 0, /* luma 16 to 235, chroma 16 to 240 */
    SFX_FULL = 1     /* 0 to 255 */
} sfx_range;

#define SFX_MAX_SIDE 16384

typedef struct sfx_picture {
    size_t struct_size;    /* sizeof(sfx_picture) */
    int32_t format;        /* a sfx_format */
    int32_t width, height; /* pixels, 1 to SFX_MAX_SIDE */
    int32_t matrix;        /* a sfx_matrix: with this one effects see RGB pictures */
    int32_t range;         /* a sfx_range, likewise */
    uint8_t* planes[4];    /* first pixel of the top row of each plane; the caller's */
    ptrdiff_t strides[4];  /* bytes from a row to the one below; negative for bottom-up pictures; 0: tight */
    size_t sizes[4];       /* bytes of each plane, from the lowest address of its rows on; 0: unknown, the
                              planes are assumed large enough */
} sfx_picture;

/* clang-format off */
#define SFX_PICTURE_INIT \
    { sizeof(sfx_picture), SFX_I420, 0, 0, SFX_BT601, SFX_LIMITED, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0} }
/* clang-format on */

/* "i420", "rgba" and so on; null for an unknown format. */
SFX_API const char* sfx_format_name(int32_t format) SFX_NOEXCEPT;
/* SFX_ERROR_UNKNOWN: no such name. Case does not matter. */
SFX_API sfx_status sfx_format_from_name(const char* name, int32_t* format) SFX_NOEXCEPT;
/* Number of planes; 0 for an unknown format. */
SFX_API int32_t sfx_format_planes(int32_t format) SFX_NOEXCEPT;
/* Rows, and bytes in a row, of a plane of a format at a size; 0 for what there is not. */
SFX_API int32_t sfx_plane_rows(int32_t format, int32_t plane, int32_t height) SFX_NOEXCEPT;
SFX_API size_t sfx_plane_row_bytes(int32_t format, int32_t plane, int32_t width) SFX_NOEXCEPT;

/*
 * Lays a picture of tight planes, one after the other, over memory: fills in all members, with the default
 * matrix and range. Returns the bytes that the picture needs, or 0 for a format or size that is refused.
 * With null pixels the planes are null, and only strides and sizes are filled in; picture may be null.
 */
SFX_API size_t sfx_picture_layout(sfx_picture* picture, int32_t format, int32_t width, int32_t height,
                                  void* pixels) SFX_NOEXCEPT;

/* ---- frames ------------------------------------------------------------------------------------------- */

/* No time stamp: the frame comes 1/30 s after the one before it. */
#define SFX_NO_TIME INT64_MIN

/*
 * Applies the effect to a picture, in place.
 *
 * The time stamp is in nanoseconds. Only differences count, so any origin will do: an effect's clock starts
 * with its first frame and advances by the difference to the frame before. It stands still where a time
 * stamp is earlier than the one before.
 *
 * A change of width or height is not an error: the effect starts anew at the new size, like after sfx_reset;
 * format, strides, matrix and range may change at any time and disturb nothing.
 *
 * Effects work on planar YUV 4:2:0 of even size. An I420 or YV12 picture of even size whose rows are tight is
 * changed directly, without any copy. Otherwise:
 *   Strides: planes whose rows are not tight are copied.
 *   Odd sizes: the last column and row are repeated; the effect sees the even size.
 *   4:2:2 and 4:4:4: a chroma sample of 4:2:0 is the mean of the samples that it stands for, halves up; on
 *     the way back it is repeated. Where the effect leaves all chroma of a frame alone, the picture's chroma
 *     is not touched.
 *   RGB: luma for each pixel and chroma for the mean of 2 by 2 pixels, by the matrix and range. On the way
 *     back, where the effect leaves all chroma of a frame alone, the change of luma is added to the red,
 *     green and blue of each pixel, so that detail of colour is kept, and a pixel whose luma is unchanged
 *     stays as it is; otherwise pixels are computed from luma and chroma.
 *
 * SFX_DATA_MISSING: done; reported once after each configuration. SFX_ERROR_PICTURE: the picture is refused.
 * SFX_ERROR_MEMORY, SFX_ERROR_FAILED: no link, or only some of them, changed the picture.
 */
SFX_API sfx_status sfx_process(sfx_effect* effect, const sfx_picture* picture, int64_t time) SFX_NOEXCEPT;

/*
 * Gets ready for pictures of a size: takes memory, builds tables, reads or makes data files. Optional:
 * sfx_process does it when needed, but it can take long. Call it on a thread that may wait, before frames
 * run; to change a running effect without a pause, prepare a clone and put it in the place of the old one.
 * Does nothing when the effect is ready for that size. SFX_DATA_MISSING: done, without the file.
 */
SFX_API sfx_status sfx_prepare(sfx_effect* effect, int32_t width, int32_t height) SFX_NOEXCEPT;

/* Starts anew: forgets history and time, starts the generators again. Keeps settings. */
SFX_API sfx_status sfx_reset(sfx_effect* effect) SFX_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
