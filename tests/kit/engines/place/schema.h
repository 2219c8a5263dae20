// SPDX-License-Identifier: BSD-3-Clause
// As much of JSON Schema as kit/engines/place/result.schema.json uses.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "kit/base/text/json.h"
#include "kit/kitRun.h"
#include "support/pattern.h"

namespace test {

using kit::Json;

/// The schema of OUT.json.
inline Json placeSchema()
{
    return Json::parse(contentOf(VIRELOCE_PLACE_SCHEMA));
}

/// Checks a value against a schema.
class SchemaCheck {
public:
    explicit SchemaCheck(const Json& root) : m_root(root) {}

    /// What is wrong, a line each.
    std::vector<std::string> faults;

    void check(const Json& value, const Json& schema, const std::string& where)
    {
        if (schema.contains("$ref")) {
            return check(value, m_root.atPointer(schema["$ref"].asString().substr(1)), where);
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
        if (schema.contains("pattern") && matchesOf(value.asString(), schema["pattern"].asString()).empty()) {
            faults.push_back(where + " does not match");
        }
        if (value.isArray() && schema.contains("items")) {
            for (size_t i = 0; i < value.size(); ++i) {
                check(value[i], schema["items"], where + "/" + std::to_string(i));
            }
        }
        if (value.isObject()) {
            checkMembers(value, schema, where);
        }
    }

private:
    static bool hasType(const Json& value, const Json& type)
    {
        if (type.isArray()) {
            return std::any_of(type.items().begin(), type.items().end(),
                               [&](const auto& one) { return hasType(value, one); });
        }
        const std::string name = type.asString();
        return (name == "object" && value.isObject()) || (name == "array" && value.isArray()) ||
               (name == "string" && value.isString()) || (name == "boolean" && value.isBool()) ||
               (name == "null" && value.isNull()) || (name == "integer" && value.isInteger()) ||
               (name == "number" && value.isNumber());
    }

    void checkAny(const Json& value, const Json& schemas, const std::string& where)
    {
        std::vector<std::string> last;
        for (const Json& schema : schemas.items()) {
            SchemaCheck one(m_root);
            one.check(value, schema, where);
            if (one.faults.empty()) {
                return;
            }
            last = one.faults;
        }
        faults.insert(faults.end(), last.begin(), last.end());
    }

    void checkMembers(const Json& value, const Json& schema, const std::string& where)
    {
        if (schema.contains("required")) {
            for (const Json& name : schema["required"].items()) {
                if (!value.contains(name.asString())) {
                    faults.push_back(where + " lacks " + name.dump());
                }
            }
        }
        const Json& properties = schema["properties"];
        for (const auto& [name, member] : value.members()) {
            if (properties.contains(name)) {
                check(member, properties[name], where + "/" + name);
            } else if (schema["additionalProperties"] == false) {
                faults.push_back(where + " has " + name);
            }
        }
    }

    const Json& m_root;
};

/// What is wrong with a value by a schema, a line each.
inline std::vector<std::string> faultsOf(const Json& value, const Json& schema)
{
    SchemaCheck check(schema);
    check.check(value, schema, "");
    return check.faults;
}

} // namespace test
