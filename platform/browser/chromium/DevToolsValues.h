// Reading the browser's messages, whatever they hold: what is missing or of another type counts as
// empty.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace platform {

using Json = nlohmann::json;

inline const Json* FindValue(const Json& object, const char* pszKey) {
    if (!object.is_object()) return nullptr;
    const auto found = object.find(pszKey);
    return found == object.end() ? nullptr : &*found;
}

inline std::string TextOf(const Json& object, const char* pszKey) {
    const Json* value = FindValue(object, pszKey);
    return value && value->is_string() ? value->get<std::string>() : std::string();
}

inline const Json& ObjectOf(const Json& object, const char* pszKey) {
    static const Json none = Json::object();
    const Json* value = FindValue(object, pszKey);
    return value && value->is_object() ? *value : none;
}

inline int NumberOf(const Json& object, const char* pszKey) {
    const Json* value = FindValue(object, pszKey);
    if (!value || !value->is_number()) return 0;
    const double number = value->get<double>();
    return number > -1e9 && number < 1e9 ? static_cast<int>(number) : 0;
}

inline bool IsTrue(const Json& object, const char* pszKey) {
    const Json* value = FindValue(object, pszKey);
    return value && value->is_boolean() && value->get<bool>();
}

} // namespace platform
