// What all effects do alike, between an effect and its interface. Adds no virtual operation, so no slot
// moves.
//
//   EffectBase<Effect, Interface>  the contract without frames: destructor, formats, properties, texts.
//   PlanarEffect<Effect>           also `Configure`, `ProcessFrame` and `Shutdown`, for effects that work on
//                                  planar frames. Nearly every effect derives from this one.
//
// An effect states, as public members of its class:
//
//   static constexpr const char* DisplayName   its name, the same for all variants
//   static ... Properties()                    its property table (see Property.h), if it has one
//   void Prepare()                             makes the workspace for Width() by Height()
//   void Release()                             releases the workspace
//   void ProcessPlanar(const PlanarFrame&)     changes a frame; may return a ResultCode instead
//   ResultCode ProcessPacked(uint8_t*)         changes a packed frame, if it can
//
// and, where it differs from the rest, one of the traits and hooks of `PlanarEffect`.
#ifndef SPECIALEFFECTS_FRAMEWORK_EFFECTBASE_H
#define SPECIALEFFECTS_FRAMEWORK_EFFECTBASE_H

#include <algorithm>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <vector>

#include "framework/EffectClass.h"
#include "framework/Property.h"
#include "framework/PropertyText.h"
#include "framework/SpecialEffectFilter.h"
#include "framework/StreamRules.h"
#include "framework/TextBridge.h"

template <class Effect, class Interface = CSpecialEffectFilter>
class EffectBase : public Interface {
  public:
    EffectBase() = default;
    EffectBase(const EffectBase&) = delete;
    EffectBase& operator=(const EffectBase&) = delete;

    /// An effect without properties keeps this empty table.
    static std::span<const Property<Effect>> Properties() { return {}; }

    void* DeletingDestructor(uint32_t flags) override {
        Effect* const effect = &Self();
        void* const address = effect;
        if ((flags & 1U) != 0) {
            delete effect;
        } else {
            effect->~Effect();
        }
        return address;  // NOLINT(clang-analyzer-cplusplus.NewDelete): the address alone
    }

    ResultCode GetFilterFlags(uint32_t* flags) override {
        if (flags != nullptr) *flags = 0;
        return kSuccess;
    }

    ResultCode GetSupportedFormats(int32_t* list, int32_t* count) override {
        if (count == nullptr) return kInvalidArgument;
        if (list == nullptr) {
            *count = 2;
            return kSuccess;
        }
        if (*count < 2) return kInvalidArgument;
        list[0] = kFormatPlanar;
        list[1] = kFormatPacked;
        return kSuccess;
    }

    ResultCode LoadSettings(SettingsRecord*) override { return kSuccess; }
    ResultCode LoadSettings(WideSettingsRecord* wide) override {
        if (wide == nullptr) return this->LoadSettings(static_cast<SettingsRecord*>(nullptr));
        NarrowText name(wide->Name);
        NarrowText path(wide->Path, NarrowPathFromWide);
        SettingsRecord narrow{wide->Cookie, name.get(), path.get(), {wide->Reserved[0], wide->Reserved[1]}};
        return this->LoadSettings(&narrow);
    }

    ResultCode SetProperty(PropertyRecord* record) override {
        try {
            return WithProperty(record, [&](const Property<Effect>& row) {
                row.set(Self(), ParseProperty(row.type, record->Value, row.lowest, row.highest));
            });
        } catch (const std::bad_alloc&) {
            this->Shutdown();
            return kOutOfMemory;
        }
    }
    ResultCode SetProperty(WidePropertyRecord* wide) override {
        return Narrowed(wide, [&](PropertyRecord* narrow) { return this->SetProperty(narrow); });
    }

    ResultCode ApplyProperty(PropertyRecord*, int32_t) override { return kSuccess; }
    ResultCode ApplyProperty(WidePropertyRecord* wide, int32_t argument) override {
        return Narrowed(wide, [&](PropertyRecord* narrow) { return this->ApplyProperty(narrow, argument); });
    }

    ResultCode GetProperty(PropertyRecord* record) override {
        return WithProperty(record, [&](const Property<Effect>& row) {
            PrintProperty(row.type, row.get(Self()), record->Value, kTextCapacity);
        });
    }
    ResultCode GetProperty(WidePropertyRecord* wide) override {
        return Narrowed(wide, [&](PropertyRecord* narrow) {
            const ResultCode result = this->GetProperty(narrow);
            if (narrow != nullptr) {
                wide->Cookie = narrow->Cookie;
                if (wide->Name != nullptr) WideFromNarrow(narrow->Name, wide->Name, kTextCapacity);
                if (wide->Value != nullptr) WideFromNarrow(narrow->Value, wide->Value, kTextCapacity);
            }
            return result;
        });
    }

    ResultCode Flush(uint32_t) override { return kSuccess; }
    CInternalInfo* GetInternalInfo() override { return &internalInfo_; }
    using Interface::GetPropTypeInfo;

  protected:
    ~EffectBase() = default;

    Effect& Self() { return static_cast<Effect&>(*this); }

  private:
    /// The effect's name and property table for the host. Has no state.
    class XInternal final : public CInternalInfo {
      public:
        int32_t GetName(char* name, uint32_t size) override {
            if (size > kLargestText) return 0;
            return StringCopySafe(name, size, Effect::DisplayName) == kSuccess ? 1 : 0;
        }
        int32_t GetName(WideChar* name, int32_t length) override {
            return CopyWide(Effect::DisplayName, name, static_cast<uint32_t>(length)) ? 1 : 0;
        }

        int32_t GetPropCount() override { return static_cast<int32_t>(Effect::Properties().size()); }

        PropTypeSet GetPropTypeInfo(int32_t index, char* name, uint32_t nameSize, char* defaultText,
                                    uint32_t defaultSize, char* range, uint32_t rangeSize) override {
            if (index < 0 || index >= GetPropCount()) return PropTypeSet::None;
            const auto& row = Effect::Properties()[static_cast<size_t>(index)];
            if (nameSize <= kLargestText) StringCopySafe(name, nameSize, row.name);
            if (defaultSize <= kLargestText) StringCopySafe(defaultText, defaultSize, row.defaultText);
            if (rangeSize <= kLargestText) StringCopySafe(range, rangeSize, row.range);
            return row.type;
        }
        PropTypeSet GetPropTypeInfo(int32_t index, WideChar* name, uint32_t nameLength, WideChar* defaultText,
                                    uint32_t defaultLength, WideChar* range, uint32_t rangeLength) override {
            if (index < 0 || index >= GetPropCount()) return PropTypeSet::None;
            const auto& row = Effect::Properties()[static_cast<size_t>(index)];
            CopyWide(row.name, name, nameLength);
            CopyWide(row.defaultText, defaultText, defaultLength);
            CopyWide(row.range, range, rangeLength);
            return row.type;
        }

      private:
        static constexpr uint32_t kLargestText = 0x7FFFFFFF;

        /// The texts of the tables are short and ASCII, so that a character is a unit in both forms.
        static bool CopyWide(const char* text, WideChar* wide, uint32_t length) {
            if (length > kLargestText) return false;
            char narrow[kTextCapacity];
            const size_t size = std::min<size_t>(length, kTextCapacity);
            const ResultCode result = StringCopySafe(narrow, size, text);
            if (result == kInvalidArgument || wide == nullptr) return false;
            WideFromNarrow(narrow, wide, size);
            return result == kSuccess;
        }
    };

    /// Runs `act` on the row that `record` names. An effect without properties returns 0.
    template <class Act>
    ResultCode WithProperty(const PropertyRecord* record, Act act) {
        if (Effect::Properties().empty()) return kSuccess;
        if (record == nullptr || record->Name == nullptr || record->Value == nullptr) return kInvalidArgument;
        for (const Property<Effect>& row : Effect::Properties()) {
            if (SameName(record->Name, row.name)) {
                act(row);
                return kSuccess;
            }
        }
        return kInvalidArgument;
    }

    /// Calls the narrow operation on a narrow copy of `wide`.
    template <class Call>
    static ResultCode Narrowed(WidePropertyRecord* wide, Call call) {
        if (wide == nullptr) return call(nullptr);
        NarrowText name(wide->Name);
        NarrowText value(wide->Value);
        PropertyRecord narrow{wide->Cookie, name.get(), value.get()};
        return call(&narrow);
    }

    XInternal internalInfo_;
};

template <class Effect>
class PlanarEffect : public EffectBase<Effect> {
  public:
    /// Whether `Configure` calls `Prepare` for packed streams too (an effect that draws random numbers
    /// there).
    static constexpr bool PreparesPacked = false;
    /// Whether planar frames are refused until `Configure` has made a workspace.
    static constexpr bool NeedsWorkspace = true;
    /// Whether a frame without a luma plane is refused. Chroma is always needed.
    static constexpr bool NeedsLuma = true;

    void Prepare() {}
    void Release() {}
    /// Called for every frame of the configured format, before any other check.
    void NoteFrame() {}
    ResultCode ProcessPacked(uint8_t*) { return kNotImplemented; }

    ResultCode Configure(StreamDescription* description) override {
        if (description == nullptr) return kInvalidArgument;
        ReleaseWorkspace();
        stream_ = *description;
        if (!IsServed(stream_)) return kInvalidArgument;
        if (stream_.Format == kFormatPlanar || Effect::PreparesPacked) {
            return GuardConfigure([this] {
                try {
                    Self().Prepare();
                } catch (...) {
                    ReleaseWorkspace();
                    throw;
                }
                hasWorkspace_ = true;
                return kSuccess;
            });
        }
        return kSuccess;
    }

    ResultCode ProcessFrame(FrameRecord* frame) override {
        if (const ResultCode refusal = CheckFrame(frame, stream_); refusal != kSuccess) return refusal;
        Self().NoteFrame();
        const ImageRecord& image = *frame->Image;
        if (stream_.Format == kFormatPacked) return Self().ProcessPacked(image.Plane[0]);
        if (stream_.Format != kFormatPlanar) return kInvalidArgument;

        if (image.Plane[1] == nullptr || image.Plane[2] == nullptr) return kInvalidArgument;
        if (Effect::NeedsLuma && image.Plane[0] == nullptr) return kInvalidArgument;
        if (Effect::NeedsWorkspace && !hasWorkspace_) return kFailure;

        const PlanarFrame planes(image, stream_);
        try {
            if constexpr (std::is_void_v<decltype(Self().ProcessPlanar(planes))>) {
                Self().ProcessPlanar(planes);
                return kSuccess;
            } else {
                return Self().ProcessPlanar(planes);
            }
        } catch (const std::bad_alloc&) {
            ReleaseWorkspace();
            return kOutOfMemory;
        }
    }

    ResultCode Shutdown() override {
        ReleaseWorkspace();
        return kSuccess;
    }

    int32_t Width() const { return stream_.Width; }
    int32_t Height() const { return stream_.Height; }
    /// Whether the last `Configure` accepted its stream. The size of a refused stream is stored, but planes
    /// may be smaller: effects that need no workspace check this.
    bool ServesStream() const { return IsServed(stream_); }

  protected:
    ~PlanarEffect() = default;

  private:
    using EffectBase<Effect>::Self;

    void ReleaseWorkspace() {
        hasWorkspace_ = false;
        Self().Release();
    }

    StreamDescription stream_{};
    bool hasWorkspace_ = false;
};

template <class Effect>
CSpecialEffectFilter* EffectClass<Effect>::Make(int32_t variant) {
    if constexpr (std::is_constructible_v<Effect, int32_t>) {
        return std::make_unique<Effect>(variant).release();
    } else {
        return std::make_unique<Effect>().release();
    }
}

template <class Effect>
std::vector<PropertyWords> EffectClass<Effect>::Words() {
    std::vector<PropertyWords> words;
    for (const Property<Effect>& row : Effect::Properties()) {
        words.push_back({row.name, row.description, row.values});
    }
    return words;
}

#endif
