#include <gst/gst.h>
#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    setenv("GST_REGISTRY", SCRATCH_FOLDER "/registry.bin", 1);
    setenv("GST_PLUGIN_PATH", PLUGIN_FOLDER, 1);
    setenv("XDG_CACHE_HOME", SCRATCH_FOLDER "/cache", 1);
    setenv("GST_REGISTRY_FORK", "no", 1);  // the scanner is not instrumented where the tests are
    setenv("G_DEBUG", "fatal-criticals", 1);
    gst_init(&argc, &argv);
    const int result = RUN_ALL_TESTS();
    gst_deinit();
    return result;
}
