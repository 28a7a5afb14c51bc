// One row of an effect's property table.
//
// An effect with properties lists them once, in a static function `Properties`; the names, default texts and
// ranges that hosts see, setting, clamping and getting all work from these rows:
//
//     std::span<const Property<CRain>> CRain::Properties() {
//         static constexpr Property<CRain> rows[] = {
//             IntegerProperty<&CRain::DropPeriod>("DropPeriod", "1", "1,20")
//                 .Says("Number of frames from one drop to the next."),
//             IntegerProperty<&CRain::DropSize>("DropSize", "3", "2,16")
//                 .Says("Diameter of a drop in pixels.")
//                 .OnSet([](CRain& rain, int32_t size) {
//                     rain.DropSize = size;
//                     rain.StampReady = false;
//                 }),
//         };
//         return rows;
//     }
#ifndef SPECIALEFFECTS_FRAMEWORK_PROPERTY_H
#define SPECIALEFFECTS_FRAMEWORK_PROPERTY_H

#include <cstdint>
#include <limits>
#include <span>

#include "framework/PropertyWords.h"
#include "framework/SpecialEffectFilter.h"

/// Values travel as int32_t: a boolean as 0 or 1, a colour as its bit pattern.
template <class Effect>
struct Property {
    using Getter = int32_t (*)(const Effect&);
    using Setter = void (*)(Effect&, int32_t);

    PropTypeSet type;
    const char* name;
    const char* defaultText;  ///< what hosts see; an effect may start with another value
    const char* range;        ///< "lo,hi" for integers, otherwise empty
    int32_t lowest, highest;  ///< bounds of an integer, applied before `set`
    Getter get;
    Setter set;
    const char* description = "";         ///< one sentence, for hosts of our own
    std::span<const ValueName> values{};  ///< names of an enumerated integer's values

    // Not consteval: Clang 14 compiles a lambda in the argument of a consteval function wrongly.

    /// The same row with a sentence that says what the property does and, where its values are a choice,
    /// their names.
    constexpr Property Says(const char* sentence, std::span<const ValueName> names = {}) const {
        Property row = *this;
        row.description = sentence;
        row.values = names;
        return row;
    }
    /// The same row with other bounds than the range text says.
    constexpr Property ClampedTo(int32_t lo, int32_t hi) const {
        Property row = *this;
        row.lowest = lo;
        row.highest = hi;
        return row;
    }
    /// The same row, for a property that does more than be stored.
    constexpr Property OnSet(Setter setter) const {
        Property row = *this;
        row.set = setter;
        return row;
    }
    /// The same row, for a property that shows another value than the stored one.
    constexpr Property OnGet(Getter getter) const {
        Property row = *this;
        row.get = getter;
        return row;
    }
};

namespace property_detail {

template <class>
struct MemberPointer;
template <class Owner_, class Value_>
struct MemberPointer<Value_ Owner_::*> {
    using Owner = Owner_;
    using Value = Value_;
};
template <auto Member>
using OwnerOf = typename MemberPointer<decltype(Member)>::Owner;
template <auto Member>
using ValueOf = typename MemberPointer<decltype(Member)>::Value;

constexpr int32_t ReadBound(const char*& text) {
    int32_t value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) value = 10 * value + (*text - '0');
    return value;
}

template <auto Member>
constexpr Property<OwnerOf<Member>> Row(PropTypeSet type, const char* name, const char* defaultText,
                                        const char* range, int32_t lowest, int32_t highest) {
    using Effect = OwnerOf<Member>;
    return {type,
            name,
            defaultText,
            range,
            lowest,
            highest,
            [](const Effect& effect) { return static_cast<int32_t>(effect.*Member); },
            [](Effect& effect, int32_t value) { effect.*Member = static_cast<ValueOf<Member>>(value); },
            "",
            {}};
}

}  // namespace property_detail

/// An integer in the member `Member`, clamped to the two numbers of `range`.
template <auto Member>
constexpr auto IntegerProperty(const char* name, const char* defaultText, const char* range) {
    const char* text = range;
    const int32_t lowest = property_detail::ReadBound(text);
    ++text;
    const int32_t highest = property_detail::ReadBound(text);
    return property_detail::Row<Member>(PropTypeSet::Integer, name, defaultText, range, lowest, highest);
}

/// A boolean in the member `Member`.
template <auto Member>
constexpr auto BooleanProperty(const char* name, const char* defaultText) {
    return property_detail::Row<Member>(PropTypeSet::Boolean, name, defaultText, "", 0, 1);
}

/// A colour, red in the low byte, in the 32-bit member `Member`.
template <auto Member>
constexpr auto ColorProperty(const char* name, const char* defaultText) {
    return property_detail::Row<Member>(PropTypeSet::Color, name, defaultText, "",
                                        std::numeric_limits<int32_t>::min(),
                                        std::numeric_limits<int32_t>::max());
}

/// A colour that the two functions keep, where there is no member of its own.
template <class Effect>
constexpr Property<Effect> ColorProperty(const char* name, const char* defaultText,
                                         typename Property<Effect>::Getter get,
                                         typename Property<Effect>::Setter set) {
    return {PropTypeSet::Color,
            name,
            defaultText,
            "",
            std::numeric_limits<int32_t>::min(),
            std::numeric_limits<int32_t>::max(),
            get,
            set,
            "",
            {}};
}

/// A property value from its text, and back into a buffer of `size` characters.
int32_t ParseProperty(PropTypeSet type, const char* text, int32_t lowest, int32_t highest);
void PrintProperty(PropTypeSet type, int32_t value, char* buffer, size_t size);

#endif
