// SPDX-License-Identifier: BSD-3-Clause
// JSON files of users, read with messages that say what is wrong, and where.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/base/text/json.h"

namespace kit::sweep {

/// Reads a JSON file in which no object has a member twice.
///
/// Errors: throws Fault with path, line and column if it cannot be read or is no JSON.
Json readJson(const std::string& path);

/// A value in a JSON file together with its place, for messages.
class Field {
public:
    /// @param value    must outlive the field
    /// @param file     path of the file
    /// @param pointer  JSON pointer to the value, empty for the whole file
    Field(const Json& value, std::string file, std::string pointer)
        : m_value(value), m_file(std::move(file)), m_pointer(std::move(pointer))
    {
    }

    /// Throws Fault: file, place, and what is wrong there.
    [[noreturn]] void fail(const std::string& what) const;

    /// Checks that this is an object with no other members than these. Errors: throws Fault.
    void onlyMembers(std::initializer_list<std::string_view> names) const;

    /// A member of an object, if it is there.
    std::optional<Field> find(const char* name) const;

    /// A member of an object. Errors: throws Fault if it is not there.
    Field member(const char* name) const;

    /// The entries of a list. Errors: throws Fault if it is none, or empty.
    std::vector<Field> entries() const;

    /// A text that is not empty. Errors: throws Fault if it is none.
    std::string text() const;

    /// A whole number. Errors: throws Fault if it is none, or out of these bounds.
    int32_t integer(int32_t least, int32_t most) const;

    /// A number. Errors: throws Fault if it is none, or its size is above this.
    double number(double most) const;

    /// true or false. Errors: throws Fault if it is neither.
    bool boolean() const;

private:
    Field child(const Json& value, const std::string& name) const;

    const Json& m_value;
    std::string m_file;
    std::string m_pointer;
};

} // namespace kit::sweep
