// The contract between a host and an effect: records, result codes and the two exported interfaces.
//
// A host may know nothing but slot numbers and record layouts. Slot n of an interface is entry n of the
// object's table of virtual operations; the order of the declarations below is therefore the interface, and
// nothing may be put between them. The destructor of slot 0 is an ordinary virtual operation, because a C++
// virtual destructor would take two entries with this target's compilers and shift all that follow.
#ifndef SPECIALEFFECTS_FRAMEWORK_SPECIALEFFECTFILTER_H
#define SPECIALEFFECTS_FRAMEWORK_SPECIALEFFECTFILTER_H

#include <cstddef>
#include <cstdint>

// On Windows: exported while the DLL is built, imported by hosts, neither with SPECIALEFFECTS_STATIC.
#if !defined(_WIN32)
#define SPECIALEFFECTS_API __attribute__((visibility("default")))
#elif defined(SPECIALEFFECTS_STATIC)
#define SPECIALEFFECTS_API
#elif defined(SPECIALEFFECTS_BUILDING)
#define SPECIALEFFECTS_API __declspec(dllexport)
#else
#define SPECIALEFFECTS_API __declspec(dllimport)
#endif

// Declares the wide form of an operation in one slot and the narrow form in the next. Compilers for
// Microsoft's ABI give overloads of one name neighbouring slots in the reverse order of their declarations.
#if defined(_MSC_VER)
#define SPECIALEFFECTS_WIDE_AND_NARROW(wide, narrow) \
    narrow;                                          \
    wide
#else
#define SPECIALEFFECTS_WIDE_AND_NARROW(wide, narrow) \
    wide;                                            \
    narrow
#endif

/// Outcome of an effect operation.
using ResultCode = uint32_t;

inline constexpr ResultCode kSuccess = 0;
/// A null required pointer, a format code other than 0 or 2, a property name that the effect does not have,
/// a size below 1 or above 16384, a buffer that is too short.
inline constexpr ResultCode kInvalidArgument = 0x80070057;
/// A frame whose format differs from the configured one, a workspace that does not exist, a file that cannot
/// be opened, an unknown effect.
inline constexpr ResultCode kFailure = 0x80004005;
/// A format that the effect advertises but does not process.
inline constexpr ResultCode kNotImplemented = 0x80004001;
/// Memory ran out in `SetProperty`, `LoadSettings` or `ProcessFrame`; on Windows also in `Configure`. The
/// effect has released its workspace, unless settings were only to be read: frames give kFailure until
/// `Configure` succeeds.
inline constexpr ResultCode kOutOfMemory = 0x8007000E;
/// A text was cut to fit its buffer.
inline constexpr ResultCode kTextTruncated = 0x8007007A;

/// Planar YUV 4:2:0: luma width by height with a row step of width bytes; chroma width/2 by height/2.
inline constexpr int32_t kFormatPlanar = 0;
/// Packed 24-bit pixels, 3 bytes a pixel, row step 3 * width.
inline constexpr int32_t kFormatPacked = 2;

/// Characters of a wide operation's texts: 16-bit, UTF-16.
#if defined(_WIN32)
using WideChar = wchar_t;
#else
using WideChar = char16_t;
#endif

/// The stream that `Configure` gets ready for.
struct StreamDescription {
    uint32_t Reserved;  ///< stored with the rest; no effect reads it
    int32_t Width;      ///< pixels, 1 to 16384
    int32_t Height;     ///< pixels, 1 to 16384
    int32_t Format;     ///< kFormatPlanar or kFormatPacked
};

/// A picture. The planes are input and output; they belong to the host.
///
/// The planes must be as large as the format says at the configured size: `PlaneSize` is not checked against
/// it. These effects alone look at `PlaneSize`, and 0 or less counts there as 0 unless said otherwise:
///   Gray Scale, X-Ray            fill as many chroma bytes; X-Ray replaces at most as many luma bytes
///   Bulge, Fish Eye, Blockhead   write at most as many bytes of each plane of a planar frame
///   Antiquated Movie, Chrome,    at odd sizes fill chroma up to width * height / 4 bytes, as far as it says
///     Graphic Pen, Line Art,
///     Plaster
///   Sepia, Comic Book            at odd sizes take chroma planes of (width + 1) / 2 by (height + 1) / 2
///                                when it says that much, or when it is 0 or less and width / 2 by height / 2
///                                is not empty; else of width / 2 by height / 2
struct ImageRecord {
    int32_t Format;        ///< format code of this frame
    uint8_t* Plane[3];     ///< Y, U, V; packed pictures use Plane[0] only
    uint32_t Reserved;     ///< no effect reads it
    int32_t PlaneSize[3];  ///< bytes in each plane; see above
};

struct FrameRecord {
    uint32_t Reserved[3];  ///< the host's own; no effect reads them
    ImageRecord* Image;
};

/// One property by name, both as text. `GetProperty` writes `Value`, and in its wide form `Name` as well:
/// both buffers then hold 256 characters.
template <class Char>
struct BasicPropertyRecord {
    uint32_t Cookie;  ///< passed through, never read
    Char* Name;
    Char* Value;
};
using PropertyRecord = BasicPropertyRecord<char>;
using WidePropertyRecord = BasicPropertyRecord<WideChar>;

template <class Char>
struct BasicSettingsRecord {
    uint32_t Cookie;  ///< passed through, never read
    Char* Name;       ///< passed through, never read
    Char* Path;       ///< path of a settings file
    uint32_t Reserved[2];
};
using SettingsRecord = BasicSettingsRecord<char>;
using WideSettingsRecord = BasicSettingsRecord<WideChar>;

/// Rectangle of interest in luma pixels, rows from the top: `right` and `bottom` are its last column and row.
/// All zero means none.
struct RegionRect {
    int32_t left, right, top, bottom;
};

struct RegionRecord {
    uint32_t Reserved;
    RegionRect* Rect;
};

/// Type of a property. The values of the enum not named here are in no table.
enum class PropTypeSet : int32_t {
    None = -1,    ///< no such property
    Integer = 0,  ///< decimal text, range "lo,hi"
    Boolean = 3,  ///< "TRUE" or "FALSE"
    Color = 6,    ///< "red,green,blue", each 0 to 255
};

#if defined(__LP64__) || defined(_WIN64)
static_assert(sizeof(StreamDescription) == 16 && offsetof(StreamDescription, Format) == 12);
static_assert(sizeof(ImageRecord) == 48 && offsetof(ImageRecord, Plane) == 8 &&
              offsetof(ImageRecord, Reserved) == 32 && offsetof(ImageRecord, PlaneSize) == 36);
static_assert(sizeof(FrameRecord) == 24 && offsetof(FrameRecord, Image) == 16);
static_assert(sizeof(PropertyRecord) == 24 && offsetof(PropertyRecord, Name) == 8 &&
              offsetof(PropertyRecord, Value) == 16);
static_assert(sizeof(SettingsRecord) == 32 && offsetof(SettingsRecord, Path) == 16 &&
              offsetof(SettingsRecord, Reserved) == 24);
static_assert(sizeof(RegionRecord) == 16 && offsetof(RegionRecord, Rect) == 8);
#endif

/// What an effect says of itself: its name and its property table. Constant texts; owned by the effect and
/// valid as long as it is.
class CInternalInfo {
  public:
    /// Slots 0 and 1. 1 when the whole name was copied; 0 when it was cut (the buffer is terminated then,
    /// too), when the size is 0 or above 0x7FFFFFFF, or when the buffer is null.
    SPECIALEFFECTS_WIDE_AND_NARROW(virtual int32_t GetName(WideChar* name, int32_t length) = 0,
                                   virtual int32_t GetName(char* name, uint32_t size) = 0);

    /// Slot 2. Rows of the property table.
    virtual int32_t GetPropCount() = 0;

    /// Slots 3 and 4. Copies the three texts of row `index`, each cut to fit; a null buffer or one of size 0
    /// is left out. None, and no buffer touched, for an index outside the table.
    SPECIALEFFECTS_WIDE_AND_NARROW(
        virtual PropTypeSet GetPropTypeInfo(int32_t index, WideChar* name, uint32_t nameLength,
                                            WideChar* defaultText, uint32_t defaultLength, WideChar* range,
                                            uint32_t rangeLength) = 0,
        virtual PropTypeSet GetPropTypeInfo(int32_t index, char* name, uint32_t nameSize, char* defaultText,
                                            uint32_t defaultSize, char* range, uint32_t rangeSize) = 0);

  protected:
    ~CInternalInfo() = default;
};

/// An effect. One object belongs to one thread at a time; different objects may be used on different threads.
///
/// Order of calls: `Configure`, any number of `ProcessFrame` with properties set in between, `Shutdown`.
/// Properties may be set before `Configure` too; the effects whose `Configure` resets some say so.
/// Text operations have a wide form (UTF-16) and a narrow one (UTF-8; on Windows the system's code page) with
/// the same result. Texts of 256 bytes or more are cut at a whole character.
class SPECIALEFFECTS_API CSpecialEffectFilter {
  public:
    CSpecialEffectFilter();
    CSpecialEffectFilter(const CSpecialEffectFilter&);
    CSpecialEffectFilter& operator=(const CSpecialEffectFilter&);

    /// Slot 0. Destroys the effect, frees its memory when bit 0 of `flags` is set, returns its address.
    virtual void* DeletingDestructor(uint32_t flags);

    /// Slot 1. Stores 0. A null pointer is ignored.
    virtual ResultCode GetFilterFlags(uint32_t* flags) = 0;

    /// Slot 2. With a null list stores 2 in `count`; with a list and a count of 2 or more stores 0 and 2 in
    /// the list and leaves `count` alone; a smaller count, or a null `count`, is an invalid argument.
    virtual ResultCode GetSupportedFormats(int32_t* list, int32_t* count) = 0;

    /// Slot 3. Stores the description and makes the workspace, after releasing an earlier one. A format code
    /// other than 0 or 2, or a size outside 1 to 16384, is stored and refused with kInvalidArgument, and
    /// leaves the effect without workspace. A null description is refused and changes nothing. Bulge, Fish
    /// Eye and Blockhead answer kSuccess to all of these. When memory runs out, throws std::bad_alloc; on
    /// Windows, where host and module may come from different compilers, answers kOutOfMemory instead.
    virtual ResultCode Configure(StreamDescription* description) = 0;

    /// Slots 4 and 5. Two effects read the file at `Path`; all others answer kSuccess, to a null record too.
    ///   Line Art    Three decimal numbers, separated by white space: red, green and blue of the background.
    ///               Each is clamped to 0..255; from the first one that is missing on they are 0. kFailure,
    ///               and nothing changed, for a null record or path and a file that cannot be opened.
    ///   Picture Me  A Haar cascade, read at once for the configured size. Numbers, separated by white space:
    ///               width and height of the window and the totals of stages, classifiers and rectangles; for
    ///               each stage its number of classifiers and its threshold; for each classifier its number
    ///               of rectangles, x, y, width, height and weight of each with y from the window's bottom,
    ///               then its threshold and the values below it and from it on. kFailure for a null record;
    ///               otherwise kSuccess, and with a file that cannot be used no face is found.
    SPECIALEFFECTS_WIDE_AND_NARROW(virtual ResultCode LoadSettings(WideSettingsRecord* settings) = 0,
                                   virtual ResultCode LoadSettings(SettingsRecord* settings) = 0);

    /// Slot 6. Changes the frame in place. The planes must be as large as the configured size says; at an odd
    /// width or height chroma is width / 2 by height / 2, rounded down.
    ///
    /// kInvalidArgument: a null record, image or plane; in Sepia and Comic Book a chroma plane that is too
    /// small at an odd size. Gray Scale and Polarize accept a null Plane[0] and change the chroma alone.
    /// kFailure: another format than the configured one, or no workspace: before `Configure`, after
    /// `Shutdown` or after a `Configure` that was refused. Gray Scale, Polarize and, on packed frames, Sepia
    /// need no workspace and answer kSuccess; Polarize and Sepia then leave the frames of a refused stream as
    /// they are.
    /// kNotImplemented: format 2 in an effect that is planar only.
    ///
    /// A frame that is refused is unchanged, except for what Fish Eye and Picture Me do to it before they
    /// look at its format.
    virtual ResultCode ProcessFrame(FrameRecord* frame) = 0;

    /// Slots 7 and 8. Property names match in any case; a value out of range is clamped, never refused. An
    /// unknown name, or a null record, name or value, is an invalid argument in an effect with properties;
    /// an effect without any answers 0 to everything.
    SPECIALEFFECTS_WIDE_AND_NARROW(virtual ResultCode SetProperty(WidePropertyRecord* property) = 0,
                                   virtual ResultCode SetProperty(PropertyRecord* property) = 0);

    /// Slots 9 and 10. Do nothing, with any record, null included: kSuccess, in Clouds kNotImplemented.
    SPECIALEFFECTS_WIDE_AND_NARROW(virtual ResultCode ApplyProperty(WidePropertyRecord* property,
                                                                    int32_t argument) = 0,
                                   virtual ResultCode ApplyProperty(PropertyRecord* property,
                                                                    int32_t argument) = 0);

    /// Slots 11 and 12. Writes the present value to `Value`, a buffer of 256 characters. The wide form writes
    /// `Name` back as well.
    SPECIALEFFECTS_WIDE_AND_NARROW(virtual ResultCode GetProperty(WidePropertyRecord* property) = 0,
                                   virtual ResultCode GetProperty(PropertyRecord* property) = 0);

    /// Slot 13. Releases the workspace; properties keep their values. Harmless when repeated.
    virtual ResultCode Shutdown() = 0;

    /// Slot 14. Does nothing.
    virtual ResultCode Flush(uint32_t argument) = 0;

    /// Slot 15. The effect's name and property table; null on the abstract classes.
    virtual CInternalInfo* GetInternalInfo();

    /// Slots 16 to 18. Always 0 and None: ask the object that `GetInternalInfo` returns.
    virtual int32_t GetPropCount();
    SPECIALEFFECTS_WIDE_AND_NARROW(
        virtual PropTypeSet GetPropTypeInfo(int32_t index, WideChar* name, uint32_t nameLength,
                                            WideChar* defaultText, uint32_t defaultLength, WideChar* range,
                                            uint32_t rangeLength),
        virtual PropTypeSet GetPropTypeInfo(int32_t index, char* name, uint32_t nameSize, char* defaultText,
                                            uint32_t defaultSize, char* range, uint32_t rangeSize));

  protected:
    ~CSpecialEffectFilter() = default;
};

/// An effect that works on a region of interest.
class SPECIALEFFECTS_API CROISpecialEffectFilter : public CSpecialEffectFilter {
  public:
    CROISpecialEffectFilter();
    CROISpecialEffectFilter(const CROISpecialEffectFilter&);
    CROISpecialEffectFilter& operator=(const CROISpecialEffectFilter&);

    /// Slot 19. `ProcessFrame` with a region that the caller knows.
    virtual ResultCode ProcessRegion(FrameRecord* frame, RegionRecord* region) = 0;

  protected:
    ~CROISpecialEffectFilter() = default;
};

#undef SPECIALEFFECTS_WIDE_AND_NARROW

#endif
