#include "apps/driverdesk/workspace/workspace.h"

#include "desk/readable_file.h"
#include "desk/written_file.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

const int Version = 1;

QString key(const char *name)
{
    return QLatin1String(name);
}

QJsonValue base64(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

QByteArray bytesAt(const QJsonObject &object, const char *name)
{
    return QByteArray::fromBase64(object.value(key(name)).toString().toLatin1());
}

QStringList textsAt(const QJsonObject &object, const char *name)
{
    QStringList texts;
    for (const auto value : object.value(key(name)).toArray())
        texts += value.toString();
    return texts;
}

QJsonObject objectOf(const SlaveValue &value)
{
    return {{key("station"), value.station},
            {key("address"), areaName(value.area) + QString::number(value.offset + 1)},
            {key("value"), value.value},
            {key("movement"), movementNames().at(value.movement.kind)},
            {key("from"), value.movement.min},
            {key("to"), value.movement.max},
            {key("period"), value.movement.period}};
}

Result<SlaveValue> slaveValueOf(const QJsonObject &object)
{
    const QString address = object.value(key("address")).toString();
    const Result<AreaRange> range = parseAreaRange(address);
    const int movement = int(movementNames().indexOf(object.value(key("movement")).toString()));
    if (!range)
        return Error{QStringLiteral("slave: ") + range.errorText()};
    if (movement < 0)
        return Error{QStringLiteral("slave: %1: expected a movement: %2")
                         .arg(address, movementNames().join(QStringLiteral(", ")))};
    SlaveValue value;
    value.station = object.value(key("station")).toInt(1);
    value.area = range->area;
    value.offset = static_cast<quint16>(range->first);
    value.value = static_cast<quint16>(object.value(key("value")).toInt());
    value.movement = {static_cast<Movement::Kind>(movement), object.value(key("from")).toInt(),
                      object.value(key("to")).toInt(), object.value(key("period")).toInt(1)};
    return value;
}

QJsonObject objectOf(const Workspace::Slave &slave)
{
    QJsonArray values;
    for (const SlaveValue &value : slave.values)
        values.append(objectOf(value));
    return {{key("running"), slave.isRunning},
            {key("port"), slave.port},
            {key("faults"), QJsonArray::fromStringList(slave.faults)},
            {key("oneOf"), slave.oneOf},
            {key("values"), values}};
}

Result<Workspace::Slave> slaveOf(const QJsonObject &object)
{
    Workspace::Slave slave;
    slave.isRunning = object.value(key("running")).toBool();
    slave.port = static_cast<quint16>(object.value(key("port")).toInt());
    slave.faults = textsAt(object, "faults");
    slave.oneOf = object.value(key("oneOf")).toInt(1);
    for (const auto element : object.value(key("values")).toArray()) {
        const Result<SlaveValue> value = slaveValueOf(element.toObject());
        if (!value)
            return value.error();
        slave.values.push_back(*value);
    }
    return slave;
}

QJsonArray arrayOf(const std::vector<Workspace::Curve> &curves)
{
    QJsonArray array;
    for (const Workspace::Curve &curve : curves)
        array.append(QJsonObject{
            {key("point"), curve.label}, {key("right"), curve.isRight}, {key("shown"), curve.isShown}});
    return array;
}

int lineAt(const QByteArray &bytes, int offset)
{
    return 1 + int(bytes.left(offset).count('\n'));
}

Error inLine(int line, const QString &reason)
{
    return {QStringLiteral("%1: %2").arg(line).arg(reason)};
}

} // namespace

QByteArray bytesOf(const Workspace &workspace)
{
    const QJsonObject object{{key("driverdesk"), Version},
                             {key("open"), QJsonArray::fromStringList(workspace.opening)},
                             {key("trends"), arrayOf(workspace.curves)},
                             {key("trendSpan"), workspace.trendSpan},
                             {key("geometry"), base64(workspace.geometry)},
                             {key("layout"), base64(workspace.layout)},
                             {key("columns"), base64(workspace.columns)},
                             {key("slave"), objectOf(workspace.slave)}};
    return QJsonDocument(object).toJson();
}

Result<Workspace> parseWorkspace(const QByteArray &bytes)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError)
        return inLine(lineAt(bytes, error.offset), error.errorString());
    const QJsonObject object = document.object();
    const int version = object.value(key("driverdesk")).toInt();
    if (version < 1 || version > Version)
        return inLine(1, QStringLiteral("expected a workspace with \"driverdesk\": %1").arg(Version));
    Workspace workspace;
    workspace.opening = textsAt(object, "open");
    for (const auto element : object.value(key("trends")).toArray()) {
        const QJsonObject curve = element.toObject();
        workspace.curves.push_back({curve.value(key("point")).toString(), curve.value(key("right")).toBool(),
                                    curve.value(key("shown")).toBool(true)});
    }
    workspace.trendSpan = object.value(key("trendSpan")).toInt();
    workspace.geometry = bytesAt(object, "geometry");
    workspace.layout = bytesAt(object, "layout");
    workspace.columns = bytesAt(object, "columns");
    const Result<Workspace::Slave> slave = slaveOf(object.value(key("slave")).toObject());
    if (!slave)
        return inLine(lineAt(bytes, int(bytes.indexOf("\"slave\""))), slave.errorText());
    workspace.slave = *slave;
    return workspace;
}

Result<> saveWorkspace(const QString &path, const Workspace &workspace)
{
    const QByteArray bytes = bytesOf(workspace);
    QSaveFile file(path);
    if (saveWhole(file, bytes))
        return {};
    return Error{QStringLiteral("%1 cannot be written: %2").arg(path, file.errorString())};
}

Result<Workspace> readWorkspace(const QString &path)
{
    const Result<QByteArray> bytes = contentsOf(path);
    if (!bytes)
        return bytes.error();
    Result<Workspace> workspace = parseWorkspace(*bytes);
    if (workspace)
        return workspace;
    return Error{QStringLiteral("%1:%2").arg(path, workspace.errorText())};
}
