#include <gst/gst.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

/// Whether GStreamer has found the tracers that the environment asks for. Without them a test for leaks sees
/// none.
bool HasTracers() {
    GList* const tracers = gst_tracing_get_active_tracers();
    const bool found = tracers != nullptr;
    g_list_free_full(tracers, gst_object_unref);
    return found || std::getenv("GST_TRACERS") == nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // These names win over those without the version.
    setenv("GST_REGISTRY_1_0", SCRATCH_FOLDER "/registry.bin", 1);
    setenv("GST_PLUGIN_PATH_1_0", PLUGIN_FOLDER, 1);
    setenv("GST_PLUGIN_SYSTEM_PATH_1_0", SCRATCH_FOLDER "/plugins", 1);
    setenv("XDG_CACHE_HOME", SCRATCH_FOLDER "/cache", 1);
    setenv("GST_REGISTRY_FORK", "no", 1);  // the scanner is not instrumented where the tests are
    setenv("G_DEBUG", "fatal-criticals", 1);
    gst_init(&argc, &argv);
    if (!HasTracers()) {
        std::fprintf(stderr, "GStreamer has no tracer \"%s\"\n", std::getenv("GST_TRACERS"));
        return 1;
    }
    const int result = RUN_ALL_TESTS();
    gst_deinit();
    return result;
}
