#include "desk/project/project_why.h"

#include "desk/project/project_file.h"
#include "drivers/tools/project_lookup.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{

class Explanation
{
public:
    LoadReport explain(const QString &place, const QString &device);

private:
    void step(const QString &text) { m_report.steps += text; }
    QString databaseIn(const QString &place);
    bool canOpen(const QString &path);
    bool findLink(const Project &project, int hmiPort);
    void countTags(const Project &project, int link);

    LoadReport m_report;
};

LoadReport Explanation::explain(const QString &place, const QString &device)
{
    const QString path = databaseIn(place);
    const int hmiPort = DevStrToHmiPort(device);
    if (!canOpen(path))
        return m_report;
    step(QStringLiteral("device text \"%1\" stands for HMI port %2").arg(device, QString::number(hmiPort)));
    const Result<Project> project = readProjectFile(path);
    if (!project) {
        step(QStringLiteral("the tables cannot be read: ") + project.errorText());
        step(QStringLiteral(
            "the driver says \"failed to get default station id\", or \"failed to initialize valid bit "
            "addresses table\" when only custom_tag_table is at fault"));
        return m_report;
    }
    m_report.isLoaded = findLink(*project, hmiPort);
    return m_report;
}

// The driver's rule, folder by folder.
QString Explanation::databaseIn(const QString &place)
{
    if (!QFileInfo(place).isDir()) {
        step(QStringLiteral("database %1, given as a file").arg(QFileInfo(place).absoluteFilePath()));
        return place;
    }
    QDir folder(place);
    step(QStringLiteral("the program's folder is %1").arg(folder.absolutePath()));
    for (const QString &name : {COMPILE_PATH, DATABASE_PATH}) {
        const bool isThere = folder.cd(name);
        step(QStringLiteral("%1 a folder \"%2\" in it")
                 .arg(isThere ? QStringLiteral("there is") : QStringLiteral("there is not"), name));
    }
    QString path = folder.absoluteFilePath(QStringLiteral("database"));
    step(QStringLiteral("so the database is %1").arg(path));
    return path;
}

bool Explanation::canOpen(const QString &path)
{
    const QByteArray magic("SQLite format 3", 16);
    QFile file(path);
    QString problem;
    if (!QFileInfo::exists(path)) {
        problem = QStringLiteral("there is no such file");
    } else if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("it cannot be opened: ") + file.errorString();
    } else {
        const QByteArray header = file.read(magic.size());
        if (!header.isEmpty() && header != magic)
            problem = QStringLiteral("it is no SQLite database");
        else
            step(QStringLiteral("the file is there and is an SQLite database of %1 bytes").arg(file.size()));
    }
    if (problem.isEmpty())
        return true;
    step(problem);
    step(QStringLiteral(
        "the driver says \"can not open database\", from the second time on \"failed to get default "
        "station id\""));
    return false;
}

bool Explanation::findLink(const Project &project, int hmiPort)
{
    int rows = 0;
    int link = 0;
    int station = 0;
    int links = 0;
    for (const Project::Link &candidate : project.links) {
        if (candidate.hmiPort != hmiPort)
            continue;
        ++links;
        for (const Project::Node &node : project.nodes) {
            if (node.link != candidate.id || !node.isDefault)
                continue;
            link = rows == 0 ? candidate.id : link;
            station = rows == 0 ? node.station : station;
            ++rows;
        }
    }
    step(QStringLiteral("table LINK: %1 rows, %2 of them with HMIPORT = %3")
             .arg(QString::number(project.links.size()), QString::number(links), QString::number(hmiPort)));
    for (const Project::Link &other : project.links) {
        if (links == 0)
            step(QStringLiteral("  link %1 has HMIPORT %2")
                     .arg(QString::number(other.id), QString::number(other.hmiPort)));
    }
    step(QStringLiteral("table NODE: %1 rows, %2 of them default nodes (ISDEFAULT = 1) of such a link")
             .arg(QString::number(project.nodes.size()), QString::number(rows)));
    if (rows == 0) {
        step(QStringLiteral("the driver says \"failed to get default station id\""));
        return false;
    }
    if (rows > 1)
        step(QStringLiteral(
            "  more than one: the driver takes the first row that SQLite gives, perhaps another one"));
    step(QStringLiteral("link %1, default station %2")
             .arg(QString::number(link), QString::number(station & 0xFF)));
    countTags(project, link);
    return true;
}

void Explanation::countTags(const Project &project, int link)
{
    int tags = 0;
    for (const Project::Tag &tag : project.tags)
        tags += tag.link == link ? 1 : 0;
    step(QStringLiteral("table custom_tag_table: %1 rows, %2 of them with connector_id = %3")
             .arg(QString::number(project.tags.size()), QString::number(tags), QString::number(link)));
    step(QStringLiteral("the driver loads this project"));
}

} // namespace

LoadReport explainLoad(const QString &place, const QString &device)
{
    return Explanation().explain(place, device);
}
