// What hosts of our own can show of a property, beside the texts of the contract.
#ifndef SPECIALEFFECTS_FRAMEWORK_PROPERTYWORDS_H
#define SPECIALEFFECTS_FRAMEWORK_PROPERTYWORDS_H

#include <cstdint>
#include <span>

/// One value of an enumerated integer.
struct ValueName {
    int32_t value;
    const char* id;           ///< lower case, dashed: "regular-stars"
    const char* description;  ///< a few words
};

struct PropertyWords {
    const char* name;                   ///< as in the contract
    const char* description;            ///< one sentence
    std::span<const ValueName> values;  ///< empty: the values have no names
};

#endif
