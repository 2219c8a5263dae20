// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <type_traits>
#include <utility>

namespace test {

/// Gives a variable, in the end, the value back that it had.
template <class T>
class Restorer {
public:
    explicit Restorer(T& variable) : m_variable(variable), m_before(variable) {}

    /// Sets it for the meantime.
    Restorer(T& variable, std::type_identity_t<T> value) : Restorer(variable) { variable = std::move(value); }

    ~Restorer() { m_variable = m_before; }
    Restorer(const Restorer&) = delete;
    Restorer& operator=(const Restorer&) = delete;

private:
    T& m_variable;
    T m_before;
};

} // namespace test
