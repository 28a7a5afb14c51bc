// Runs the tests inside one OBS, which has to end without a leak, and in a folder that has to stay empty.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "Host.h"

namespace {

class RunningObs : public testing::Environment {
  public:
    void SetUp() override { ASSERT_EQ(StartObs(), 0); }
    void TearDown() override {
        EXPECT_EQ(StopObs(), 0) << "allocations of libobs that are left";
        EXPECT_TRUE(std::filesystem::is_empty(".")) << "a file in the current directory";
    }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!testing::GTEST_FLAG(list_tests)) {
        const std::filesystem::path folder = SCRATCH_FOLDER;
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder / "current");
        std::filesystem::current_path(folder / "current");
        testing::AddGlobalTestEnvironment(std::make_unique<RunningObs>().release());
    }
    return RUN_ALL_TESTS();
}
