// A JSON value for the program to print. The JSON library, slow to compile, stands in Json.cpp alone.
#ifndef SPECIALEFFECTS_HOST_JSON_H
#define SPECIALEFFECTS_HOST_JSON_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace host {

class Json {
  public:
    using Array = std::vector<Json>;
    /// Fields are printed in this order.
    using Object = std::vector<std::pair<std::string, Json>>;
    using Value = std::variant<std::nullptr_t, bool, int64_t, double, std::string, Array, Object>;

    // Each is implicit, so that a table of fields reads like the JSON that it becomes.
    Json() = default;
    Json(std::nullptr_t) {}
    Json(bool value) : value_(value) {}
    Json(std::integral auto value) : value_(static_cast<int64_t>(value)) {}
    Json(double value) : value_(value) {}
    Json(const char* text) : value_(std::string(text)) {}
    Json(std::string_view text) : value_(std::string(text)) {}
    Json(std::string text) : value_(std::move(text)) {}
    Json(Array elements) : value_(std::move(elements)) {}
    Json(Object fields) : value_(std::move(fields)) {}

    template <class T>
    Json(const std::optional<T>& value) {
        if (value) *this = Json(*value);
    }
    template <class T>
    Json(const std::vector<T>& elements) : value_(Array(elements.begin(), elements.end())) {}

    const Value& value() const { return value_; }

    /// As indented text. Text that is not UTF-8 throws std::exception.
    std::string Text() const;

  private:
    Value value_ = nullptr;
};

}  // namespace host

#endif
