// The heap use of every effect: how much, when, and what happens when memory runs out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "effects/animated/RainDrops.h"
#include "framework/Catalogue.h"
#include "imaging/Plane8u.h"
#include "imaging/Prim.h"
#include "tests/memory/Heap.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/TestFrame.h"
#include "tests/support/TestSurroundings.h"

namespace {

struct ReleaseFactory {
    void operator()(ISpecialEffectFactory* factory) const { factory->Release(); }
};

/// The calls of a host, for one row of the catalogue.
class Host {
  public:
    explicit Host(const CatalogueRow& row) : id_(row.id), factory_(CreateSpecialEffectFactory()) {}
    ~Host() { Destroy(); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    CSpecialEffectFilter* Create() {
        effect_ = nullptr;
        EXPECT_EQ(factory_->CreateEffect(id_, 0, &effect_), kSuccess);
        return effect_;
    }
    void Destroy() {
        factory_->DestroyEffect(effect_);
        effect_ = nullptr;
    }
    ResultCode Configure(int32_t width, int32_t height, int32_t format = kFormatPlanar) {
        StreamDescription stream = {0, width, height, format};
        return effect_->Configure(&stream);
    }
    ResultCode Process(TestFrame& frame) { return effect_->ProcessFrame(frame.record()); }
    ResultCode Set(char* name, char* value) {
        PropertyRecord record{0, name, value};
        return effect_->SetProperty(&record);
    }
    ResultCode Load(char* path) {
        SettingsRecord record{0, nullptr, path, {}};
        return effect_->LoadSettings(&record);
    }
    CSpecialEffectFilter* operator->() const { return effect_; }

  private:
    EffectGuid id_;
    std::unique_ptr<ISpecialEffectFactory, ReleaseFactory> factory_;
    CSpecialEffectFilter* effect_ = nullptr;
};

/// Where the effects find their files: the cascade, noise pictures for Clouds and a bitmap for Logo
/// Animation.
class DataDirectory {
  public:
    DataDirectory() {
        std::filesystem::copy(SE_BINARY_DIR "/share/specialeffects/haar.txt", "haar.txt");
        TestRandom random(1);
        std::vector<char> bytes(size_t{20} * 640 * 480);
        for (char& byte : bytes) byte = static_cast<char>(random.Byte());
        std::ofstream("perlin.dat", std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));

        constexpr uint8_t kSide = 16;
        std::vector<char> bitmap(14 + 40 + 1024 + kSide * kSide, 100);
        bitmap[0] = 'B';
        bitmap[1] = 'M';
        std::fill(bitmap.begin() + 14, bitmap.begin() + 54, '\0');
        bitmap[14 + 4] = bitmap[14 + 8] = kSide;
        bitmap[14 + 14] = 8;
        std::ofstream("logo3.bmp", std::ios::binary)
            .write(bitmap.data(), static_cast<std::streamsize>(bitmap.size()));
        std::ofstream("color.txt") << "10 20 30";
    }

  private:
    TemporaryDirectory directory_;
};

class Memory : public testing::TestWithParam<size_t> {
  protected:
    static void SetUpTestSuite() { directory = std::make_unique<DataDirectory>(); }
    static void TearDownTestSuite() { directory.reset(); }

    const CatalogueRow& row() const { return EffectCatalogue()[GetParam()]; }

  private:
    static std::unique_ptr<DataDirectory> directory;
};
std::unique_ptr<DataDirectory> Memory::directory;

/// Texts that change every property of an effect, two for each: those of its range's ends.
struct PropertyText {
    char name[64], value[64];
};
std::vector<PropertyText> PropertyTexts(CSpecialEffectFilter& effect) {
    std::vector<PropertyText> texts;
    CInternalInfo* const info = effect.GetInternalInfo();
    for (int32_t i = 0; i < info->GetPropCount(); ++i) {
        PropertyText text{};
        char range[64];
        const PropTypeSet type = info->GetPropTypeInfo(i, text.name, sizeof text.name, text.value,
                                                       sizeof text.value, range, sizeof range);
        const std::string bounds = range;
        const auto add = [&](const std::string& value) {
            std::copy_n(value.c_str(), value.size() + 1, text.value);
            texts.push_back(text);
        };
        if (type == PropTypeSet::Boolean) {
            add("FALSE");
            add("TRUE");
        } else if (type == PropTypeSet::Color) {
            add("1,2,3");
            add("200,100,0");
        } else {
            add(bounds.substr(bounds.find(',') + 1));
            add(bounds.substr(0, bounds.find(',')));
        }
    }
    return texts;
}

/// A life of one frame.
void WarmUp(const CatalogueRow& row) {
    Host host(row);
    ASSERT_NE(host.Create(), nullptr);
    TestFrame frame(64, 48);
    ASSERT_EQ(host.Configure(64, 48), kSuccess);
    ASSERT_EQ(host.Process(frame), kSuccess);
}

// ---- giving back -----------------------------------------------------------------------------------------

TEST_P(Memory, ShutdownFreesAllThatConfigureTook) {
    WarmUp(row());  // what all effects share is made at the first use and kept

    Host host(row());
    ASSERT_NE(host.Create(), nullptr);
    for (const int32_t format : {kFormatPlanar, kFormatPacked}) {
        std::vector<PropertyText> texts = PropertyTexts(*host.operator->());
        TestFrame frame(200, 160, format);
        frame.Randomize(7);
        const int64_t bytes = heap::LiveBytes(), blocks = heap::LiveBlocks();
        ASSERT_EQ(host.Configure(200, 160, format), kSuccess);
        for (int i = 0; i < 5; ++i) host.Process(frame);
        for (PropertyText& text : texts) host.Set(text.name, text.value);
        for (int i = 0; i < 5; ++i) host.Process(frame);
        ASSERT_EQ(host->Shutdown(), kSuccess);
        EXPECT_EQ(heap::LiveBytes() - bytes, 0) << "format " << format;
        EXPECT_EQ(heap::LiveBlocks() - blocks, 0) << "format " << format;
    }
}

TEST_P(Memory, DestroyingAConfiguredEffectFreesAll) {
    Host host(row());
    TestFrame frame(200, 160);
    host.Create();
    host.Configure(200, 160);
    host.Process(frame);
    host.Destroy();
    const int64_t bytes = heap::LiveBytes();
    host.Create();
    ASSERT_EQ(host.Configure(200, 160), kSuccess);
    ASSERT_EQ(host.Process(frame), kSuccess);
    host.Destroy();
    EXPECT_EQ(heap::LiveBytes() - bytes, 0);
}

TEST_P(Memory, ConfigureToASmallerSizeFreesTheLargerWorkspace) {
    Host host(row());
    ASSERT_NE(host.Create(), nullptr);
    const int64_t bytes = heap::LiveBytes();
    const auto configure = [&](int32_t width, int32_t height) {
        std::srand(1);
        EXPECT_EQ(host.Configure(width, height), kSuccess);
        return heap::LiveBytes() - bytes;
    };
    const int64_t fresh = configure(160, 120);
    EXPECT_GE(configure(320, 240), fresh);
    EXPECT_EQ(configure(160, 120), fresh);
}

// ---- while frames run ------------------------------------------------------------------------------------

TEST_P(Memory, FramesTakeNothingAfterTheFirstTen) {
    constexpr int kFrames = 50;  // longer than every ring of past frames
    for (const auto& [width, height] : {std::pair{320, 240}, {640, 480}, {177, 143}}) {
        Host host(row());
        ASSERT_NE(host.Create(), nullptr);
        ASSERT_EQ(host.Configure(width, height), kSuccess);
        const std::vector<TestFrame>& scene = Scene(width, height, kFrames);
        TestFrame frame(width, height);
        int64_t before = 0;
        for (size_t i = 0; i < scene.size(); ++i) {
            frame = scene[i];  // in the memory that it has
            if (i == 10) before = heap::Allocations();
            ASSERT_EQ(host.Process(frame), kSuccess);
        }
        EXPECT_EQ(heap::Allocations() - before, 0) << width << " by " << height;
    }
}

TEST(MemoryOfRainDrops, RunnersOnTallNarrowPanesTakeNothing) {
    std::srand(1);
    for (const auto& [columns, rows] : {std::pair{4, 700}, {8, 300}, {5, 5}}) {
        WaterGrid grid;
        grid.Prepare(columns, rows);
        const int64_t before = heap::Allocations();
        for (int frame = 0; frame < 2500; ++frame) {
            for (int drop = 0; drop < 10; ++drop) grid.AddRain();
            grid.Run();
        }
        EXPECT_EQ(heap::Allocations() - before, 0) << columns << " by " << rows;
    }
}

// ---- out of memory ---------------------------------------------------------------------------------------

/// One life of an effect with frames of two sizes, settings and changes of properties. Stops at the first
/// call that reports that memory ran out, which it may do in one way only for each operation.
class FrailLife {
  public:
    FrailLife(const CatalogueRow& row, std::vector<PropertyText> texts)
        : host_(row), texts_(std::move(texts)), large_(160, 120), small_(64, 48) {
        large_.DrawScene(3);
        small_.Randomize(3);
    }

    /// Whether a call reported it. The effect is left as the call left it.
    bool RunsOut() {
        std::srand(1);
        if (host_.Create() == nullptr) return true;
        return ConfigureRunsOut(large_) || FramesRunOut(large_) || SettingsRunOut() ||
               PropertiesRunOut(large_) || ConfigureRunsOut(small_) || FramesRunOut(small_);
    }

    /// Of all frames so far.
    uint64_t Checksum() const { return frames_; }

    /// Once memory is available again: the effect refuses frames, unless it kept its workspace, and then
    /// accepts a new stream.
    void ExpectRecovery() {
        if (host_.operator->() == nullptr) {
            ASSERT_NE(host_.Create(), nullptr);
        } else if (losesWorkspace_) {
            EXPECT_EQ(host_.Process(*configuredTo_), kFailure);
        }
        ASSERT_EQ(host_.Configure(large_.width(), large_.height()), kSuccess);
        EXPECT_EQ(host_.Process(large_), kSuccess);
        EXPECT_TRUE(large_.GuardsIntact());
        EXPECT_EQ(host_->Shutdown(), kSuccess);
    }

  private:
    bool ConfigureRunsOut(TestFrame& frame) {
        configuredTo_ = &frame;
        try {
            EXPECT_EQ(host_.Configure(frame.width(), frame.height()), kSuccess);
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    }

    bool FramesRunOut(TestFrame& frame) {
        for (int i = 0; i < 6; ++i) {
            const ResultCode result = host_.Process(frame);
            if (result == kOutOfMemory) return true;
            EXPECT_EQ(result, kSuccess);
            frames_ = frames_ * 31 + frame.Checksum();
        }
        return false;
    }

    bool SettingsRunOut() {
        char path[] = "haar.txt";
        const ResultCode result = host_.Load(path);
        EXPECT_TRUE(result == kSuccess || result == kOutOfMemory) << result;
        // Settings that are only read leave the effect as it was.
        char name[64] = {};
        host_->GetInternalInfo()->GetName(name, sizeof name);
        losesWorkspace_ = std::strcmp(name, "Line Art") != 0;
        return result == kOutOfMemory;
    }

    bool PropertiesRunOut(TestFrame& frame) {
        losesWorkspace_ = true;
        for (PropertyText& text : texts_) {
            const ResultCode result = host_.Set(text.name, text.value);
            if (result == kOutOfMemory) return true;
            EXPECT_EQ(result, kSuccess) << text.name;
            if (FramesRunOut(frame)) return true;
        }
        return false;
    }

    Host host_;
    std::vector<PropertyText> texts_;
    TestFrame large_, small_;
    TestFrame* configuredTo_ = &large_;
    bool losesWorkspace_ = true;
    uint64_t frames_ = 0;
};

/// Lets one allocation of a life fail: the first, then each number that `next` derives from the previous one,
/// up to the last.
void FailAllocations(const CatalogueRow& row, int64_t (*next)(int64_t)) {
    constexpr int64_t kMostAllocations = 400;
    std::vector<PropertyText> texts;
    {
        Host host(row);
        texts = PropertyTexts(*host.Create());
    }
    TestClock clock;
    const SurroundingsScope scope(clock);
    FrailLife complete(row, texts);
    ASSERT_FALSE(complete.RunsOut());
    for (int64_t n = 1; n <= kMostAllocations; n = next(n)) {
        SCOPED_TRACE(testing::Message() << "allocation " << n);
        const int64_t bytes = heap::LiveBytes();
        {
            FrailLife life(row, texts);
            heap::FailAllocation(n);
            const bool ranOut = life.RunsOut();
            const bool failed = heap::HasFailed();
            heap::FailAllocation(0);
            if (!failed) break;
            if (ranOut) {
                life.ExpectRecovery();
            } else {  // where the allocation was optional
                ASSERT_EQ(life.Checksum(), complete.Checksum()) << "a failure that went unreported shows";
            }
        }
        ASSERT_EQ(heap::LiveBytes() - bytes, 0) << "bytes leaked";
        if (testing::Test::HasFailure()) break;
    }
}

TEST_P(Memory, EveryAllocationMayFail) {
    FailAllocations(row(), [](int64_t n) { return n + 1; });
}

/// A sample, the denser the earlier in the life.
TEST_P(Memory, AnAllocationMayFail) {
    FailAllocations(row(), [](int64_t n) { return n + n / 2 + 1; });
}

INSTANTIATE_TEST_SUITE_P(Rows, Memory, testing::Range(size_t{0}, EffectCatalogue().size()),
                         [](const testing::TestParamInfo<size_t>& row) {
                             return std::to_string(row.param + 1);
                         });

// ---- primitives ------------------------------------------------------------------------------------------

TEST(MemoryOfPrimitives, ThoseInPlaceReportThatItRanOutAndChangeNothing) {
    CPlane8u plane(40, 30);
    TestRandom random(1);
    for (size_t i = 0; i < plane.Size(); ++i) plane.data[i] = random.Byte();
    const CPlane8u before = plane;
    const auto withoutMemory = [](const auto& call) {
        heap::FailAllocation(1);
        const PrimStatus status = call();
        heap::FailAllocation(0);
        return status;
    };
    const auto box = [&] { return PrimFilterBox8uC1(plane.Row(2) + 2, 40, 36, 26, 5, 5, 2, 2); };
    const auto dilate = [&] { return PrimDilate3x38uC1(plane.Row(1) + 1, 40, 38, 28); };
    EXPECT_EQ(withoutMemory(box), kPrimMemoryError);
    EXPECT_EQ(withoutMemory(dilate), kPrimMemoryError);
    EXPECT_TRUE(std::equal(plane.data, plane.data + plane.Size(), before.data));
    EXPECT_EQ(box(), kPrimOk);
    EXPECT_EQ(dilate(), kPrimOk);
    EXPECT_FALSE(std::equal(plane.data, plane.data + plane.Size(), before.data));
}

/// Clouds makes its file if it is missing; no failure leaves a partial file.
TEST(MemoryOfClouds, NoFileIsLeftBehindWhenMemoryRunsOut) {
    const auto isClouds = [](const CatalogueRow& row) {
        Host host(row);
        char name[64] = {};
        host.Create()->GetInternalInfo()->GetName(name, sizeof name);
        return std::string(name) == "Clouds";
    };
    const auto row = std::find_if(EffectCatalogue().begin(), EffectCatalogue().end(), isClouds);
    ASSERT_NE(row, EffectCatalogue().end());
    const TemporaryDirectory directory;
    Host host(*row);
    ASSERT_NE(host.Create(), nullptr);
    int64_t n = 1;
    for (bool failed = true; failed && !std::filesystem::exists("perlin.dat"); ++n) {
        heap::FailAllocation(n);
        failed = false;
        try {
            host.Configure(64, 48);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        heap::FailAllocation(0);
        ASSERT_TRUE(failed || std::filesystem::exists("perlin.dat"));
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            ASSERT_EQ(entry.path().filename(), "perlin.dat") << "allocation " << n;
            ASSERT_EQ(entry.file_size(), uintmax_t{20} * 640 * 480);
        }
    }
    EXPECT_GT(n, 2);
}

}  // namespace
