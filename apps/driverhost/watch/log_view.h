#pragma once

#include "apps/driverhost/watch/watch_options.h"

/// Keeps what a watch reads in a file, a round at a time. Where that is not possible, on a full disk, it says
/// so and goes on when there is room.
class LogView : public WatchListener
{
public:
    LogView(const std::vector<Reading> &readings, const WatchLog &log);

    /// Whether there is a file to write to.
    Result<> open();

    bool add(size_t reading, const std::vector<ValueRow> &rows) override;
    bool addFailure(size_t reading, const std::vector<ValueRow> &rows, const QString &error) override;
    bool endRound() override;
    /// Writes what a round that was interrupted has brought, too. False when some lines of the watch are not
    /// in the file.
    bool finish();
    /// Why nothing is kept at present; empty when all is well.
    QString trouble() const { return m_trouble; }

private:
    void keep(const QStringList &lines);

    WatchLog m_log;
    RowSeries m_series;
    LogFile m_file;
    QStringList m_lines; // of the round
    QString m_trouble;
    qint64 m_lost = 0; // lines
};
