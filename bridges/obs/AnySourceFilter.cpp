// "Special effect (any source)": draws the source into a texture, reads that back one frame later, when the
// graphics processor has finished it, runs the effect and draws the result.
//
// OBS's textures have colours that are multiplied by alpha, which effects must not see. They are divided by
// alpha on the way in, and blending multiplies them again on the way out.
#include <obs-module.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "Filter.h"

namespace sfxobs {
namespace {

template <class Object, void (*Destroy)(Object*)>
struct GraphicsDeleter {
    void operator()(Object* object) const { Destroy(object); }
};
template <class Object, void (*Destroy)(Object*)>
using Graphics = std::unique_ptr<Object, GraphicsDeleter<Object, Destroy>>;
using Target = Graphics<gs_texrender_t, gs_texrender_destroy>;
using Stage = Graphics<gs_stagesurf_t, gs_stagesurface_destroy>;
using Texture = Graphics<gs_texture_t, gs_texture_destroy>;

struct Size {
    uint32_t width = 0, height = 0;
    bool operator==(const Size&) const = default;
};

/// What a filter is applied to: the next filter or the source, and the source.
struct Below {
    obs_source_t *target, *parent;
};

/// A picture on its way back from the graphics processor.
struct Slot {
    Stage stage;
    Size size;
    bool isFilled = false;
    int64_t time = 0;  // nanoseconds
};

class AnySourceFilter : public Filter {
  public:
    using Filter::Filter;
    ~AnySourceFilter() override;

    void Tick();
    void Render();
    gs_color_space ColorSpace(size_t count, const gs_color_space* preferred) const;

  private:
    void Advance(const Below& below, Size size);
    bool Capture(const Below& below, Size size, Slot& slot);
    void Process(Slot& slot);
    void Draw(Size size) const;
    void Forget();

    // Of the graphics thread.
    Target source_, straight_;  // the source as it draws itself, and with colours divided by alpha
    Slot slots_[2];
    size_t next_ = 0;
    std::vector<uint8_t> pixels_;
    Texture result_;
    Size resultSize_;
    bool hasResult_ = false;
    bool isDrawn_ = false;  // since the last tick
};

AnySourceFilter::~AnySourceFilter() {
    obs_enter_graphics();
    source_.reset();
    straight_.reset();
    for (Slot& slot : slots_) slot.stage.reset();
    result_.reset();
    obs_leave_graphics();
}

/// After a time out of sight, what was read before is out of date.
void AnySourceFilter::Forget() {
    for (Slot& slot : slots_) slot.isFilled = false;
    hasResult_ = false;
}

void AnySourceFilter::Tick() {
    if (!isDrawn_) Forget();
    isDrawn_ = false;
}

/// What is below the filter, as it draws itself. obs_source_skip_video_filter does the same, but it crashes
/// where the filter is being removed on another thread.
void DrawSource(const Below& below) {
    constexpr uint32_t kDrawsItself = OBS_SOURCE_CUSTOM_DRAW | OBS_SOURCE_ASYNC;
    if (below.target == below.parent && (obs_source_get_output_flags(below.target) & kDrawsItself) == 0) {
        obs_source_default_render(below.target);
    } else {
        obs_source_video_render(below.target);
    }
}

void AnySourceFilter::Render() {
    const Below below{obs_filter_get_target(source()), obs_filter_get_parent(source())};
    if (below.target == nullptr || below.parent == nullptr) return;
    const Size size{obs_source_get_base_width(below.target), obs_source_get_base_height(below.target)};
    if (size.width == 0 || size.height == 0 || std::max(size.width, size.height) > SFX_MAX_SIDE) {
        return DrawSource(below);
    }
    // A source may be drawn several times a frame: the preview, the program, a projector.
    if (!std::exchange(isDrawn_, true)) Advance(below, size);
    if (hasResult_) {
        Draw(size);
    } else {
        DrawSource(below);
    }
}

/// Reads the source back, and processes what was read in the frame before. While the effect gets ready for
/// another size, the latest result stays.
void AnySourceFilter::Advance(const Below& below, Size size) {
    switch (runner().ReadinessFor(static_cast<int32_t>(size.width), static_cast<int32_t>(size.height))) {
        case Runner::Readiness::None:
            return;
        case Runner::Readiness::Soon:
            for (Slot& slot : slots_) slot.isFilled = false;
            return;
        case Runner::Readiness::Ready:
            break;
    }
    Slot& present = slots_[next_];
    Slot& previous = slots_[1 - next_];
    next_ = 1 - next_;
    if (!Capture(below, size, present)) return Forget();
    if (previous.isFilled && previous.size == size) Process(previous);
}

void DrawTexture(gs_texture_t* texture, Size size, const char* technique) {
    gs_effect_t* const effect = obs_get_base_effect(OBS_EFFECT_DEFAULT);
    const bool isLinear = gs_get_linear_srgb();
    const bool wasLinear = gs_framebuffer_srgb_enabled();
    gs_enable_framebuffer_srgb(isLinear);
    gs_eparam_t* const image = gs_effect_get_param_by_name(effect, "image");
    if (isLinear) {
        gs_effect_set_texture_srgb(image, texture);
    } else {
        gs_effect_set_texture(image, texture);
    }
    while (gs_effect_loop(effect, technique)) gs_draw_sprite(texture, 0, size.width, size.height);
    gs_enable_framebuffer_srgb(wasLinear);
}

/// Draws into an empty target of a size.
template <class Function>
bool DrawInto(Target& target, Size size, Function&& draw) {
    if (target == nullptr) target.reset(gs_texrender_create(GS_RGBA, GS_ZS_NONE));
    if (target == nullptr) return false;
    gs_texrender_reset(target.get());
    if (!gs_texrender_begin_with_color_space(target.get(), size.width, size.height, GS_CS_SRGB)) return false;
    vec4 transparent;
    vec4_zero(&transparent);
    gs_clear(GS_CLEAR_COLOR, &transparent, 0.0F, 0);
    gs_ortho(0.0F, static_cast<float>(size.width), 0.0F, static_cast<float>(size.height), -100.0F, 100.0F);
    gs_blend_state_push();
    std::forward<Function>(draw)();
    gs_blend_state_pop();
    gs_texrender_end(target.get());
    return true;
}

bool AnySourceFilter::Capture(const Below& below, Size size, Slot& slot) {
    slot.isFilled = false;
    const bool isDrawn = DrawInto(source_, size, [&] {
        gs_blend_function_separate(GS_BLEND_SRCALPHA, GS_BLEND_INVSRCALPHA, GS_BLEND_ONE,
                                   GS_BLEND_INVSRCALPHA);
        DrawSource(below);
    });
    const bool isDivided = isDrawn && DrawInto(straight_, size, [&] {
                               gs_enable_blending(false);
                               DrawTexture(gs_texrender_get_texture(source_.get()), size, "DrawAlphaDivide");
                           });
    if (!isDivided) return false;
    if (slot.stage == nullptr || slot.size != size) {
        slot.stage.reset(gs_stagesurface_create(size.width, size.height, GS_RGBA));
        slot.size = size;
    }
    if (slot.stage == nullptr) return false;
    gs_stage_texture(slot.stage.get(), gs_texrender_get_texture(straight_.get()));
    slot.time = static_cast<int64_t>(obs_get_video_frame_time());
    slot.isFilled = true;
    return true;
}

void AnySourceFilter::Process(Slot& slot) {
    slot.isFilled = false;
    sfx_picture picture;
    pixels_.resize(sfx_picture_layout(&picture, SFX_RGBA, static_cast<int32_t>(slot.size.width),
                                      static_cast<int32_t>(slot.size.height), nullptr));
    picture.planes[0] = pixels_.data();
    const size_t rowBytes = size_t{4} * slot.size.width;

    uint8_t* mapped = nullptr;
    uint32_t stride = 0;
    if (!gs_stagesurface_map(slot.stage.get(), &mapped, &stride)) return;
    if (stride == rowBytes) {
        std::memcpy(pixels_.data(), mapped, pixels_.size());
    } else {
        for (size_t y = 0; y < slot.size.height; ++y) {
            std::memcpy(pixels_.data() + y * rowBytes, mapped + y * stride, rowBytes);
        }
    }
    gs_stagesurface_unmap(slot.stage.get());

    runner().Process(picture, slot.time);

    if (result_ == nullptr || resultSize_ != slot.size) {
        result_.reset(gs_texture_create(slot.size.width, slot.size.height, GS_RGBA, 1, nullptr, GS_DYNAMIC));
        resultSize_ = slot.size;
    }
    hasResult_ = result_ != nullptr;
    if (hasResult_) {
        gs_texture_set_image(result_.get(), pixels_.data(), static_cast<uint32_t>(rowBytes), false);
    }
}

/// The result, which may still have an earlier size.
void AnySourceFilter::Draw(Size size) const {
    gs_blend_state_push();
    gs_enable_blending(true);
    gs_blend_function_separate(GS_BLEND_SRCALPHA, GS_BLEND_INVSRCALPHA, GS_BLEND_ONE, GS_BLEND_INVSRCALPHA);
    DrawTexture(result_.get(), size, "Draw");
    gs_blend_state_pop();
}

gs_color_space AnySourceFilter::ColorSpace(size_t count, const gs_color_space* preferred) const {
    obs_source_t* const target = obs_filter_get_target(source());
    return hasResult_ || target == nullptr ? GS_CS_SRGB
                                           : obs_source_get_color_space(target, count, preferred);
}

AnySourceFilter& FilterOf(void* data) {
    return *static_cast<AnySourceFilter*>(static_cast<Filter*>(data));
}

}  // namespace

void RegisterAnySourceFilter() {
    obs_source_info info = FilterInfo<AnySourceFilter>(
        "specialeffects_any_filter", OBS_SOURCE_VIDEO | OBS_SOURCE_CUSTOM_DRAW | OBS_SOURCE_SRGB);
    info.get_name = [](void*) noexcept { return obs_module_text("AnySourceFilter"); };
    info.video_tick = [](void* data, float) noexcept { FilterOf(data).Tick(); };
    info.video_render = [](void* data, gs_effect_t*) noexcept { Guarded([&] { FilterOf(data).Render(); }); };
    info.video_get_color_space = [](void* data, size_t count, const gs_color_space* preferred) noexcept {
        return FilterOf(data).ColorSpace(count, preferred);
    };
    obs_register_source(&info);
}

}  // namespace sfxobs
