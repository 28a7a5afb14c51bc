// What C sees of exceptions.
#include "sfx/Guard.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "sfx/EffectList.h"

namespace {

TEST(Guard, TurnsExceptionsIntoStatusesAndMessages) {
    using sfx::Guarded;
    EXPECT_EQ(Guarded([] { return SFX_CLAMPED; }), SFX_CLAMPED);

    EXPECT_EQ(Guarded([]() -> sfx_status { throw sfx::Failure{sfx::Tell(SFX_ERROR_VALUE, "too large")}; }),
              SFX_ERROR_VALUE);
    EXPECT_STREQ(sfx_message(), "too large");
    EXPECT_EQ(Guarded([]() -> sfx_status { throw std::bad_alloc(); }), SFX_ERROR_MEMORY);
    EXPECT_STREQ(sfx_message(), "out of memory");
    EXPECT_EQ(Guarded([]() -> sfx_status { throw std::runtime_error("a reason"); }), SFX_ERROR_FAILED);
    EXPECT_STREQ(sfx_message(), "unexpected: a reason");
    EXPECT_EQ(Guarded([]() -> sfx_status { throw 1; }), SFX_ERROR_FAILED);
    EXPECT_STREQ(sfx_message(), "unexpected failure");
}

TEST(Guard, KnowsWhatTheModuleReturns) {
    const auto require = [](ResultCode code) {
        return sfx::Guarded([code] {
            sfx::Require(code, SFX_ERROR_FILE, "rain", "does not take it");
            return SFX_OK;
        });
    };
    EXPECT_EQ(require(kSuccess), SFX_OK);
    EXPECT_EQ(require(kOutOfMemory), SFX_ERROR_MEMORY);
    for (const ResultCode code : {kFailure, kInvalidArgument, kNotImplemented}) {
        EXPECT_EQ(require(code), SFX_ERROR_FILE);
        EXPECT_STREQ(sfx_message(), "rain does not take it");
    }
}

}  // namespace
