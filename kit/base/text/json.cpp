// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/json.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>

#include "kit/base/fault.h"

namespace kit {

namespace {

constexpr size_t DEEPEST = 64;          // arrays and objects in each other
constexpr size_t MOST_MEMBERS = 10'000; // of an object, whose members are looked for one by one
constexpr size_t LONGEST_QUOTE = 60;    // bytes of a value in a message

using Library = nlohmann::ordered_json;
using Event = Library::parse_event_t;

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

/// The value as the library has it.
Library toLibrary(const Json& json)
{
    if (json.isArray()) {
        Library::array_t items;
        std::transform(json.items().begin(), json.items().end(), std::back_inserter(items), toLibrary);
        return items;
    }
    if (json.isObject()) {
        Library::object_t members;
        for (const auto& [name, value] : json.members()) {
            members.emplace_back(name, toLibrary(value));
        }
        return members;
    }
    if (json.isNumber()) {
        return json.isInteger() ? Library(json.asInteger()) : Library(json.asNumber());
    }
    return json.isString() ? Library(json.asString()) : json.isBool() ? Library(json.asBool()) : Library();
}

/// The value that the library has read. Whole numbers beyond 64 bits with a sign become others.
Json fromLibrary(const Library& value)
{
    if (value.is_array()) {
        Json::Array items;
        std::transform(value.begin(), value.end(), std::back_inserter(items), fromLibrary);
        return Json::array(std::move(items));
    }
    if (value.is_object()) {
        Json object = Json::object();
        for (const auto& [name, member] : value.items()) {
            object[name] = fromLibrary(member);
        }
        return object;
    }
    if (value.is_string()) {
        return value.get_ref<const std::string&>();
    }
    if (value.is_boolean()) {
        return value.get<bool>();
    }
    const bool huge = value.is_number_unsigned() && value.get<uint64_t>() > INT64_MAX;
    if (value.is_number_integer() && !huge) {
        return value.get<int64_t>();
    }
    return value.is_number() ? Json(value.get<double>()) : Json();
}

/// Checks a text while the library reads it: no object has a member twice or too many,
/// nothing is nested too deep.
class Check {
public:
    /// As the library calls it. @param depth  number of arrays and objects around it
    bool operator()(int depth, Event event, const Library& value)
    {
        const auto level = static_cast<size_t>(depth);
        if (event == Event::object_start || event == Event::array_start) {
            if (level == DEEPEST) {
                throw Fault("lists and objects are nested deeper than " + std::to_string(DEEPEST));
            }
            m_names[level].clear();
        } else if (event == Event::key) {
            std::set<std::string>& names = m_names[level - 1];
            if (!names.insert(value).second) {
                throw Fault("an object has the member " + inQuotes(fromLibrary(value)) + " twice");
            }
            if (names.size() > MOST_MEMBERS) {
                throw Fault("an object has more than " + std::to_string(MOST_MEMBERS) + " members");
            }
        }
        return true;
    }

private:
    std::array<std::set<std::string>, DEEPEST> m_names; ///< [level] members of the object that is open there
};

} // namespace

Json::Json(std::nullptr_t) {}

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
    Json json;
    json.m_value = Object();
    return json;
}

Json Json::parse(std::string_view text)
{
    try {
        return fromLibrary(Library::parse(text, Check()));
    } catch (const nlohmann::json::exception& error) { // its text begins with the library's own number
        const std::string why = error.what();
        const size_t place = why.find("parse error at ");
        throw Fault(place == std::string::npos ? "a number is too large" : why.substr(place + 15));
    }
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
    return toLibrary(*this).dump(indent, ' ', false, Library::error_handler_t::replace);
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

} // namespace kit
