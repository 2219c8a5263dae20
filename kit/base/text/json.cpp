// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/json.h"

#include <algorithm>
#include <cassert>
#include <nlohmann/json.hpp>
#include <ostream>

#include "kit/base/fault.h"

namespace kit {

namespace {

constexpr size_t DEEPEST = 64;       // arrays and objects in each other
constexpr size_t LONGEST_QUOTE = 60; // bytes of a value in a message

/// A value for a message.
std::string inQuotes(const Json& value)
{
    const std::string text = value.dump();
    return text.size() > LONGEST_QUOTE ? text.substr(0, LONGEST_QUOTE) + "..." : text;
}

/// What a value is read as. Errors: throws Fault if it is no such thing.
template <typename T, typename Variant>
auto& as(const Json& json, Variant& value, const char* thing)
{
    auto* const found = std::get_if<T>(&value);
    if (found == nullptr) {
        throw Fault(inQuotes(json) + " is no " + thing);
    }
    return *found;
}

/// Builds a value while its text is read.
class Builder : public nlohmann::json_sax<nlohmann::json> {
public:
    Json root;

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(int64_t value) override { return add(value); }
    bool number_unsigned(uint64_t value) override
    {
        return value <= INT64_MAX ? add(static_cast<int64_t>(value)) : add(static_cast<double>(value));
    }
    bool number_float(double value, const std::string& /*text*/) override { return add(value); }
    bool string(std::string& value) override { return add(value); }
    bool binary(nlohmann::json::binary_t& /*value*/) override { return false; } // a text has none
    bool start_object(size_t /*size*/) override { return open(/*isObject=*/true); }
    bool start_array(size_t /*size*/) override { return open(/*isObject=*/false); }

    bool key(std::string& name) override
    {
        m_open.back().members.push_back({name, nullptr});
        return true;
    }

    bool end_object() override
    {
        Json::Object members = std::move(m_open.back().members);
        std::vector<std::string_view> names;
        for (const Json::Member& member : members) {
            names.push_back(member.name);
        }
        std::sort(names.begin(), names.end());
        const auto twice = std::adjacent_find(names.begin(), names.end());
        if (twice != names.end()) {
            throw Fault("an object has the member " + inQuotes(Json(*twice)) + " twice");
        }
        m_open.pop_back();
        return add(Json::object(std::move(members)));
    }

    bool end_array() override
    {
        Json::Array items = std::move(m_open.back().items);
        m_open.pop_back();
        return add(Json::array(std::move(items)));
    }

    bool parse_error(size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::json::exception& error) override
    {
        const std::string text = error.what(); // begins with the parser's own name and number
        const size_t begin = text.find("parse error at ");
        throw Fault(begin == std::string::npos ? "a number is too large" : text.substr(begin + 15));
    }

private:
    /// What has begun and not ended.
    struct Open {
        bool isObject;
        Json::Array items;
        Json::Object members; ///< the last waits for its value
    };

    bool open(bool isObject)
    {
        if (m_open.size() == DEEPEST) {
            throw Fault("lists and objects are nested deeper than " + std::to_string(DEEPEST));
        }
        m_open.push_back({isObject, {}, {}});
        return true;
    }

    bool add(Json value)
    {
        if (m_open.empty()) {
            root = std::move(value);
        } else if (m_open.back().isObject) {
            m_open.back().members.back().value = std::move(value);
        } else {
            m_open.back().items.push_back(std::move(value));
        }
        return true;
    }

    std::vector<Open> m_open; ///< the outermost first
};

/// Writes a value as text. Numbers and escapes are those of the library, which is asked where they matter.
class Writer {
public:
    explicit Writer(int indent) : m_indent(indent) {}

    std::string text;

    void write(const Json& json)
    {
        if (json.isArray()) {
            writeAll('[', json.items(), ']', [this](const Json& value) { write(value); });
        } else if (json.isObject()) {
            writeAll('{', json.members(), '}', [this](const Json::Member& member) {
                writeString(member.name);
                text += m_indent < 0 ? ":" : ": ";
                write(member.value);
            });
        } else if (json.isString()) {
            writeString(json.asString());
        } else if (json.isInteger()) {
            text += std::to_string(json.asInteger());
        } else if (json.isNumber()) {
            text += nlohmann::json(json.asNumber()).dump();
        } else {
            text += json.isNull() ? "null" : json.asBool() ? "true" : "false";
        }
    }

private:
    template <typename List, typename WriteOne>
    void writeAll(char begin, const List& list, char end, const WriteOne& writeOne)
    {
        text += begin;
        ++m_depth;
        const char* separator = "";
        for (const auto& one : list) {
            text += separator;
            breakLine();
            writeOne(one);
            separator = ",";
        }
        --m_depth;
        if (!list.empty()) {
            breakLine();
        }
        text += end;
    }

    void breakLine()
    {
        if (m_indent >= 0) {
            text.append(1, '\n').append(m_depth * static_cast<size_t>(m_indent), ' ');
        }
    }

    void writeString(const std::string& string)
    {
        const bool plain = std::all_of(string.begin(), string.end(),
                                       [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
        if (plain) {
            text.append(1, '"').append(string).append(1, '"');
        } else {
            text += nlohmann::json(string).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        }
    }

    int m_indent;
    size_t m_depth = 0;
};

} // namespace

Json::Json() = default;
Json::Json(const Json& other) = default;
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(const Json& other) = default;
Json& Json::operator=(Json&& other) noexcept = default;
Json::~Json() = default;

Json::Json(std::initializer_list<Member> members) : m_value(Object(members))
{
    assert(std::all_of(members.begin(), members.end(), [&](const Member& member) {
        return 1 == std::count_if(members.begin(), members.end(),
                                  [&](const Member& other) { return other.name == member.name; });
    }));
}

Json Json::array()
{
    return array(Array());
}

Json Json::array(Array items)
{
    Json json;
    json.m_value = std::move(items);
    return json;
}

Json Json::object()
{
    return object(Object());
}

Json Json::object(Object members)
{
    Json json;
    json.m_value = std::move(members);
    return json;
}

Json Json::parse(std::string_view text)
{
    Builder builder;
    nlohmann::json::sax_parse(text, &builder);
    return std::move(builder.root);
}

std::optional<Json> Json::tryParse(std::string_view text)
{
    try {
        return parse(text);
    } catch (const Fault&) {
        return std::nullopt;
    }
}

bool Json::asBool() const
{
    return as<bool>(*this, m_value, "flag");
}

int64_t Json::asInteger() const
{
    return as<int64_t>(*this, m_value, "whole number");
}

double Json::asNumber() const
{
    return isInteger() ? static_cast<double>(asInteger()) : as<double>(*this, m_value, "number");
}

const std::string& Json::asString() const
{
    return as<std::string>(*this, m_value, "text");
}

const Json::Array& Json::items() const
{
    return as<Array>(*this, m_value, "list");
}

const Json::Object& Json::members() const
{
    return as<Object>(*this, m_value, "object");
}

size_t Json::size() const
{
    return isArray() ? items().size() : isObject() ? members().size() : 0;
}

const Json* Json::find(std::string_view name) const
{
    if (!isObject()) {
        return nullptr;
    }
    for (const Member& member : members()) {
        if (member.name == name) {
            return &member.value;
        }
    }
    return nullptr;
}

const Json& Json::at(std::string_view name) const
{
    const Json* const value = find(name);
    if (value == nullptr) {
        throw Fault("there is no member " + inQuotes(Json(name)));
    }
    return *value;
}

const Json& Json::operator[](std::string_view name) const
{
    static const Json s_null;
    const Json* const value = find(name);
    return value == nullptr ? s_null : *value;
}

Json& Json::operator[](std::string_view name)
{
    if (const Json* const value = find(name)) {
        return const_cast<Json&>(*value);
    }
    if (isNull()) {
        m_value = Object();
    }
    return as<Object>(*this, m_value, "object").emplace_back(Member{std::string(name), nullptr}).value;
}

const Json& Json::operator[](size_t index) const
{
    if (index >= items().size()) {
        throw Fault("there is no entry " + std::to_string(index) + " in " + inQuotes(*this));
    }
    return items()[index];
}

Json& Json::operator[](size_t index)
{
    return const_cast<Json&>(std::as_const(*this)[index]);
}

const Json& Json::atPointer(std::string_view pointer) const
{
    const Json* value = this;
    while (!pointer.empty()) {
        assert(pointer[0] == '/');
        const size_t end = std::min(pointer.find('/', 1), pointer.size());
        value = &(*value)[pointer.substr(1, end - 1)];
        pointer.remove_prefix(end);
    }
    return *value;
}

void Json::push_back(Json value)
{
    if (isNull()) {
        m_value = Array();
    }
    as<Array>(*this, m_value, "list").push_back(std::move(value));
}

void Json::update(const Json& other)
{
    for (const auto& [name, value] : other.members()) {
        (*this)[name] = value;
    }
}

void Json::sortMembers()
{
    if (Array* const items = std::get_if<Array>(&m_value)) {
        for (Json& item : *items) {
            item.sortMembers();
        }
    } else if (Object* const members = std::get_if<Object>(&m_value)) {
        std::sort(members->begin(), members->end(),
                  [](const Member& a, const Member& b) { return a.name < b.name; });
        for (Member& member : *members) {
            member.value.sortMembers();
        }
    }
}

std::string Json::dump(int indent) const
{
    Writer writer(indent);
    writer.write(*this);
    return std::move(writer.text);
}

bool operator==(const Json& a, const Json& b)
{
    if (a.isNumber() && b.isNumber() && a.isInteger() != b.isInteger()) {
        return a.asNumber() == b.asNumber();
    }
    if (a.isObject() && b.isObject()) {
        return a.size() == b.size() &&
               std::all_of(a.members().begin(), a.members().end(), [&](const Json::Member& member) {
                   const Json* const other = b.find(member.name);
                   return other != nullptr && *other == member.value;
               });
    }
    return a.m_value == b.m_value;
}

std::ostream& operator<<(std::ostream& out, const Json& json)
{
    return out << json.dump();
}

void Json::assign(bool value)
{
    m_value = value;
}

void Json::assign(int64_t value)
{
    m_value = value;
}

void Json::assign(double value)
{
    m_value = value;
}

void Json::assign(std::string_view text)
{
    m_value = std::string(text);
}

} // namespace kit
