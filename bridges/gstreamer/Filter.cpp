#include "Filter.h"

#include <atomic>
#include <ctime>
#include <mutex>
#include <string>
#include <utility>

#include "Pictures.h"

namespace sfxgst {

struct FilterState {
    // Held while a setting changes, which may take long. Taken before `mutex`.
    std::mutex settings;

    // Guards what follows; never held for long.
    std::mutex mutex;
    Effect effect;
    std::string problem;  // why there is no effect
    bool enabled = true;
    uint32_t seed = SFX_DEFAULT_SEED;
    std::string dataFolder;
    int32_t width = 0, height = 0;  // of the negotiated frames; 0 before there are any

    std::atomic<bool> warnedOfMissingData = false;

    // Of the streaming thread.
    bool warnedOfInterlacing = false;
    // Of an effect with a memory: nanoseconds of processor time for a frame, smoothed; -1 before the first.
    int64_t cost = -1;
};

namespace {

using Lock = std::lock_guard<std::mutex>;

// An effect with a memory gets late frames, too, where it takes less than the time between frames divided by
// this.
constexpr int64_t kCheapPart = 10;
// Any size will do to look for data files, and to make them.
constexpr int32_t kTrialWidth = 64, kTrialHeight = 48;

GstVideoFilterClass* parentClass = nullptr;

FilterState& StateOf(gpointer filter) {
    return *static_cast<Filter*>(filter)->state;
}

bool IsEnabled(FilterState& state) {
    const Lock lock(state.mutex);
    return state.enabled;
}

bool HasFlag(const Effect& effect, uint32_t flag) {
    for (size_t link = 0; link < sfx_link_count(effect.get()); ++link) {
        if ((sfx_link_info(effect.get(), link)->flags & flag) != 0) {
            return true;
        }
    }
    return false;
}

// ---- messages ----------------------------------------------------------------------------------------

/// Posts a message for a status of libsfx. False for an error.
bool Report(gpointer filter, int32_t status) {
    switch (status) {
        case SFX_OK:
        case SFX_CLAMPED:
            return true;
        case SFX_DATA_MISSING:
            if (!StateOf(filter).warnedOfMissingData.exchange(true)) {
                GST_ELEMENT_WARNING(filter, RESOURCE, NOT_FOUND, ("%s", sfx_message()), (nullptr));
            }
            return true;
        case SFX_ERROR_MEMORY:
            GST_ELEMENT_ERROR(filter, RESOURCE, NO_SPACE_LEFT, ("%s", sfx_message()), (nullptr));
            return false;
        case SFX_ERROR_PICTURE:
            GST_ELEMENT_ERROR(filter, STREAM, FORMAT, ("%s", sfx_message()), (nullptr));
            return false;
        default:
            GST_ELEMENT_ERROR(filter, STREAM, FAILED, ("%s", sfx_message()), (nullptr));
            return false;
    }
}

/// Makes an effect ready for the size of the frames, where that is known. Under `settings`, report the status
/// later: a synchronous bus handler may set properties.
sfx_status Prepare(gpointer filter, const Effect& effect) {
    FilterState& state = StateOf(filter);
    int32_t width = 0, height = 0;
    {
        const Lock lock(state.mutex);
        width = state.width;
        height = state.height;
    }
    return effect == nullptr || width == 0 ? SFX_OK : sfx_prepare(effect.get(), width, height);
}

// ---- properties --------------------------------------------------------------------------------------

enum : guint { kEnabled = 1, kSeed, kDataFolder };

void SetEnabled(GObject* object, bool enabled) {
    FilterState& state = StateOf(object);
    sfx_status status = SFX_OK;
    {
        const Lock settings(state.settings);
        if (enabled && !IsEnabled(state)) {
            // The effect has missed frames. What it remembers is outdated.
            if (const Effect effect = CurrentEffect(object)) {
                sfx_reset(effect.get());
                status = Prepare(object, effect);
            }
        }
        const Lock lock(state.mutex);
        state.enabled = enabled;
    }
    Report(object, status);
}

void SetSeed(GObject* object, uint32_t seed) {
    FilterState& state = StateOf(object);
    const Lock settings(state.settings);
    const Effect effect = CurrentEffect(object);
    {
        const Lock lock(state.mutex);
        if (seed == std::exchange(state.seed, seed)) {
            return;  // libsfx would start the effect anew
        }
    }
    if (effect != nullptr) {
        sfx_set_seed(effect.get(), seed);
    }
}

void SetDataFolder(GObject* object, const char* folder) {
    FilterState& state = StateOf(object);
    const Lock settings(state.settings);
    const Effect effect = CurrentEffect(object);
    {
        const Lock lock(state.mutex);
        state.dataFolder = folder != nullptr ? folder : "";
    }
    if (effect != nullptr) {
        sfx_set_data_folder(effect.get(), folder);
    }
}

void SetProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec) noexcept {
    switch (id) {
        case kEnabled:
            return SetEnabled(object, g_value_get_boolean(value) != FALSE);
        case kSeed:
            return SetSeed(object, g_value_get_uint(value));
        case kDataFolder:
            return SetDataFolder(object, g_value_get_string(value));
        default:
            G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

void GetProperty(GObject* object, guint id, GValue* value, GParamSpec* spec) noexcept {
    FilterState& state = StateOf(object);
    const Lock lock(state.mutex);
    switch (id) {
        case kEnabled:
            return g_value_set_boolean(value, state.enabled ? TRUE : FALSE);
        case kSeed:
            return g_value_set_uint(value, state.seed);
        case kDataFolder:
            return g_value_set_string(value, state.dataFolder.empty() ? nullptr : state.dataFolder.c_str());
        default:
            G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

// ---- states and caps ---------------------------------------------------------------------------------

gboolean Start(GstBaseTransform* filter) noexcept {
    FilterState& state = StateOf(filter);
    const Effect effect = CurrentEffect(G_OBJECT(filter));
    if (effect == nullptr) {
        // Messages are posted without locks: a synchronous bus handler may read properties.
        std::string problem;
        {
            const Lock lock(state.mutex);
            problem = state.problem;
        }
        if (!problem.empty()) {
            GST_ELEMENT_ERROR(filter, RESOURCE, SETTINGS, ("%s", problem.c_str()), (nullptr));
            return FALSE;
        }
    }
    // A data file that has to be made takes seconds: here, in the state change, and not while frames run.
    if (effect != nullptr && HasFlag(effect, SFX_NEEDS_DATA) &&
        !Report(filter, sfx_prepare(effect.get(), kTrialWidth, kTrialHeight))) {
        return FALSE;
    }
    return TRUE;
}

gboolean Stop(GstBaseTransform* filter) noexcept {
    FilterState& state = StateOf(filter);
    if (const Effect effect = CurrentEffect(G_OBJECT(filter))) {
        sfx_reset(effect.get());
    }
    state.warnedOfMissingData = false;
    state.warnedOfInterlacing = false;
    state.cost = -1;
    const Lock lock(state.mutex);
    state.width = state.height = 0;
    return TRUE;
}

gboolean SetInfo(GstVideoFilter* filter, GstCaps*, GstVideoInfo* info, GstCaps*, GstVideoInfo*) noexcept {
    FilterState& state = StateOf(filter);
    if (GST_VIDEO_INFO_IS_INTERLACED(info) && !std::exchange(state.warnedOfInterlacing, true)) {
        GST_ELEMENT_WARNING(filter, STREAM, FORMAT,
                            ("The video is interlaced. Both fields are changed as one picture; put a "
                             "deinterlace element in front for better results."),
                            (nullptr));
    }
    {
        const Lock lock(state.mutex);
        state.width = GST_VIDEO_INFO_WIDTH(info);
        state.height = GST_VIDEO_INFO_HEIGHT(info);
    }
    return !IsEnabled(state) || Report(filter, Prepare(filter, CurrentEffect(G_OBJECT(filter)))) ? TRUE
                                                                                                 : FALSE;
}

gboolean SinkEvent(GstBaseTransform* filter, GstEvent* event) noexcept {
    // What comes after a seek has nothing to do with what came before.
    if (GST_EVENT_TYPE(event) == GST_EVENT_FLUSH_STOP) {
        if (const Effect effect = CurrentEffect(G_OBJECT(filter))) {
            sfx_reset(effect.get());
        }
    }
    return GST_BASE_TRANSFORM_CLASS(parentClass)->sink_event(filter, event);
}

// ---- frames ------------------------------------------------------------------------------------------

void BeforeTransform(GstBaseTransform* filter, GstBuffer* buffer) noexcept {
    const GstClockTime time =
        gst_segment_to_stream_time(&filter->segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    if (GST_CLOCK_TIME_IS_VALID(time)) {
        gst_object_sync_values(GST_OBJECT(filter), time);
    }
    // Only here, between two frames: the base class must find one answer for the whole of a frame.
    FilterState& state = StateOf(filter);
    const Lock lock(state.mutex);
    gst_base_transform_set_passthrough(filter, state.enabled && state.effect != nullptr ? FALSE : TRUE);
}

/// The running time, which goes on where segments follow each other and where a file is played in a loop.
int64_t TimeOf(GstBaseTransform* filter, GstBuffer* buffer) {
    if (filter->segment.format != GST_FORMAT_TIME || !GST_BUFFER_PTS_IS_VALID(buffer)) {
        return SFX_NO_TIME;
    }
    const GstClockTime time =
        gst_segment_to_running_time(&filter->segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    return GST_CLOCK_TIME_IS_VALID(time) ? static_cast<int64_t>(time) : SFX_NO_TIME;
}

int64_t ProcessorTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

GstFlowReturn TransformFrame(GstVideoFilter* filter, GstVideoFrame* frame) noexcept {
    const Effect effect = CurrentEffect(G_OBJECT(filter));
    if (effect == nullptr) {
        return GST_FLOW_OK;
    }
    const sfx_picture picture = PictureOf(*frame, filter->in_info);
    const int64_t time = TimeOf(GST_BASE_TRANSFORM(filter), frame->buffer);
    sfx_status status = SFX_OK;
    if (HasFlag(effect, SFX_HAS_MEMORY)) {
        const int64_t start = ProcessorTime();
        status = sfx_process(effect.get(), &picture, time);
        const int64_t cost = ProcessorTime() - start;
        int64_t& mean = StateOf(filter).cost;
        mean = mean < 0 ? cost : mean + (cost - mean) / 8;
    } else {
        status = sfx_process(effect.get(), &picture, time);
    }
    return Report(filter, status) ? GST_FLOW_OK : GST_FLOW_ERROR;
}

/// Whether an effect should be shown frames that are too late to be displayed.
bool WantsLateFrames(GstBaseTransform* filter) {
    const GstVideoInfo& info = GST_VIDEO_FILTER(filter)->in_info;
    const int64_t interval = GST_VIDEO_INFO_FPS_N(&info) > 0
                                 ? GST_SECOND * GST_VIDEO_INFO_FPS_D(&info) / GST_VIDEO_INFO_FPS_N(&info)
                                 : GST_SECOND / 30;
    const int64_t cost = StateOf(filter).cost;
    return cost >= 0 && cost * kCheapPart < interval && !gst_base_transform_is_passthrough(filter) &&
           HasFlag(CurrentEffect(G_OBJECT(filter)), SFX_HAS_MEMORY);
}

GstFlowReturn SubmitInputBuffer(GstBaseTransform* filter, gboolean isDiscont, GstBuffer* buffer) noexcept {
    GstBaseTransformClass& base = *GST_BASE_TRANSFORM_CLASS(parentClass);
    if (!WantsLateFrames(filter)) {
        return base.submit_input_buffer(filter, isDiscont, buffer);
    }
    GstBuffer* late = gst_buffer_ref(buffer);
    GstFlowReturn flow = base.submit_input_buffer(filter, isDiscont, buffer);
    if (flow == GST_BASE_TRANSFORM_FLOW_DROPPED) {
        late = gst_buffer_make_writable(late);
        if (base.transform_ip(filter, late) == GST_FLOW_ERROR) {
            flow = GST_FLOW_ERROR;
        }
    }
    gst_buffer_unref(late);
    return flow;
}

// ---- the type ----------------------------------------------------------------------------------------

void Finalize(GObject* object) noexcept {
    const std::unique_ptr<FilterState> last(static_cast<Filter*>(static_cast<gpointer>(object))->state);
    G_OBJECT_CLASS(parentClass)->finalize(object);
}

void InitializeClass(gpointer klass, gpointer) noexcept {
    parentClass = static_cast<GstVideoFilterClass*>(g_type_class_peek_parent(klass));

    GObjectClass& object = *G_OBJECT_CLASS(klass);
    object.set_property = SetProperty;
    object.get_property = GetProperty;
    object.finalize = Finalize;
    const auto flags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    g_object_class_install_property(
        &object, kEnabled,
        g_param_spec_boolean(
            "enabled", "Enabled", "Apply the effect; frames pass unchanged, at no cost, when it is off", TRUE,
            static_cast<GParamFlags>(flags | GST_PARAM_CONTROLLABLE | GST_PARAM_MUTABLE_PLAYING)));
    g_object_class_install_property(
        &object, kSeed,
        g_param_spec_uint(
            "seed", "Seed", "Start of the effect's random numbers; a new seed starts the effect anew", 0,
            G_MAXUINT32, SFX_DEFAULT_SEED, static_cast<GParamFlags>(flags | GST_PARAM_MUTABLE_PLAYING)));
    g_object_class_install_property(
        &object, kDataFolder,
        g_param_spec_string("data-folder", "Data folder",
                            "Folder in which data files are looked for before the installed ones", nullptr,
                            static_cast<GParamFlags>(flags | GST_PARAM_MUTABLE_READY)));

    GstBaseTransformClass& transform = *GST_BASE_TRANSFORM_CLASS(klass);
    transform.transform_ip_on_passthrough = FALSE;
    transform.start = Start;
    transform.stop = Stop;
    transform.sink_event = SinkEvent;
    transform.before_transform = BeforeTransform;
    transform.submit_input_buffer = SubmitInputBuffer;

    GstVideoFilterClass& video = *GST_VIDEO_FILTER_CLASS(klass);
    video.set_info = SetInfo;
    video.transform_frame_ip = TransformFrame;

    GstCaps* const caps = SupportedCaps();
    for (const auto& [name, direction] : {std::pair("sink", GST_PAD_SINK), std::pair("src", GST_PAD_SRC)}) {
        gst_element_class_add_pad_template(GST_ELEMENT_CLASS(klass),
                                           gst_pad_template_new(name, direction, GST_PAD_ALWAYS, caps));
    }
    gst_caps_unref(caps);
}

void InitializeInstance(GTypeInstance* instance, gpointer) noexcept {
    static_cast<Filter*>(static_cast<gpointer>(instance))->state = std::make_unique<FilterState>().release();
    gst_base_transform_set_qos_enabled(GST_BASE_TRANSFORM(instance), TRUE);
}

GType RegisterType() {
    GTypeInfo info{};
    info.class_size = sizeof(FilterClass);
    info.class_init = InitializeClass;
    info.instance_size = sizeof(Filter);
    info.instance_init = InitializeInstance;
    const GType type =
        g_type_register_static(GST_TYPE_VIDEO_FILTER, "GstSfxFilter", &info, G_TYPE_FLAG_ABSTRACT);
    gst_type_mark_as_plugin_api(type, static_cast<GstPluginAPIFlags>(0));
    return type;
}

}  // namespace

Effect CreateEffect(const char* text) {
    sfx_effect* effect = nullptr;
    sfx_create(text, &effect);
    return effect != nullptr ? Effect(effect, sfx_destroy) : nullptr;
}

GType FilterType() {
    static const GType type = RegisterType();
    return type;
}

Effect CurrentEffect(GObject* filter) {
    FilterState& state = StateOf(filter);
    const Lock lock(state.mutex);
    return state.effect;
}

void ReplaceEffect(GObject* filter, Effect effect) {
    FilterState& state = StateOf(filter);
    sfx_status status = SFX_OK;
    {
        const Lock settings(state.settings);
        if (effect != nullptr) {
            sfx_set_seed(effect.get(), state.seed);
            sfx_set_data_folder(effect.get(), state.dataFolder.empty() ? nullptr : state.dataFolder.c_str());
            status = Prepare(filter, effect);
        }
        const Lock lock(state.mutex);
        state.effect.swap(effect);
        state.problem.clear();
    }
    Report(filter, status);
}

void DescribeElement(gpointer elementClass, const char* name, const char* description) {
    gst_element_class_set_metadata(GST_ELEMENT_CLASS(elementClass), name, "Filter/Effect/Video", description,
                                   "the project's authors");
}

void RefuseEffect(GObject* filter, const char* problem) {
    FilterState& state = StateOf(filter);
    GST_ELEMENT_WARNING(filter, RESOURCE, SETTINGS, ("%s", problem), (nullptr));
    const Lock lock(state.mutex);
    if (state.effect == nullptr) {
        state.problem = problem;
    }
}

}  // namespace sfxgst
