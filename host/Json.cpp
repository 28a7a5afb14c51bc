#include "Json.h"

#include <nlohmann/json.hpp>

namespace host {
namespace {

using Library = nlohmann::ordered_json;

struct Converter {
    Library operator()(const Json::Array& elements) const {
        Library array = Library::array();
        for (const Json& element : elements) array.push_back(std::visit(*this, element.value()));
        return array;
    }
    Library operator()(const Json::Object& fields) const {
        Library object = Library::object();
        for (const auto& [name, field] : fields) object[name] = std::visit(*this, field.value());
        return object;
    }
    Library operator()(const auto& scalar) const { return scalar; }
};

}  // namespace

std::string Json::Text() const {
    return std::visit(Converter(), value_).dump(2);
}

}  // namespace host
