#pragma once

#include <QFile>
#include <QSqlQuery>
#include <QVariant>

#include <functional>

/// Connect options for a file that must not change, and for one that is not waited for when it is locked.
const char *const ReadOnly = "QSQLITE_OPEN_READONLY";
const char *const ReadOnlyAtOnce = "QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=0";

/// Whether \a file, which is open, is an SQLite file by its beginning. An empty one is: a database without
/// tables.
bool isSqlite(QFile &file);

/// A connection to an SQLite file for as long as this lives.
class SqliteFile
{
public:
    /// \a options are Qt's connect options; without ReadOnly a file that is missing is made.
    explicit SqliteFile(const QString &path, const char *options = "");
    ~SqliteFile();
    SqliteFile(const SqliteFile &) = delete;
    SqliteFile &operator=(const SqliteFile &) = delete;

    /// Runs one statement; after the first failure nothing more.
    void run(const QString &statement, const QVariantList &values = {});
    /// The same, with each row that comes of it.
    void select(const QString &statement, const QVariantList &values,
                const std::function<void(const QSqlQuery &)> &takeRow);
    /// Why the first thing that failed did, for people; empty when nothing did.
    const QString &problem() const { return m_problem; }

    /// The connection's name among those of the process.
    const QString &connectionName() const { return m_name; }

private:
    QString m_name;
    QString m_problem;
};
