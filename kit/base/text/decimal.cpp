// SPDX-License-Identifier: BSD-3-Clause
#include "kit/base/text/decimal.h"

#include <algorithm>
#include <cassert>

namespace kit {

namespace {

/// Digits are taken up to here; further ones cannot change a value within the limit.
constexpr int64_t LARGEST_MANTISSA = 100'000'000'000'000'000;
constexpr int32_t LARGEST_EXPONENT = 1'000'000;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// A number without its sign, as its form says: mantissa * 10^exponent.
class Form {
public:
    explicit Form(std::string_view text) : m_rest(text) {}

    /// Takes the text apart. @return whether all of it is a number
    bool read()
    {
        readDigits(/*fraction=*/false);
        if (take('.')) {
            readDigits(/*fraction=*/true);
        }
        return m_anyDigit && (m_rest.empty() || readExponent()) && m_rest.empty();
    }

    int64_t mantissa = 0;
    int64_t exponent = 0;

private:
    bool take(char c)
    {
        const bool found = !m_rest.empty() && m_rest[0] == c;
        m_rest.remove_prefix(found ? 1 : 0);
        return found;
    }

    void readDigits(bool fraction)
    {
        for (; !m_rest.empty() && isDigit(m_rest[0]); m_rest.remove_prefix(1)) {
            m_anyDigit = true;
            if (mantissa < LARGEST_MANTISSA) {
                mantissa = 10 * mantissa + (m_rest[0] - '0');
                exponent -= fraction ? 1 : 0;
            } else {
                exponent += fraction ? 0 : 1;
            }
        }
    }

    bool readExponent()
    {
        if (!take('e') && !take('E')) {
            return false;
        }
        const bool negative = take('-');
        if (!negative) {
            take('+');
        }
        int64_t size = 0;
        const size_t before = m_rest.size();
        for (; !m_rest.empty() && isDigit(m_rest[0]); m_rest.remove_prefix(1)) {
            size = std::min<int64_t>(10 * size + (m_rest[0] - '0'), LARGEST_EXPONENT);
        }
        exponent += negative ? -size : size;
        return m_rest.size() < before;
    }

    std::string_view m_rest;
    bool m_anyDigit = false;
};

/// A mantissa over a power of ten, rounded.
int64_t divided(int64_t mantissa, int64_t power)
{
    int64_t divisor = 1;
    for (; power > 0 && divisor <= mantissa; --power) {
        divisor *= 10;
    }
    // Beyond that the quotient is below a tenth.
    return power > 0 ? 0 : (mantissa + divisor / 2) / divisor;
}

} // namespace

Decimal parseDecimal(std::string_view text, int32_t digits, int64_t limit)
{
    assert(limit >= 0 && limit <= LARGEST_MANTISSA / 10);
    const bool negative = text.starts_with('-');
    Form form(text.substr(negative || text.starts_with('+') ? 1 : 0));
    if (!form.read()) {
        return {};
    }
    int64_t value = form.mantissa;
    int64_t power = form.exponent + digits;
    if (power < 0) {
        value = divided(value, -power);
    }
    for (; power > 0 && value > 0 && value <= limit; --power) {
        value *= 10;
    }
    if (value > limit) {
        return {Decimal::Kind::TOO_LARGE, 0};
    }
    return {Decimal::Kind::GOOD, negative ? -value : value};
}

} // namespace kit
