#pragma once

#include "desk/items/typed_items.h"
#include "desk/link/exchange.h"

#include <QStringList>

#include <map>
#include <vector>

/// How far a write has come. What a value has of several registers counts as its least certain one.
enum class WriteState {
    NotSent,
    Refused,     ///< with an exception, and so not executed
    Unconfirmed, ///< sent, and perhaps written
    Written      ///< confirmed
};

/// What has become of a write, register by register or coil by coil.
class WriteReport
{
public:
    /// Nothing is sent yet. Where raw items lie is not known before their requests are.
    explicit WriteReport(const TypedItems &typed);

    /// Counts the requests that write and what came of them; others change nothing.
    void add(const std::vector<Exchange> &exchanges);

    WriteState stateOf(int value) const;
    /// Whether anything may have changed in the slave.
    bool hasTouched() const;
    /// For people, a line for each state that occurs: "already written: HR1..2", "not sent: HR3".
    QStringList lines() const;

private:
    void add(const Exchange &exchange);

    TypedItems m_typed;
    QString m_area;                     // as messages name it, "2-HR"
    std::map<int, WriteState> m_states; // by offset
};
