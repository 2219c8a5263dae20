// SPDX-License-Identifier: BSD-3-Clause
#include "kit/tools/sweep/fields.h"

#include <algorithm>
#include <cmath>

#include "kit/base/fault.h"
#include "kit/base/files/readFile.h"
#include "kit/base/text/text.h"

namespace kit::sweep {

namespace {

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

Json readJson(const std::string& path)
{
    const std::string text = readFile(path);
    try {
        return Json::parse(text);
    } catch (const Fault& fault) {
        throw Fault(path + ": " + fault.what());
    }
}

void Field::fail(const std::string& what) const
{
    throw Fault(m_file + ": " + (m_pointer.empty() ? "the file" : m_pointer) + " " + what);
}

void Field::onlyMembers(std::initializer_list<std::string_view> names) const
{
    if (!m_value.isObject()) {
        fail("is no object");
    }
    for (const auto& [name, value] : m_value.members()) {
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
    return m_value.contains(name) ? std::optional(child(m_value.at(name), name)) : std::nullopt;
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
    if (!m_value.isArray()) {
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
    if (!m_value.isString()) {
        fail("is no text");
    }
    const std::string& text = m_value.asString();
    if (text.empty()) {
        fail("is an empty text");
    }
    if (text.find('\0') != std::string::npos) {
        fail("has a character of code 0");
    }
    return text;
}

int32_t Field::integer(int32_t least, int32_t most) const
{
    const std::string bounds = std::to_string(least) + " to " + std::to_string(most);
    const bool huge = m_value.isNumber() && std::fabs(m_value.asNumber()) > INT32_MAX;
    if (!huge && !m_value.isInteger()) {
        fail("is no whole number; " + bounds + " is possible");
    }
    if (huge || m_value.asInteger() < least || m_value.asInteger() > most) {
        fail("is out of bounds; " + bounds + " is possible");
    }
    return static_cast<int32_t>(m_value.asInteger());
}

double Field::number(double most) const
{
    if (!m_value.isNumber()) {
        fail("is no number");
    }
    const double value = m_value.asNumber();
    if (!std::isfinite(value) || std::fabs(value) > most) {
        fail("is too large a number");
    }
    return value;
}

bool Field::boolean() const
{
    if (!m_value.isBool()) {
        fail("is neither true nor false");
    }
    return m_value.asBool();
}

Field Field::child(const Json& value, const std::string& name) const
{
    return {value, m_file, m_pointer + "/" + escaped(name)};
}

} // namespace kit::sweep
