// SPDX-License-Identifier: BSD-3-Clause
#include "kit/sweep/fields.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "kit/base/readFile.h"
#include "kit/fault.h"
#include "kit/input/text.h"

namespace kit::sweep {

using nlohmann::json;

namespace {

constexpr int DEEPEST = 64; // lists and objects in each other

/// Looks on while a file is parsed: the parser itself takes the last of equal members, and any depth.
class Onlooker {
public:
    explicit Onlooker(std::string path) : m_path(std::move(path)) {}

    bool operator()(int depth, json::parse_event_t event, const json& value)
    {
        if (depth > DEEPEST) {
            throw Fault(m_path + ": lists and objects are nested deeper than " + std::to_string(DEEPEST));
        }
        if (event == json::parse_event_t::object_start) {
            m_members.emplace_back();
        } else if (event == json::parse_event_t::object_end) {
            m_members.pop_back();
        } else if (event == json::parse_event_t::key &&
                   !m_members.back().insert(value.get<std::string>()).second) {
            throw Fault(m_path + ": an object has the member " + input::quoted(value.get<std::string>()) +
                        " twice");
        }
        return true;
    }

private:
    std::string m_path;
    std::vector<std::set<std::string>> m_members; ///< [depth of objects]
};

/// What the parser says, without its own name and number.
std::string reasonOf(const json::parse_error& error)
{
    const std::string text = error.what();
    const size_t begin = text.find("parse error at ");
    return begin == std::string::npos ? text : text.substr(begin + 15);
}

/// A name as a part of a JSON pointer.
std::string escaped(const std::string& name)
{
    std::string text;
    for (const char c : name) {
        text += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
    }
    return text;
}

} // namespace

json readJson(const std::string& path)
{
    const std::string text = readFile(path);
    try {
        Onlooker onlooker(path);
        return json::parse(text, [&](int depth, json::parse_event_t event, const json& value) {
            return onlooker(depth, event, value);
        });
    } catch (const json::parse_error& error) {
        throw Fault(path + ": " + reasonOf(error));
    } catch (const json::out_of_range&) {
        throw Fault(path + ": a number is too large");
    }
}

void Field::fail(const std::string& what) const
{
    throw Fault(m_file + ": " + (m_pointer.empty() ? "the file" : m_pointer) + " " + what);
}

void Field::onlyMembers(std::initializer_list<std::string_view> names) const
{
    if (!m_value.is_object()) {
        fail("is no object");
    }
    for (const auto& [name, value] : m_value.items()) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            std::string known;
            for (const std::string_view other : names) {
                known += (known.empty() ? "" : ", ") + std::string(other);
            }
            child(value, name).fail("is not known here; known are " + known);
        }
    }
}

std::optional<Field> Field::find(const char* name) const
{
    const auto at = m_value.find(name);
    return at == m_value.end() ? std::nullopt : std::optional(child(*at, name));
}

Field Field::member(const char* name) const
{
    const std::optional<Field> field = find(name);
    if (!field.has_value()) {
        fail("has no member \"" + std::string(name) + "\"");
    }
    return *field;
}

std::vector<Field> Field::entries() const
{
    if (!m_value.is_array()) {
        fail("is no list");
    }
    if (m_value.empty()) {
        fail("is an empty list");
    }
    std::vector<Field> entries;
    for (size_t i = 0; i < m_value.size(); ++i) {
        entries.push_back(child(m_value[i], std::to_string(i)));
    }
    return entries;
}

std::string Field::text() const
{
    if (!m_value.is_string() || m_value.get_ref<const std::string&>().empty()) {
        fail(m_value.is_string() ? "is an empty text" : "is no text");
    }
    const auto& text = m_value.get_ref<const std::string&>();
    if (text.find('\0') != std::string::npos) {
        fail("has a character of code 0");
    }
    return text;
}

int32_t Field::integer(int32_t least, int32_t most) const
{
    const std::string bounds = std::to_string(least) + " to " + std::to_string(most);
    const bool whole = m_value.is_number_integer();
    if (!whole) {
        fail("is no whole number; " + bounds + " is possible");
    }
    const bool fits = !m_value.is_number_unsigned() || m_value.get<uint64_t>() <= INT32_MAX;
    const int64_t value = fits ? m_value.get<int64_t>() : INT64_MAX;
    if (value < least || value > most) {
        fail("is out of bounds; " + bounds + " is possible");
    }
    return static_cast<int32_t>(value);
}

double Field::number(double most) const
{
    if (!m_value.is_number()) {
        fail("is no number");
    }
    const auto value = m_value.get<double>();
    if (!std::isfinite(value) || std::fabs(value) > most) {
        fail("is too large a number");
    }
    return value;
}

bool Field::boolean() const
{
    if (!m_value.is_boolean()) {
        fail("is neither true nor false");
    }
    return m_value.get<bool>();
}

Field Field::child(const json& value, const std::string& name) const
{
    return {value, m_file, m_pointer + "/" + escaped(name)};
}

} // namespace kit::sweep
