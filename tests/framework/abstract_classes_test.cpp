// The exported abstract classes, as the bases of a filter that a host defines.
#include <gtest/gtest.h>

#include <new>

#include "framework/SpecialEffectFilter.h"

namespace {

template <class Base>
class CHostFilter : public Base {
  public:
    ResultCode GetFilterFlags(uint32_t*) override { return kNotImplemented; }
    ResultCode GetSupportedFormats(int32_t*, int32_t*) override { return kNotImplemented; }
    ResultCode Configure(StreamDescription*) override { return kNotImplemented; }
    ResultCode LoadSettings(SettingsRecord*) override { return kNotImplemented; }
    ResultCode LoadSettings(WideSettingsRecord*) override { return kNotImplemented; }
    ResultCode ProcessFrame(FrameRecord*) override { return kNotImplemented; }
    ResultCode SetProperty(PropertyRecord*) override { return kNotImplemented; }
    ResultCode SetProperty(WidePropertyRecord*) override { return kNotImplemented; }
    ResultCode ApplyProperty(PropertyRecord*, int32_t) override { return kNotImplemented; }
    ResultCode ApplyProperty(WidePropertyRecord*, int32_t) override { return kNotImplemented; }
    ResultCode GetProperty(PropertyRecord*) override { return kNotImplemented; }
    ResultCode GetProperty(WidePropertyRecord*) override { return kNotImplemented; }
    ResultCode Shutdown() override { return kNotImplemented; }
    ResultCode Flush(uint32_t) override { return number; }

    ResultCode number = kSuccess;
};
using CPlainFilter = CHostFilter<CSpecialEffectFilter>;

class CRegionFilter final : public CHostFilter<CROISpecialEffectFilter> {
  public:
    ResultCode ProcessRegion(FrameRecord*, RegionRecord*) override { return kNotImplemented; }
};

template <class Filter>
class AbstractClasses : public testing::Test {};
using Filters = testing::Types<CPlainFilter, CRegionFilter>;
TYPED_TEST_SUITE(AbstractClasses, Filters);

TYPED_TEST(AbstractClasses, SayNothingOfThemselves) {
    TypeParam filter;
    EXPECT_EQ(filter.GetInternalInfo(), nullptr);
    EXPECT_EQ(filter.GetPropCount(), 0);
    char text[] = "text";
    WideChar wide[] = {'t', 0};
    EXPECT_EQ(filter.GetPropTypeInfo(0, text, sizeof text, text, sizeof text, text, sizeof text),
              PropTypeSet::None);
    EXPECT_EQ(filter.GetPropTypeInfo(0, wide, 2, wide, 2, wide, 2), PropTypeSet::None);
    EXPECT_STREQ(text, "text");
    EXPECT_EQ(wide[0], 't');
}

TYPED_TEST(AbstractClasses, AreCopiedWithWhatDerivesFromThem) {
    TypeParam filter;
    filter.number = 7;
    TypeParam copy(filter), assigned;
    assigned = filter;
    CSpecialEffectFilter& first = copy;
    CSpecialEffectFilter& second = assigned;
    EXPECT_EQ(first.Flush(0), 7U);
    EXPECT_EQ(second.Flush(0), 7U);
}

TYPED_TEST(AbstractClasses, AreDestroyedThroughTheFirstSlot) {
    void* const memory = ::operator new(sizeof(TypeParam));
    CSpecialEffectFilter* const placed = new (memory) TypeParam;
    EXPECT_EQ(placed->DeletingDestructor(0), memory);
    void* const freed = ::operator new(sizeof(TypeParam));
    CSpecialEffectFilter* const filter = new (freed) TypeParam;
    EXPECT_EQ(filter->DeletingDestructor(1), freed);
    ::operator delete(memory);
}

}  // namespace
