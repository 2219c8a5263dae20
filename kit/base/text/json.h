// SPDX-License-Identifier: BSD-3-Clause
// JSON as a value: built, read, compared and written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace kit {

/// A JSON value. Members of an object keep the order in which they were added.
///
/// Whatever reads a value as something that it is not throws Fault, which says what the value is.
class Json {
public:
    struct Member;
    using Array = std::vector<Json>;
    using Object = std::vector<Member>;

    Json(std::nullptr_t = nullptr); ///< null

    /// A flag or a number. Whole numbers have 64 bits with a sign.
    template <typename T>
    requires std::is_arithmetic_v<T> Json(T value) : m_value(static_cast<Stored<T>>(value)) {}

    /// A text. Bytes that are no UTF-8 are replaced when it is written.
    template <typename T>
    requires std::is_convertible_v<const T&, std::string_view> Json(const T& text);

    /// An object: {{"name", value}, {"other", value}}. @pre no name is there twice
    Json(std::initializer_list<Member> members);

    /// An array without values.
    static Json array();

    /// An array of these values.
    static Json array(Array items);

    /// An object without members.
    static Json object();

    /// Reads a text in which no object has a member twice, and which is nested at most 64 deep.
    ///
    /// Errors: throws Fault, with line and column where the text is no JSON.
    static Json parse(std::string_view text);

    /// The same, nothing if the text is not sound.
    static std::optional<Json> tryParse(std::string_view text);

    /// Whether it is null.
    bool isNull() const { return std::holds_alternative<std::monostate>(m_value); }

    /// Whether it is true or false.
    bool isBool() const { return std::holds_alternative<bool>(m_value); }

    /// Whether it is a whole number of 64 bits with a sign.
    bool isInteger() const { return std::holds_alternative<int64_t>(m_value); }

    /// Whether it is a number, whole or not.
    bool isNumber() const { return isInteger() || std::holds_alternative<double>(m_value); }

    /// Whether it is a text.
    bool isString() const { return std::holds_alternative<std::string>(m_value); }

    /// Whether it is a list.
    bool isArray() const { return std::holds_alternative<Array>(m_value); }

    /// Whether it is an object.
    bool isObject() const { return std::holds_alternative<Object>(m_value); }

    /// The value, if it is of this kind. Errors: throws Fault if it is not.
    bool asBool() const;
    int64_t asInteger() const;
    double asNumber() const; ///< of whole numbers too
    const std::string& asString() const;
    const Array& items() const;
    const Object& members() const;

    /// Number of values in an array or an object, 0 for all else.
    size_t size() const;

    /// Whether size() is 0.
    bool empty() const { return size() == 0; }

    /// Whether this is an object with a member of this name.
    bool contains(std::string_view name) const { return find(name) != nullptr; }

    /// The value of a member. Errors: throws Fault if there is none.
    const Json& at(std::string_view name) const;

    /// The value of a member, null if there is none or this is no object.
    const Json& operator[](std::string_view name) const;

    /// The value of a member, which is added if there is none; null becomes an object.
    Json& operator[](std::string_view name);

    /// A value of an array. Errors: throws Fault if there is none.
    const Json& operator[](size_t index) const;
    Json& operator[](size_t index);

    /// The value at a JSON pointer "/name/name" through objects, null if there is none.
    const Json& atPointer(std::string_view pointer) const;

    /// Adds a value to an array; null becomes an array.
    void push_back(Json value); // NOLINT(readability-identifier-naming): as containers call it

    /// Adds the members of another object, in place of those of the same name.
    void update(const Json& other);

    /// Brings the members of this and of all objects in it into the order of their names, by bytes.
    void sortMembers();

    /// As text. What is no UTF-8 becomes U+FFFD, a number that is not finite null.
    ///
    /// @param indent  blanks per level, a value per line; all on one line if negative
    std::string dump(int indent = -1) const;

    /// Numbers are equal by value; members may be in any order.
    friend bool operator==(const Json& a, const Json& b);

    /// Writes the value on one line.
    friend std::ostream& operator<<(std::ostream& out, const Json& json);

private:
    template <typename T>
    using Stored = std::conditional_t<std::is_same_v<T, bool>, bool,
                                      std::conditional_t<std::is_integral_v<T>, int64_t, double>>;

    const Json* find(std::string_view name) const;

    std::variant<std::monostate, bool, int64_t, double, std::string, Array, Object> m_value;
};

/// A member of an object.
struct Json::Member {
    std::string name;
    Json value;

    bool operator==(const Member& other) const = default;
};

template <typename T>
requires std::is_convertible_v<const T&, std::string_view> Json::Json(const T& text)
    : m_value(std::string(std::string_view(text)))
{
}

} // namespace kit
