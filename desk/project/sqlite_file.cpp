#include "desk/project/sqlite_file.h"

#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QUuid>

namespace
{

struct KnownResult {
    const char *code; // SQLite's result
    const char *text;
};

const KnownResult KnownResults[] = {
    {"5", "another program has locked it"},
    {"6", "another program has locked it"},
    {"8", "it is read-only"},
    {"10", "the disk cannot be read or written"},
    {"11", "it is damaged"},
    {"13", "the disk is full"},
    {"14", "it cannot be opened"},
    {"26", "it is no SQLite database"},
};

// What is said to people who know of projects and not of the library that keeps them.
QString plainText(const QSqlError &error)
{
    static const QRegularExpression missing(QStringLiteral("no such (table|column): (?:main\\.)?(\\w+)"));
    const QRegularExpressionMatch match = missing.match(error.databaseText());
    if (match.hasMatch())
        return QStringLiteral("there is no %1 %2").arg(match.captured(1), match.captured(2));
    for (const KnownResult &known : KnownResults) {
        if (error.nativeErrorCode() == QLatin1String(known.code))
            return QLatin1String(known.text);
    }
    return QStringLiteral("it cannot be used");
}

} // namespace

bool isSqlite(QFile &file)
{
    const QByteArray beginning("SQLite format 3", 16);
    return file.size() == 0 || file.peek(beginning.size()) == beginning;
}

SqliteFile::SqliteFile(const QString &path, const char *options) : m_name(QUuid::createUuid().toString())
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
    database.setDatabaseName(path);
    database.setConnectOptions(QLatin1String(options));
    if (!database.open())
        m_problem = plainText(database.lastError());
}

SqliteFile::~SqliteFile()
{
    QSqlDatabase::database(m_name, false).close();
    QSqlDatabase::removeDatabase(m_name);
}

void SqliteFile::run(const QString &statement, const QVariantList &values)
{
    select(statement, values, [](const QSqlQuery &) {});
}

void SqliteFile::select(const QString &statement, const QVariantList &values,
                        const std::function<void(const QSqlQuery &)> &takeRow)
{
    if (!m_problem.isEmpty())
        return;
    QSqlQuery query(QSqlDatabase::database(m_name, false));
    query.setForwardOnly(true);
    bool isGood = query.prepare(statement);
    for (const QVariant &value : values)
        query.addBindValue(value);
    isGood = isGood && query.exec();
    while (isGood && query.next())
        takeRow(query);
    if (query.lastError().isValid())
        m_problem = plainText(query.lastError());
}
