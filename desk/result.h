#pragma once

#include <QString>

#include <optional>
#include <utility>

/// Why something could not be done, for people: what was wrong and what was expected.
struct Error {
    QString text;
};

/// What an operation that can fail gives back: a value, or the error in its place. The one way in which
/// failures travel in desk/ and apps/.
template <typename T = void>
class Result
{
public:
    Result(T value) : m_value(std::move(value)) {}
    Result(Error error) : m_error(std::move(error)) {}

    bool isGood() const { return m_value.has_value(); }
    explicit operator bool() const { return isGood(); }
    /// The value; there must be one.
    const T &operator*() const & { return *m_value; }
    T &operator*() & { return *m_value; }
    T &&operator*() && { return *std::move(m_value); }
    const T *operator->() const { return &*m_value; }
    T *operator->() { return &*m_value; }
    T valueOr(T other) const { return m_value.value_or(std::move(other)); }
    /// To be handed on by a caller that failed for the same reason; its text is empty when there is a value.
    const Error &error() const { return m_error; }
    const QString &errorText() const { return m_error.text; }

private:
    std::optional<T> m_value;
    Error m_error;
};

/// The same of an operation that gives nothing back but whether it was done.
template <>
class Result<void>
{
public:
    Result() = default;
    Result(Error error) : m_isGood(false), m_error(std::move(error)) {}

    bool isGood() const { return m_isGood; }
    explicit operator bool() const { return m_isGood; }
    const Error &error() const { return m_error; }
    const QString &errorText() const { return m_error.text; }

private:
    bool m_isGood = true;
    Error m_error;
};
