// A frei0r filter over one effect of libsfx. The code is the same in every plugin; each plugin defines only
// `sfx_frei0r_effect`, the id of its effect.
//
// Parameters. frei0r has no integers and no choices: both are numbers from 0 to 1, spread evenly over the
// property's range and rounded. Defaults are not part of frei0r's interface: hosts read them from a new
// instance.
#include <frei0r.h>
#include <math.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "sfx/sfx.h"

extern const char sfx_frei0r_effect[];

// ---- what the plugin is -------------------------------------------------------------------------------

enum { kMostProperties = 16, kExplanationSize = 512 };

// Explanations of choices name the values, since the parameter is a number. Written once.
static char choice_explanations[kMostProperties][kExplanationSize];
static pthread_once_t explained = PTHREAD_ONCE_INIT;

// Null where the libsfx that runs is older than the plugin and does not have the effect.
static const sfx_effect_info* Info(void) {
    return sfx_find(sfx_frei0r_effect);
}

static const sfx_property_info* PropertyAt(int index) {
    const sfx_effect_info* const info = Info();
    if (info == NULL || index < 0 || (size_t)index >= info->property_count) return NULL;
    return info->properties[index];
}

static double NumberOf(const sfx_property_info* property, int32_t value) {
    const double room = (double)property->maximum - property->minimum;
    return room > 0 ? ((double)value - property->minimum) / room : 0;
}

static int32_t ValueOf(const sfx_property_info* property, double number) {
    if (!(number > 0)) number = 0;  // not a number, too
    if (number > 1) number = 1;
    return (int32_t)(property->minimum + lround(number * ((double)property->maximum - property->minimum)));
}

static void ExplainChoices(void) {
    const sfx_effect_info* const info = Info();
    for (size_t i = 0; i < info->property_count && i < kMostProperties; ++i) {
        const sfx_property_info* const property = info->properties[i];
        char* const text = choice_explanations[i];
        int length = snprintf(text, kExplanationSize, "%s", property->description);
        for (size_t k = 0; k < property->choice_count && length >= 0 && length < kExplanationSize; ++k) {
            const sfx_choice* const choice = &property->choices[k];
            const int added = snprintf(text + length, kExplanationSize - (size_t)length, "%s%.3g: %s",
                                       k == 0 ? " " : ", ", NumberOf(property, choice->value), choice->id);
            length = added < 0 ? added : length + added;
        }
    }
}

int f0r_init(void) {
    return Info() != NULL;
}
void f0r_deinit(void) {}

void f0r_get_plugin_info(f0r_plugin_info_t* plugin) {
    const sfx_effect_info* const info = Info();
    plugin->name = info != NULL ? info->title : sfx_frei0r_effect;
    plugin->author = "The specialeffects project";
    plugin->plugin_type = F0R_PLUGIN_TYPE_FILTER;
    plugin->color_model = F0R_COLOR_MODEL_RGBA8888;
    plugin->frei0r_version = FREI0R_MAJOR_VERSION;
    plugin->major_version = SFX_VERSION_MAJOR;
    plugin->minor_version = SFX_VERSION_MINOR;
    plugin->num_params = info != NULL ? (int)info->property_count : 0;
    plugin->explanation =
        info != NULL ? info->description : "The installed libsfx does not have this effect.";
}

void f0r_get_param_info(f0r_param_info_t* param, int index) {
    const sfx_property_info* const property = PropertyAt(index);
    if (property == NULL) return;
    param->name = property->name;
    param->explanation = property->description;
    switch (property->type) {
        case SFX_BOOLEAN:
            param->type = F0R_PARAM_BOOL;
            break;
        case SFX_COLOR:
            param->type = F0R_PARAM_COLOR;
            break;
        case SFX_CHOICE:
            pthread_once(&explained, ExplainChoices);
            if (index < kMostProperties) param->explanation = choice_explanations[index];
            param->type = F0R_PARAM_DOUBLE;
            break;
        case SFX_INTEGER:
            param->type = F0R_PARAM_DOUBLE;
            break;
    }
}

// ---- an instance --------------------------------------------------------------------------------------

typedef struct {
    sfx_effect* effect;
    sfx_picture picture;  // its plane is the host's output frame, while a frame is processed
    size_t bytes;         // of a frame
    double last_time;     // as the host gave it
    int64_t time;         // nanoseconds since the first frame
    int has_time;
} Instance;

f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
    if (width > SFX_MAX_SIDE || height > SFX_MAX_SIDE) return NULL;
    Instance* const instance = calloc(1, sizeof *instance);
    if (instance == NULL) return NULL;
    instance->bytes = sfx_picture_layout(&instance->picture, SFX_RGBA, (int32_t)width, (int32_t)height, NULL);
    if (instance->bytes == 0 || sfx_create(sfx_frei0r_effect, &instance->effect) < 0) {
        free(instance);
        return NULL;
    }
    // The effect is made ready by the first frame: editors construct every plugin just to read its defaults.
    return instance;
}

void f0r_destruct(f0r_instance_t handle) {
    Instance* const instance = handle;
    if (instance == NULL) return;
    sfx_destroy(instance->effect);
    free(instance);
}

static int32_t Channel(float value) {
    if (!(value > 0)) return 0;
    return value < 1 ? (int32_t)lroundf(value * 255) : 255;
}

void f0r_set_param_value(f0r_instance_t handle, f0r_param_t value, int index) {
    Instance* const instance = handle;
    const sfx_property_info* const property = PropertyAt(index);
    if (instance == NULL || value == NULL || property == NULL) return;
    int32_t number = 0;
    if (property->type == SFX_BOOLEAN) {
        number = *(const f0r_param_bool*)value >= 0.5;
    } else if (property->type == SFX_COLOR) {
        const f0r_param_color_t* const color = value;
        number = Channel(color->r) << 16 | Channel(color->g) << 8 | Channel(color->b);
    } else {
        number = ValueOf(property, *(const f0r_param_double*)value);
    }
    sfx_set_int(instance->effect, property->id, number);
}

void f0r_get_param_value(f0r_instance_t handle, f0r_param_t value, int index) {
    Instance* const instance = handle;
    const sfx_property_info* const property = PropertyAt(index);
    int32_t number = 0;
    if (instance == NULL || value == NULL || property == NULL) return;
    if (sfx_get_int(instance->effect, property->id, &number) < 0) return;
    if (property->type == SFX_BOOLEAN) {
        *(f0r_param_bool*)value = number;
    } else if (property->type == SFX_COLOR) {
        f0r_param_color_t* const color = value;
        color->r = (float)(number >> 16 & 255) / 255;
        color->g = (float)(number >> 8 & 255) / 255;
        color->b = (float)(number & 255) / 255;
    } else {
        *(f0r_param_double*)value = NumberOf(property, number);
    }
}

// The effect's clock. frei0r's time is in seconds, but FFmpeg passes milliseconds, and for some sizes
// meaningless numbers. A step of more than two seconds is read as milliseconds; where it is an editor's jump,
// its length does not matter. A meaningless time counts as a step of 1/30 s.
static int64_t Advance(Instance* instance, double time) {
    if (!(fabs(time) < 1e12)) {
        instance->time += 33333333;
        return instance->time;
    }
    const double step = time - instance->last_time;
    if (instance->has_time && step > 0 && step < 1e8)
        instance->time += llround(step * (step > 2 ? 1e6 : 1e9));
    instance->has_time = 1;
    instance->last_time = time;
    return instance->time;
}

void f0r_update(f0r_instance_t handle, double time, const uint32_t* in, uint32_t* out) {
    Instance* const instance = handle;
    if (instance == NULL || in == NULL || out == NULL) return;
    if (in != out) memcpy(out, in, instance->bytes);
    instance->picture.planes[0] = (uint8_t*)out;
    sfx_process(instance->effect, &instance->picture, Advance(instance, time));
}
