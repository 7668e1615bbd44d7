#include "project_list.h"

#include "address.h"
#include "drivers/tools/project_lookup.h"
#include "target.h"

#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace
{

const int HighestStation = 255;
const int EthernetHmiPort = 2000;
const int FirstSerialHmiPort = 999;

class ListReader
{
public:
    std::optional<Project> read(const QString &text, QString &error);

private:
    void readLine(const QStringList &fields);
    void readLink(const QStringList &fields);
    void readNode(const QStringList &fields);
    void readTag(const QStringList &fields);
    int linkOf(const QString &text);
    bool hasLink(int id) const;
    void mistake(const QString &text);

    Project m_project;
    QString m_mistake;
};

// Blanks and commas both stand between fields, so that a table of a spreadsheet passes as it is saved.
QStringList fieldsOf(const QString &line)
{
    static const QRegularExpression between(QStringLiteral("[\\s,;]+"));
    QString plain = line.section(QLatin1Char('#'), 0, 0);
    return plain.remove(QLatin1Char('"')).split(between, Qt::SkipEmptyParts);
}

std::optional<Project> ListReader::read(const QString &text, QString &error)
{
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QStringList fields = fieldsOf(lines.at(i));
        if (!fields.isEmpty())
            readLine(fields);
        if (!m_mistake.isEmpty()) {
            error = QStringLiteral("line %1: %2").arg(QString::number(i + 1), m_mistake);
            return std::nullopt;
        }
    }
    for (const Project::Link &link : qAsConst(m_project.links)) {
        const bool hasDefault =
            std::any_of(m_project.nodes.begin(), m_project.nodes.end(),
                        [&](const Project::Node &node) { return node.link == link.id && node.isDefault; });
        if (!hasDefault) {
            error =
                QStringLiteral("link %1 has no default node; the driver would find no station").arg(link.id);
            return std::nullopt;
        }
    }
    if (!m_project.links.isEmpty())
        return m_project;
    error = QStringLiteral("the list has no link");
    return std::nullopt;
}

void ListReader::readLine(const QStringList &fields)
{
    const QString what = fields.first().toLower();
    if (what == QLatin1String("link"))
        readLink(fields);
    else if (what == QLatin1String("node"))
        readNode(fields);
    else if (what == QLatin1String("tag"))
        readTag(fields);
    else
        mistake(QStringLiteral("\"%1\": expected link, node or tag").arg(fields.first()));
}

void ListReader::readLink(const QStringList &fields)
{
    if (fields.size() != 3) {
        mistake(QStringLiteral("expected link ID DEVICE, such as link 1 ETHERNET"));
        return;
    }
    QString error;
    const std::optional<int> id =
        parseNumber(QStringLiteral("link"), fields.at(1), 0, std::numeric_limits<int>::max(), error);
    if (!id || !checkDeviceText(fields.at(2), error)) {
        mistake(error);
        return;
    }
    const int hmiPort = DevStrToHmiPort(fields.at(2));
    for (const Project::Link &link : qAsConst(m_project.links)) {
        if (link.id == *id)
            mistake(QStringLiteral("there is a link %1 already").arg(*id));
        else if (link.hmiPort == hmiPort)
            mistake(QStringLiteral("link %1 is on %2 already; the driver would take only one of them")
                        .arg(QString::number(link.id), fields.at(2)));
    }
    m_project.links.append({*id, hmiPort});
}

void ListReader::readNode(const QStringList &fields)
{
    const int mostFields = 5;
    if (fields.size() < 3 || fields.size() > mostFields) {
        mistake(QStringLiteral(
            "expected node LINK STATION [default] [HOST:PORT], such as node 1 5 default 10.0.0.5:502"));
        return;
    }
    QString error;
    Project::Node node;
    node.link = linkOf(fields.at(1));
    node.isDefault = false;
    const std::optional<int> station =
        parseNumber(QStringLiteral("station"), fields.at(2), 0, HighestStation, error);
    if (!station)
        mistake(error);
    node.station = station.value_or(0);
    for (const QString &field : fields.mid(3)) {
        if (field.toLower() == QLatin1String("default")) {
            node.isDefault = true;
            continue;
        }
        static const QRegularExpression port(QStringLiteral(":\\d+$"));
        const std::optional<Target> target = port.match(field).hasMatch()
                                                 ? parseTarget(QStringLiteral("rtutcp://") + field, error)
                                                 : std::nullopt;
        if (!target)
            mistake(QStringLiteral("\"%1\": expected \"default\" or HOST:PORT").arg(field));
        node.host = target.value_or(Target()).host;
        node.port = target.value_or(Target()).port;
    }
    for (const Project::Node &other : qAsConst(m_project.nodes)) {
        if (node.isDefault && other.isDefault && other.link == node.link)
            mistake(QStringLiteral("link %1 has a default node already").arg(node.link));
    }
    m_project.nodes.append(node);
}

void ListReader::readTag(const QStringList &fields)
{
    if (fields.size() != 3) {
        mistake(QStringLiteral("expected tag LINK ADDRESS, such as tag 1 HR100"));
        return;
    }
    QString error;
    if (!parseAddress(fields.at(2), error))
        mistake(error);
    m_project.tags.append({linkOf(fields.at(1)), fields.at(2)});
}

int ListReader::linkOf(const QString &text)
{
    QString error;
    const std::optional<int> id =
        parseNumber(QStringLiteral("link"), text, 0, std::numeric_limits<int>::max(), error);
    if (!id)
        mistake(error);
    else if (!hasLink(*id))
        mistake(QStringLiteral("there is no link %1 above").arg(*id));
    return id.value_or(0);
}

bool ListReader::hasLink(int id) const
{
    return std::any_of(m_project.links.begin(), m_project.links.end(),
                       [id](const Project::Link &link) { return link.id == id; });
}

void ListReader::mistake(const QString &text)
{
    if (m_mistake.isEmpty())
        m_mistake = text;
}

QString deviceOf(int hmiPort)
{
    if (hmiPort == EthernetHmiPort)
        return QStringLiteral("ETHERNET");
    return QStringLiteral("COM%1").arg(hmiPort - FirstSerialHmiPort);
}

} // namespace

std::optional<Project> parseProjectList(const QString &text, QString &error)
{
    return ListReader().read(text, error);
}

QStringList projectListOf(const Project &project)
{
    QStringList lines;
    for (const Project::Link &link : project.links)
        lines += QStringLiteral("link %1 %2").arg(QString::number(link.id), deviceOf(link.hmiPort));
    for (const Project::Node &node : project.nodes) {
        QString line =
            QStringLiteral("node %1 %2").arg(QString::number(node.link), QString::number(node.station));
        if (node.isDefault)
            line += QStringLiteral(" default");
        if (!node.host.isEmpty())
            line += QLatin1Char(' ') + endpointText(node.host, node.port);
        lines += line;
    }
    for (const Project::Tag &tag : project.tags)
        lines += QStringLiteral("tag %1 %2").arg(QString::number(tag.link), tag.address);
    return lines;
}
