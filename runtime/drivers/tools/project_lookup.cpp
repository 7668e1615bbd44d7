#include "drivers/tools/project_lookup.h"

#include "drivers/qt/qt_lines.h"
#include "drivers/tools/tool_assert.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

const QString COMPILE_PATH = QLatin1String("compile");
const QString DATABASE_PATH = QLatin1String("database");

namespace
{

const int EthernetHmiPort = 2000;
const unsigned int FirstSerialHmiPort = 999;

unsigned char toStationId(const QVariant &value)
{
    return static_cast<unsigned char>(value.toUInt() & 0xFFu);
}

QSqlQuery run(const QString &connectionName, const QString &statement)
{
    QSqlQuery query(QSqlDatabase::database(connectionName, true));
    query.setForwardOnly(true);
    query.exec(statement);
    return query;
}

} // namespace

QDir GetCompilePath()
{
    QDir directory(QCoreApplication::applicationDirPath());
    directory.cd(COMPILE_PATH);
    return directory;
}

QString GetDatabaseName()
{
    QDir directory = GetCompilePath();
    directory.cd(DATABASE_PATH);
    return directory.absoluteFilePath(QLatin1String("database"));
}

int DevStrToHmiPort(const QString &dev_str)
{
    if (dev_str.startsWith(QLatin1String("ETHERNET"), Qt::CaseInsensitive))
        return EthernetHmiPort;
    int i = sizeOf(dev_str) - 1;
    while (i >= 0 && dev_str.at(i) >= QLatin1Char('0') && dev_str.at(i) <= QLatin1Char('9'))
        --i;
    TOOL_ASSERT(i >= 0 && i + 1 < dev_str.size(), "i >= 0 && (i+1) < dev_str.size()");
    return static_cast<int>(dev_str.mid(i + 1).toUInt() + FirstSerialHmiPort);
}

bool GetLinkIdAndDefaultStationId(const QString &connectionName, int hmiPort, int &linkId,
                                  unsigned char &stationId)
{
    QSqlQuery query =
        run(connectionName, QString::fromLatin1("SELECT LINK.LINKID, NODE.STATIONID FROM LINK, NODE "
                                                "WHERE LINK.HMIPORT = %1 AND NODE.LINKID = LINK.LINKID "
                                                "AND NODE.ISDEFAULT = 1;")
                                .arg(hmiPort));
    if (!query.next())
        return false;
    linkId = query.value(0).toInt();
    stationId = toStationId(query.value(1));
    return true;
}

bool GetLinkIdAndDefaultStationId(const QString &connectionName, int hmiPort, const QString &ip,
                                  unsigned short port, QList<LinkIdStationId> &result)
{
    // One call fills all three places: a "%" in the ip is text, not another place.
    QSqlQuery query =
        run(connectionName, QString::fromLatin1("SELECT LINK.LINKID, NODE.STATIONID FROM LINK, NODE "
                                                "WHERE LINK.HMIPORT = %1 AND NODE.LINKID = LINK.LINKID "
                                                "AND NODE.IP = '%2' AND NODE.PORT = %3 "
                                                "AND NODE.ISDEFAULT = 1;")
                                .arg(QString::number(hmiPort), ip, QString::number(port)));
    while (query.next()) {
        const LinkIdStationId entry = {query.value(0).toInt(), toStationId(query.value(1))};
        result.append(entry);
    }
    return !result.isEmpty();
}

bool GetLinkIdAndDefaultStationId(const QString &connectionName, int linkId, QList<LinkIdStationId> &result)
{
    QSqlQuery query = run(connectionName, QString::fromLatin1("SELECT NODE.STATIONID FROM NODE "
                                                              "WHERE NODE.LINKID = %1 AND NODE.ISDEFAULT = 1")
                                              .arg(linkId));
    while (query.next()) {
        const LinkIdStationId entry = {linkId, toStationId(query.value(0))};
        result.append(entry);
    }
    return !result.isEmpty();
}
