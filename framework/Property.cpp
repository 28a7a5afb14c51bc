#include "framework/Property.h"

#include <algorithm>

#include "framework/PropertyText.h"

int32_t ParseProperty(PropTypeSet type, const char* text, int32_t lowest, int32_t highest) {
    switch (type) {
        case PropTypeSet::Boolean:
            return BoolFromString(text) ? 1 : 0;
        case PropTypeSet::Color:
            return static_cast<int32_t>(ColorFromString(text));
        default:
            // First the upper bound, then the lower one.
            return std::max(std::min(IntegerFromString(text), highest), lowest);
    }
}

void PrintProperty(PropTypeSet type, int32_t value, char* buffer, size_t size) {
    switch (type) {
        case PropTypeSet::Boolean:
            BoolToString(value != 0, buffer, size);
            break;
        case PropTypeSet::Color:
            ColorToString(static_cast<uint32_t>(value), buffer, size);
            break;
        default:
            IntegerToString(value, buffer, size);
            break;
    }
}
