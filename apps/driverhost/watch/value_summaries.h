#pragma once

#include "desk/live/watch_loop.h"
#include "desk/log/value_summary.h"

#include <QJsonArray>

/// The smallest, largest and mean of every value that a watch reads.
class ValueSummaries : public WatchListener
{
public:
    explicit ValueSummaries(const std::vector<Reading> &readings);

    bool add(size_t reading, const std::vector<ValueRow> &rows) override;
    bool addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error) override;
    bool endRound() override { return true; }

    /// Whether each value was read whenever it was wanted.
    bool isWhole() const { return m_isWhole; }

    /// For people: the titles and a line for each value that was read as a number; nothing when there is
    /// none.
    QStringList lines() const;
    /// The same for programs.
    QJsonArray objects() const;

private:
    struct Entry {
        QString label;
        QString unit;
        ValueSummary summary;
    };

    std::vector<size_t> m_first; // of each reading, counted over all values
    std::vector<Entry> m_entries;
    bool m_isWhole = true;
};
