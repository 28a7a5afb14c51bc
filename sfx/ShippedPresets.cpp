#include "sfx/Presets.h"
namespace sfx {
const char kShippedPresets[] = "";
}
