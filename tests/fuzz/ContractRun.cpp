#include "tests/fuzz/ByteRun.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "framework/Catalogue.h"
#include "framework/SpecialEffectFactory.h"
#include "imaging/Cpu.h"
#include "tests/fuzz/Source.h"

namespace {

// ---- what to call --------------------------------------------------------------------------------------

constexpr const char* kValues[] = {"TRUE",       "FALSE",       "0",
                                   "1",          "2",           "3",
                                   "5",          "7",           "10",
                                   "16",         "24",          "32",
                                   "40",         "50",          "99",
                                   "100",        "999",         "-1",
                                   "2147483647", "-2147483648", "99999999999999999999",
                                   "0,0,0",      "255,255,255", "300,-5,7",
                                   "12,34",      "1,2,3,4",     "",
                                   " ",          "%s%n%d"};

constexpr int32_t kLargest = 16384;

// Work that one run may ask for: pixels configured or processed.
constexpr int64_t kPixelBudget = 400000;
constexpr int kStepBudget = 200;

[[noreturn]] void Fail(const char* what, unsigned long value) {
    std::fprintf(stderr, "contract: %s (0x%lx)\n", what, value);
    std::abort();
}

void ExpectKnown(ResultCode code) {
    if (code != kSuccess && code != kInvalidArgument && code != kFailure && code != kNotImplemented) {
        Fail("a result code that is not the contract's", code);
    }
}

// ---- frames --------------------------------------------------------------------------------------------

// Exactly `size` bytes from the heap, with no header or rounding in between.
class Block {
  public:
    Block(size_t size, Source& source) : data_(static_cast<uint8_t*>(std::malloc(size))), size_(size) {
        // Flat, ramp or noise: a few bytes of the source decide all.
        const uint8_t kind = source.Byte(), start = source.Byte();
        uint32_t state = start * 2654435761U + 1;
        for (size_t i = 0; i < size; ++i) {
            state = state * 1664525U + 1013904223U;
            data_.get()[i] = static_cast<uint8_t>(kind % 3 == 0   ? start
                                                  : kind % 3 == 1 ? start + i
                                                                  : state >> 24);
        }
        before_.assign(data_.get(), data_.get() + size);
    }

    uint8_t* data() { return data_.get(); }
    size_t size() const { return size_; }

    // Whether the bytes from `first` on are as they were.
    bool Unchanged(size_t first) const {
        return first >= size_ || std::memcmp(data_.get() + first, before_.data() + first, size_ - first) == 0;
    }

  private:
    struct Free {
        void operator()(uint8_t* data) const { std::free(data); }
    };
    std::unique_ptr<uint8_t, Free> data_;
    size_t size_;
    std::vector<uint8_t> before_;
};

bool IsServed(const StreamDescription& stream) {
    return stream.Width >= 1 && stream.Height >= 1 && stream.Width <= kLargest && stream.Height <= kLargest;
}

int64_t Pixels(const StreamDescription& stream) {
    return stream.Width > 0 && stream.Height > 0 ? int64_t{stream.Width} * stream.Height : 0;
}

// ---- the host ------------------------------------------------------------------------------------------

class Host {
  public:
    explicit Host(std::span<const uint8_t> bytes) : source_(bytes), factory_(CreateSpecialEffectFactory()) {
        const std::span<const cpu::Level> levels = cpu::Levels();
        cpu::Limit(levels[source_.Below(levels.size())]);
    }

    ~Host() {
        for (Guest& guest : guests_) Destroy(guest);
        factory_->Release();
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void Run() {
        for (int step = 0; step < kStepBudget && pixels_ < kPixelBudget && !source_.empty(); ++step) {
            Guest& guest = guests_[source_.Below(guests_.size())];
            if (guest.effect == nullptr) {
                Create(guest);
            } else {
                Step(guest);
            }
        }
    }

  private:
    struct Guest {
        CSpecialEffectFilter* effect = nullptr;
        StreamDescription stream = {};  // as the effect has stored it
        bool marksPlanes = false;       // Fish Eye writes the first byte of each plane before anything else
        bool takesRegions = false;      // Picture Me has a slot 19
    };

    void Step(Guest& guest) {
        switch (source_.Below(16)) {
            case 0:
                return Destroy(guest);
            case 1:
            case 2:
                return Configure(guest);
            case 3:
                return SetProperty(guest);
            case 4:
                return SetWideProperty(guest);
            case 5:
                return GetProperty(guest);
            case 6:
                return LoadSettings(guest);
            case 7:
                ExpectKnown(guest.effect->Shutdown());
                return;
            case 8:
                return AskQuestions(guest);
            case 9:
                return WriteDataFile();
            case 10:
                std::srand(source_.Byte());
                return;
            default:
                return ProcessFrames(guest);
        }
    }

    void Create(Guest& guest) {
        guest = {};
        // One index past the effects gives an unknown GUID.
        const std::span<const CatalogueRow> rows = EffectCatalogue();
        const size_t row = source_.Below(rows.size() + 1);
        EffectGuid id = rows[row % rows.size()].id;
        if (row == rows.size()) id.Data4[7] ^= 1;
        if (source_.OneIn(64)) ExpectKnown(factory_->CreateEffect(id, source_.Byte(), nullptr));
        const ResultCode code = factory_->CreateEffect(id, source_.Byte(), &guest.effect);
        if ((code == kSuccess) != (guest.effect != nullptr)) Fail("CreateEffect contradicts itself", code);
        if (guest.effect == nullptr) return;
        char name[40];
        guest.effect->GetInternalInfo()->GetName(name, sizeof name);
        guest.marksPlanes = std::string(name) == "Fish Eye";
        guest.takesRegions = std::string(name) == "Picture Me";
        if (guest.takesRegions && source_.OneIn(2)) WriteFile("haar.txt", Cascade());
        if (!source_.OneIn(8)) Configure(guest);
    }

    // In one of the three ways: by the factory, or as it does it, with and without Shutdown.
    void Destroy(Guest& guest) {
        if (guest.effect == nullptr) return;
        const size_t way = source_.Below(4);
        if (way == 1) guest.effect->Shutdown();
        if (way < 2) {
            guest.effect->DeletingDestructor(1);
        } else {
            factory_->DestroyEffect(guest.effect);
        }
        guest.effect = nullptr;
    }

    int32_t Side() {
        static constexpr int32_t kOdd[] = {0,
                                           -1,
                                           70,
                                           128,
                                           176,
                                           320,
                                           640,
                                           kLargest,
                                           kLargest + 1,
                                           std::numeric_limits<int32_t>::max(),
                                           std::numeric_limits<int32_t>::min(),
                                           64};
        const size_t choice = source_.Byte();
        return choice < 240 ? static_cast<int32_t>(choice % 72) - 1 : kOdd[choice % std::size(kOdd)];
    }

    int32_t Format() {
        static constexpr int32_t kFormats[] = {0, 0, 0, 0, 0, 0, 2, 2, 2, 1, -1, 3};
        return source_.Pick(kFormats);
    }

    void Configure(Guest& guest) {
        if (source_.OneIn(64)) {
            ExpectKnown(guest.effect->Configure(nullptr));
            return;
        }
        StreamDescription stream = {source_.Byte(), Side(), Side(), Format()};
        // Large in one direction only: the run tests bounds, not memory.
        if (IsServed(stream) && Pixels(stream) > kPixelBudget / 4) stream.Height = 1 + stream.Height % 5;
        guest.stream = stream;
        if (IsServed(stream)) pixels_ += Pixels(stream) + 500;
        ExpectKnown(guest.effect->Configure(&stream));
    }

    void ProcessFrames(Guest& guest) {
        // Occasionally many frames: histories fill up and snapshots reach their places.
        static constexpr int kStretches[] = {1, 1, 1, 2, 2, 3, 4, 45};
        const int frames = source_.Pick(kStretches);
        for (int i = 0; i < frames && pixels_ < kPixelBudget; ++i) ProcessFrame(guest);
    }

    // The planes' sizes for the stored stream, and what the record says of them, which may be less.
    struct Sizes {
        std::array<size_t, 3> held;
        std::array<int32_t, 3> told;
    };

    Sizes PlaneSizes(const Guest& guest, int32_t format) {
        const auto w = static_cast<size_t>(std::max(guest.stream.Width, 0));
        const auto h = static_cast<size_t>(std::max(guest.stream.Height, 0));
        std::array<size_t, 3> held = {w * h, (w / 2) * (h / 2), (w / 2) * (h / 2)};
        if (format == kFormatPacked) held = {w * h * 3, 0, 0};
        const size_t rounding = source_.Below(4);
        if (format != kFormatPacked && rounding == 3) held[1] = held[2] = ((w + 1) / 2) * ((h + 1) / 2);
        Sizes sizes = {held, {}};
        for (size_t i = 0; i < 3; ++i) {
            sizes.told[i] = static_cast<int32_t>(held[i]);
            switch (source_.Below(12)) {
                case 9:
                    sizes.told[i] = 0;
                    break;
                case 10:
                    sizes.told[i] = -static_cast<int32_t>(source_.Word() >> 1);
                    break;
                case 11:
                    sizes.told[i] = static_cast<int32_t>(source_.Word() % (held[i] + 1));
                    break;
                default:
                    break;
            }
            // A chroma size of 0 means unknown; the planes are then rounded up.
            if (i > 0 && held[i] > 0 && sizes.told[i] <= 0) {
                sizes.held[i] = std::max(sizes.held[i], ((w + 1) / 2) * ((h + 1) / 2));
            }
        }
        return sizes;
    }

    void ProcessFrame(Guest& guest) {
        static const auto kNoAddress = [] {
            return std::array{reinterpret_cast<ImageRecord*>(uintptr_t{0}),
                              reinterpret_cast<ImageRecord*>(uintptr_t{0xFFFFFFFC}),
                              reinterpret_cast<ImageRecord*>(uintptr_t{0} - offsetof(ImageRecord, Plane))};
        }();
        const size_t special = source_.Byte();
        if (special >= 252) {
            FrameRecord frame = {{0, 0, 0}, special < 255 ? kNoAddress[special - 252] : nullptr};
            const ResultCode code = guest.effect->ProcessFrame(special == 255 ? nullptr : &frame);
            if (code != kInvalidArgument) Fail("a missing picture was accepted", code);
            return;
        }
        const int32_t format = special < 230 ? guest.stream.Format : Format();
        // No host has the planes of a size that was refused for being too large.
        if (!IsServed(guest.stream) && Pixels(guest.stream) > kPixelBudget / 4) return;
        const Sizes sizes = PlaneSizes(guest, format);
        std::optional<Block> planes[3];
        ImageRecord image = {format, {}, source_.Byte(), {sizes.told[0], sizes.told[1], sizes.told[2]}};
        for (size_t i = 0; i < 3; ++i) {
            planes[i].emplace(sizes.held[i], source_);
            image.Plane[i] = source_.OneIn(48) ? nullptr : planes[i]->data();
        }
        FrameRecord frame = {{1, 2, 3}, &image};
        pixels_ += Pixels(guest.stream) + 50;
        const bool region = guest.takesRegions && source_.OneIn(4);
        const ResultCode code = region ? ProcessRegion(guest, frame) : guest.effect->ProcessFrame(&frame);
        ExpectKnown(code);
        // Picture Me marks the faces that it finds before it looks at the format.
        if (code == kSuccess || guest.takesRegions) return;
        for (const std::optional<Block>& plane : planes) {
            if (!plane->Unchanged(guest.marksPlanes ? 1 : 0)) Fail("a refused frame has changed", code);
        }
    }

    // A face that the host claims to know: inside, across an edge, inside out, far away.
    ResultCode ProcessRegion(Guest& guest, FrameRecord& frame) {
        const auto edge = [this](int32_t side) {
            switch (source_.Below(8)) {
                case 6:
                    return -static_cast<int32_t>(source_.Byte());
                case 7:
                    return static_cast<int32_t>(source_.Word());
                default:
                    return static_cast<int32_t>(source_.Below(static_cast<size_t>(std::clamp(side, 1, 255))));
            }
        };
        const int32_t w = guest.stream.Width, h = guest.stream.Height;
        RegionRect rect = {edge(w), edge(w), edge(h), edge(h)};
        RegionRecord region = {0, source_.OneIn(32) ? nullptr : &rect};
        return static_cast<CROISpecialEffectFilter*>(guest.effect)
            ->ProcessRegion(&frame, source_.OneIn(32) ? nullptr : &region);
    }

    // ---- texts

    std::string AnyText() {
        switch (source_.Below(8)) {
            case 0:
                return source_.Text(source_.Below(64));
            case 1:
                return std::string(source_.Below(4) * 100 + 253, static_cast<char>(source_.Byte() | 1));
            case 2:
                return std::string(10000, static_cast<char>(source_.Byte() | 1));
            case 3:
                return source_.Text(3) + source_.Pick(kValues);
            default:
                return source_.Pick(kValues);
        }
    }

    // Usually one of the effect's own.
    std::string AnyName(const Guest& guest) {
        CInternalInfo* info = guest.effect->GetInternalInfo();
        const auto rows = static_cast<size_t>(info->GetPropCount());
        if (rows == 0 || source_.OneIn(8)) return AnyText();
        char name[64];
        info->GetPropTypeInfo(static_cast<int32_t>(source_.Below(rows)), name, sizeof name, nullptr, 0,
                              nullptr, 0);
        return name;
    }

    // Units as they come: pairs, halves of pairs, anything.
    std::u16string Widened(const std::string& text) {
        std::u16string wide;
        const bool broken = source_.OneIn(4);
        for (size_t i = 0; i < text.size(); ++i) {
            auto unit = static_cast<char16_t>(static_cast<unsigned char>(text[i]));
            if (broken && unit >= 0x80) unit = static_cast<char16_t>(0xD700 + unit * 8);
            wide.push_back(unit);
        }
        return wide;
    }

    // A terminated copy of exactly the text's size.
    template <class Char>
    static std::vector<Char> Terminated(const std::basic_string<Char>& text) {
        const size_t length = std::min(text.find(Char{0}), text.size());
        std::vector<Char> copy(text.begin(), text.begin() + static_cast<ptrdiff_t>(length));
        copy.push_back(0);
        return copy;
    }

    template <class Char>
    Char* OrNull(std::vector<Char>& text) {
        return source_.OneIn(64) ? nullptr : text.data();
    }

    template <class Char>
    void Set(Guest& guest, const std::basic_string<Char>& nameText,
             const std::basic_string<Char>& valueText) {
        std::vector<Char> name = Terminated(nameText), value = Terminated(valueText);
        BasicPropertyRecord<Char> record = {source_.Byte(), OrNull(name), OrNull(value)};
        const bool none = source_.OneIn(64);
        if (source_.OneIn(16)) {
            ExpectKnown(guest.effect->ApplyProperty(none ? nullptr : &record, source_.Byte()));
        }
        ExpectKnown(guest.effect->SetProperty(none ? nullptr : &record));
    }

    void SetProperty(Guest& guest) {
        const std::string name = AnyName(guest), value = AnyText();
        pixels_ += Pixels(guest.stream);  // some properties build tables at once
        Set<char>(guest, name, value);
    }

    void SetWideProperty(Guest& guest) {
        const std::u16string name = Widened(AnyName(guest)), value = Widened(AnyText());
        pixels_ += Pixels(guest.stream);
        Set<char16_t>(guest, name, value);
    }

    template <class Char>
    void Get(Guest& guest, const std::basic_string<Char>& nameText) {
        // Both buffers hold 256 characters, and nothing says that the value's is terminated.
        std::vector<Char> name = Terminated(nameText.substr(0, 255)),
                          value(256, static_cast<Char>(source_.Byte()));
        name.resize(256);
        BasicPropertyRecord<Char> record = {0, OrNull(name), OrNull(value)};
        const ResultCode code = guest.effect->GetProperty(source_.OneIn(64) ? nullptr : &record);
        ExpectKnown(code);
    }

    void GetProperty(Guest& guest) {
        if (source_.OneIn(2)) {
            Get<char>(guest, AnyName(guest));
        } else {
            Get<char16_t>(guest, Widened(AnyName(guest)));
        }
    }

    template <class Char>
    void Load(Guest& guest, const std::basic_string<Char>& pathText) {
        std::vector<Char> name(1, 0), path = Terminated(pathText);
        BasicSettingsRecord<Char> record = {0, OrNull(name), OrNull(path), {1, 2}};
        pixels_ += Pixels(guest.stream);
        ExpectKnown(guest.effect->LoadSettings(source_.OneIn(64) ? nullptr : &record));
    }

    void LoadSettings(Guest& guest) {
        std::string path = "settings.txt";
        switch (source_.Below(8)) {
            case 0:
                path = "haar.txt";
                break;
            case 1:
                path = "missing.txt";
                break;
            case 2:
                path = ".";
                break;
            case 3:
                path = AnyText();
                std::replace(path.begin(), path.end(), '/', '_');  // nothing outside the scratch directory
                break;
            default:
                WriteFile(path, FileContent());
                break;
        }
        if (source_.OneIn(2)) {
            Load<char>(guest, path);
        } else {
            Load<char16_t>(guest, Widened(path));
        }
    }

    void AskQuestions(Guest& guest) {
        const auto size = static_cast<uint32_t>(source_.Below(41));
        std::vector<char> narrow(size);
        std::vector<WideChar> wide(size);
        CInternalInfo* info = guest.effect->GetInternalInfo();
        info->GetName(narrow.data(), size);
        info->GetName(wide.data(), static_cast<int32_t>(size));
        const int32_t row = source_.SignedByte();
        info->GetPropTypeInfo(row, narrow.data(), size, narrow.data(), size, narrow.data(), size);
        info->GetPropTypeInfo(row, wide.data(), size, wide.data(), size, wide.data(), size);
        guest.effect->GetPropTypeInfo(row, narrow.data(), size, narrow.data(), size, narrow.data(), size);
        uint32_t flags = 1;
        if (guest.effect->GetFilterFlags(&flags) != kSuccess || flags != 0) Fail("GetFilterFlags", flags);
        int32_t count = source_.SignedByte();
        std::vector<int32_t> list(2);
        ExpectKnown(guest.effect->GetSupportedFormats(list.data(), &count));
        if (guest.effect->Flush(source_.Word()) != kSuccess) Fail("Flush", 0);
    }

    // ---- files

    static void WriteFile(const std::string& name, const std::string& content) {
        std::ofstream(name, std::ios::binary) << content;
    }

    std::string Number() {
        switch (source_.Below(6)) {
            case 0:
                return std::to_string(static_cast<int32_t>(source_.Word()));
            case 1:
                return std::to_string(static_cast<int32_t>(source_.Byte()) - 64) + "." +
                       std::to_string(source_.Byte());
            case 2:
                return source_.Text(3);
            default:
                return std::to_string(source_.Below(26));
        }
    }

    // A cascade whose shape is right more often than not.
    std::string Cascade() {
        const size_t stages = 1 + source_.Below(3), classifiers = 1 + source_.Below(2),
                     rectangles = 2 + source_.Below(2);
        const size_t side = 3 + source_.Below(24);
        const bool broken = source_.OneIn(4);
        const auto number = [this, broken](size_t good) {
            return broken && source_.OneIn(16) ? Number() : std::to_string(good);
        };
        std::string text = number(side) + " " + number(side) + " " + number(stages) + " " +
                           number(stages * classifiers) + " " + number(stages * classifiers * rectangles) +
                           "\n";
        for (size_t s = 0; s < stages; ++s) {
            text += number(classifiers) + " " + (source_.OneIn(2) ? "-100" : "0.5") + "\n";
            for (size_t c = 0; c < classifiers; ++c) {
                text += number(rectangles) + "\n";
                for (size_t r = 0; r < rectangles; ++r) {
                    const size_t x = source_.Below(side), y = source_.Below(side);
                    text += number(x) + " " + number(y) + " " + number(1 + source_.Below(side - x)) + " " +
                            number(1 + source_.Below(side - y)) + (r == 0 ? " -1\n" : " 2\n");
                }
                text += number(0) + " " + number(1) + " " + number(2) + "\n";
            }
        }
        return text;
    }

    std::string Bitmap() {
        std::string file(1078, '\0');
        file[0] = 'B';
        file[1] = source_.OneIn(16) ? 'X' : 'M';
        const auto put = [&file](size_t at, uint32_t value, int bytes) {
            for (int i = 0; i < bytes; ++i) {
                file[at + static_cast<size_t>(i)] = static_cast<char>(value >> (8 * i));
            }
        };
        const uint32_t width = source_.OneIn(8) ? source_.Word() : 1 + source_.Byte() % 64;
        const uint32_t height = source_.OneIn(8) ? source_.Word() : 1 + source_.Byte() % 64;
        put(18, width, 4);
        put(22, height, 4);
        put(28, source_.OneIn(16) ? source_.Byte() : 8, 2);
        const size_t pixels = size_t{width % 64} * (height % 64);
        file.append(source_.OneIn(4) ? pixels / 2 : pixels, static_cast<char>(source_.Byte()));
        return source_.OneIn(8) ? file.substr(0, source_.Word() % file.size()) : file;
    }

    std::string FileContent() {
        switch (source_.Below(4)) {
            case 0:
                return source_.Text(source_.Byte());
            case 1:
                return Number() + " " + Number() + " " + Number();
            default:
                return Cascade();
        }
    }

    void WriteDataFile() {
        switch (source_.Below(4)) {
            case 0:
                return WriteFile("logo3.bmp", Bitmap());
            case 1:
                return WriteFile("perlin.dat",
                                 std::string(source_.Word() % 1000000, static_cast<char>(source_.Byte())));
            default:
                return WriteFile("haar.txt", FileContent());
        }
    }

    Source source_;
    ISpecialEffectFactory* factory_;
    std::array<Guest, 3> guests_;
    int64_t pixels_ = 0;
};

// The files that a run starts with. They include a short noise file, because making one takes seconds.
void ResetFiles() {
    for (const char* name : {"logo3.bmp", "haar.txt", "settings.txt"}) std::remove(name);
    std::ofstream("perlin.dat", std::ios::binary) << std::string(1000, '\x60');
}

}  // namespace

void RunBytes(std::span<const uint8_t> bytes) {
    ResetFiles();
    std::srand(1);
    Host(bytes).Run();
}
