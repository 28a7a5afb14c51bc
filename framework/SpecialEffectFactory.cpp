#include "framework/SpecialEffectFactory.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>

#include "framework/Catalogue.h"
#include "framework/Guid.h"

namespace {

class CSpecialEffectFactory final : public ISpecialEffectFactory {
  public:
    uint32_t AddRef() override {
        ++references_;
        return 0;
    }

    uint32_t Release() override {
        // One atomic step, so that only one thread takes the last reference. A count of 0 does not underflow:
        // a host that never added a reference frees the factory this way.
        uint32_t count = references_;
        while (count > 0 && !references_.compare_exchange_weak(count, count - 1)) continue;
        if (count <= 1) CSpecialEffectFactory::DeletingDestructor(1);
        return 0;
    }

    ResultCode CreateEffect(EffectGuid id, uint32_t, CSpecialEffectFilter** effect) override {
        if (effect == nullptr) return kInvalidArgument;
        for (const CatalogueRow& row : EffectCatalogue()) {
            if (SameGuid(row.id, id)) {
                try {
                    *effect = row.create();
                } catch (const std::bad_alloc&) {
                    *effect = nullptr;
                }
                return kSuccess;
            }
        }
        return kFailure;
    }

    void DestroyEffect(CSpecialEffectFilter* effect) override {
        if (effect == nullptr) return;
        effect->Shutdown();
        effect->DeletingDestructor(1);
    }

    uint32_t ReservedQuery(uint32_t, uint32_t, uint32_t, uint32_t, uint32_t) override { return 0; }

    ResultCode EnumerateEffects(EffectGuid* list, uint32_t* count) override {
        const auto listing = EffectListing();
        const auto size = static_cast<uint32_t>(listing.size());
        if (count == nullptr) return kInvalidArgument;
        if (list != nullptr) {
            if (*count < size) return kInvalidArgument;
            std::copy(listing.begin(), listing.end(), list);
        }
        *count = size;
        return kSuccess;
    }

    void ReservedNoOp() override {}

    void* DeletingDestructor(uint32_t flags) override {
        void* const memory = this;
        if ((flags & 1U) != 0) {
            delete this;
        } else {
            std::destroy_at(this);
        }
        return memory;  // NOLINT(clang-analyzer-cplusplus.NewDelete): the address alone
    }

  private:
    std::atomic<uint32_t> references_ = 0;
};

}  // namespace

ISpecialEffectFactory* CreateSpecialEffectFactory() {
    return new (std::nothrow) CSpecialEffectFactory;
}
