// SPDX-License-Identifier: BSD-3-Clause
// As much of JSON Schema as kit/place/result.schema.json uses.
#pragma once

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <vector>

namespace test {

/// The schema of OUT.json.
inline nlohmann::json placeSchema()
{
    return nlohmann::json::parse(std::ifstream(VIRELOCE_PLACE_SCHEMA));
}

/// Checks a value against a schema.
class SchemaCheck {
public:
    explicit SchemaCheck(const nlohmann::json& root) : m_root(root) {}

    /// What is wrong, a line each.
    std::vector<std::string> faults;

    void check(const nlohmann::json& value, const nlohmann::json& schema, const std::string& where)
    {
        if (schema.contains("$ref")) {
            const std::string path = schema["$ref"].get<std::string>().substr(1);
            return check(value, m_root.at(nlohmann::json::json_pointer(path)), where);
        }
        if (schema.contains("anyOf")) {
            return checkAny(value, schema["anyOf"], where);
        }
        if (schema.contains("const") && value != schema["const"]) {
            faults.push_back(where + " is not " + schema["const"].dump());
        }
        if (schema.contains("type") && !hasType(value, schema["type"])) {
            faults.push_back(where + " is not of type " + schema["type"].dump());
            return;
        }
        if (schema.contains("pattern") &&
            !std::regex_search(value.get<std::string>(), std::regex(schema["pattern"].get<std::string>()))) {
            faults.push_back(where + " does not match");
        }
        if (value.is_array() && schema.contains("items")) {
            for (size_t i = 0; i < value.size(); ++i) {
                check(value[i], schema["items"], where + "/" + std::to_string(i));
            }
        }
        if (value.is_object()) {
            checkMembers(value, schema, where);
        }
    }

private:
    static bool hasType(const nlohmann::json& value, const nlohmann::json& type)
    {
        if (type.is_array()) {
            return std::any_of(type.begin(), type.end(),
                               [&](const auto& one) { return hasType(value, one); });
        }
        const std::string name = type.get<std::string>();
        return (name == "object" && value.is_object()) || (name == "array" && value.is_array()) ||
               (name == "string" && value.is_string()) || (name == "boolean" && value.is_boolean()) ||
               (name == "null" && value.is_null()) || (name == "integer" && value.is_number_integer()) ||
               (name == "number" && value.is_number());
    }

    void checkAny(const nlohmann::json& value, const nlohmann::json& schemas, const std::string& where)
    {
        std::vector<std::string> last;
        for (const nlohmann::json& schema : schemas) {
            SchemaCheck one(m_root);
            one.check(value, schema, where);
            if (one.faults.empty()) {
                return;
            }
            last = one.faults;
        }
        faults.insert(faults.end(), last.begin(), last.end());
    }

    void checkMembers(const nlohmann::json& value, const nlohmann::json& schema, const std::string& where)
    {
        for (const nlohmann::json& name : schema.value("required", nlohmann::json::array())) {
            if (!value.contains(name.get<std::string>())) {
                faults.push_back(where + " lacks " + name.dump());
            }
        }
        const nlohmann::json properties = schema.value("properties", nlohmann::json::object());
        for (const auto& [name, member] : value.items()) {
            if (properties.contains(name)) {
                check(member, properties[name], where + "/" + name);
            } else if (!schema.value("additionalProperties", true)) {
                faults.push_back(where + " has " + name);
            }
        }
    }

    const nlohmann::json& m_root;
};

/// What is wrong with a value by a schema, a line each.
inline std::vector<std::string> faultsOf(const nlohmann::json& value, const nlohmann::json& schema)
{
    SchemaCheck check(schema);
    check.check(value, schema, "");
    return check.faults;
}

} // namespace test
