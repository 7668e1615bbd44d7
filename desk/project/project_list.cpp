#include "desk/project/project_list.h"

#include "desk/items/address.h"
#include "desk/items/number_text.h"
#include "desk/items/target.h"
#include "desk/items/typed_items.h"
#include "desk/project/device_text.h"
#include "drivers/tools/project_lookup.h"

#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace
{

// A tag with a type is one value, and of bits a bit.
Result<TypedItems> parseTag(const QString &text)
{
    const Result<TypedText> typed = parseTypedText(text);
    if (!typed)
        return typed.error();
    const Result<Address> address = parseAddress(typed->address);
    if (!address)
        return address.error();
    if (typed->count || (address->isBitArea() && !typed->type->isBit()))
        return Error{
            QStringLiteral("tag \"%1\": expected one value, and of %2 a bit").arg(text, address->areaName)};
    return typedItems(*address, *typed->type, 1, typed->order);
}

class ListReader
{
public:
    Result<Project> read(const QString &text);

private:
    void readLine(const QStringList &fields);
    void readLink(const QStringList &fields);
    void readNode(const QStringList &fields);
    void readTag(const QStringList &fields);
    void addTags(int link, const AddressSpan &span);
    void addTypedTag(int link, const QString &text);
    int linkOf(const QString &text);
    bool hasLink(int id) const;
    void addProblem(const QString &text);

    Project m_project;
    QString m_problem;
};

// Blanks and commas both stand between fields, so that a table of a spreadsheet passes as it is saved.
QStringList fieldsOf(const QString &line)
{
    static const QRegularExpression between(QStringLiteral("[\\s,;]+"));
    QString plain = line.section(QLatin1Char('#'), 0, 0);
    return plain.remove(QLatin1Char('"')).split(between, Qt::SkipEmptyParts);
}

Result<Project> ListReader::read(const QString &text)
{
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QStringList fields = fieldsOf(lines.at(i));
        if (!fields.isEmpty())
            readLine(fields);
        if (!m_problem.isEmpty())
            return Error{QStringLiteral("line %1: %2").arg(QString::number(i + 1), m_problem)};
    }
    for (const Project::Link &link : qAsConst(m_project.links)) {
        const bool hasDefault =
            std::any_of(m_project.nodes.begin(), m_project.nodes.end(),
                        [&](const Project::Node &node) { return node.link == link.id && node.isDefault; });
        if (!hasDefault)
            return Error{
                QStringLiteral("link %1 has no default node; the driver would find no station").arg(link.id)};
    }
    if (!m_project.links.isEmpty())
        return m_project;
    return Error{QStringLiteral("the list has no link")};
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
        addProblem(QStringLiteral("\"%1\": expected link, node or tag").arg(fields.first()));
}

void ListReader::readLink(const QStringList &fields)
{
    if (fields.size() != 3) {
        addProblem(QStringLiteral("expected link ID DEVICE, such as link 1 ETHERNET"));
        return;
    }
    const Result<int> id =
        parseNumber(QStringLiteral("link"), fields.at(1), 0, std::numeric_limits<int>::max());
    const Result<> device = checkDeviceText(fields.at(2));
    if (!id || !device) {
        addProblem(id ? device.errorText() : id.errorText());
        return;
    }
    const int hmiPort = DevStrToHmiPort(fields.at(2));
    for (const Project::Link &link : qAsConst(m_project.links)) {
        if (link.id == *id)
            addProblem(QStringLiteral("there is a link %1 already").arg(*id));
        else if (link.hmiPort == hmiPort)
            addProblem(QStringLiteral("link %1 is on %2 already; the driver would take only one of them")
                           .arg(QString::number(link.id), fields.at(2)));
    }
    m_project.links.append({*id, hmiPort});
}

void ListReader::readNode(const QStringList &fields)
{
    const int maxFields = 5;
    if (fields.size() < 3 || fields.size() > maxFields) {
        addProblem(QStringLiteral(
            "expected node LINK STATION [default] [HOST:PORT], such as node 1 5 default 10.0.0.5:502"));
        return;
    }
    Project::Node node;
    node.link = linkOf(fields.at(1));
    node.isDefault = false;
    const Result<int> station =
        parseNumber(QStringLiteral("station"), fields.at(2), 0, modbus::MaxStationNumber);
    if (!station)
        addProblem(station.errorText());
    node.station = station.valueOr(0);
    for (const QString &field : fields.mid(3)) {
        if (field.toLower() == QLatin1String("default")) {
            node.isDefault = true;
            continue;
        }
        static const QRegularExpression port(QStringLiteral(":\\d+$"));
        const Result<Target> target = parseTarget(QStringLiteral("rtutcp://") + field);
        if (!target || !port.match(field).hasMatch())
            addProblem(QStringLiteral("\"%1\": expected \"default\" or HOST:PORT").arg(field));
        node.host = target.valueOr(Target()).host;
        node.port = target.valueOr(Target()).port;
    }
    for (const Project::Node &other : qAsConst(m_project.nodes)) {
        if (node.isDefault && other.isDefault && other.link == node.link)
            addProblem(QStringLiteral("link %1 has a default node already").arg(node.link));
    }
    m_project.nodes.append(node);
}

void ListReader::readTag(const QStringList &fields)
{
    if (fields.size() != 3) {
        addProblem(QStringLiteral("expected tag LINK ADDRESS, such as tag 1 HR100"));
        return;
    }
    const int link = linkOf(fields.at(1));
    if (fields.at(2).contains(QLatin1Char(':'))) {
        addTypedTag(link, fields.at(2));
        return;
    }
    const Result<AddressSpan> span = parseAddressSpan(fields.at(2));
    if (!span)
        addProblem(span.errorText());
    else if (span->isRange)
        addTags(link, *span);
    else
        m_project.tags.append({link, fields.at(2)});
}

// The driver finds the bits that are used by tags that are addresses and nothing else.
void ListReader::addTypedTag(int link, const QString &text)
{
    const Result<TypedItems> tag = parseTag(text);
    if (!tag)
        addProblem(tag.errorText());
    else
        m_project.tags.append({link, tag->address.isBitArea() ? tag->address.label() : text});
}

// A range stands for a tag of each address.
void ListReader::addTags(int link, const AddressSpan &span)
{
    Address address = span.first;
    for (; address.number <= span.last; ++address.number)
        m_project.tags.append({link, address.label()});
}

int ListReader::linkOf(const QString &text)
{
    const Result<int> id = parseNumber(QStringLiteral("link"), text, 0, std::numeric_limits<int>::max());
    if (!id)
        addProblem(id.errorText());
    else if (!hasLink(*id))
        addProblem(QStringLiteral("there is no link %1 above").arg(*id));
    return id.valueOr(0);
}

bool ListReader::hasLink(int id) const
{
    return std::any_of(m_project.links.begin(), m_project.links.end(),
                       [id](const Project::Link &link) { return link.id == id; });
}

void ListReader::addProblem(const QString &text)
{
    if (m_problem.isEmpty())
        m_problem = text;
}

} // namespace

Result<Project> parseProjectList(const QString &text)
{
    return ListReader().read(text);
}

QStringList projectListOf(const Project &project)
{
    QStringList lines;
    for (const Project::Link &link : project.links)
        lines += QStringLiteral("link %1 %2").arg(QString::number(link.id), deviceTextOf(link.hmiPort));
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
