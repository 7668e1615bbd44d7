#include "desk/targets/target_file.h"

#include "desk/written_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>

namespace
{

bool isName(const QString &text)
{
    static const QRegularExpression name(QStringLiteral("^[A-Za-z0-9_][A-Za-z0-9_.-]*$"));
    return name.match(text).hasMatch();
}

QString expectedName(const QString &text)
{
    return QStringLiteral("\"%1\": expected a name of letters, digits, \"_\", \".\" and \"-\"").arg(text);
}

bool namesFile(const QString &setting)
{
    return setting == QLatin1String("project") || setting == QLatin1String("points");
}

} // namespace

const QStringList &targetSettingNames()
{
    static const QStringList names{QStringLiteral("host"),    QStringLiteral("port"),
                                   QStringLiteral("station"), QStringLiteral("timeout"),
                                   QStringLiteral("retries"), QStringLiteral("delay"),
                                   QStringLiteral("device"),  QStringLiteral("connect-timeout"),
                                   QStringLiteral("settle"),  QStringLiteral("project"),
                                   QStringLiteral("points")};
    return names;
}

QString TargetFile::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) +
           QStringLiteral("/targets.ini");
}

Result<TargetFile> TargetFile::read(const QString &path)
{
    TargetFile targets(path);
    QFile file(path);
    if (!file.exists())
        return targets;
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return Error{QStringLiteral("%1: %2").arg(path, file.errorString())};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    if (lines.last().isEmpty())
        lines.removeLast();
    const Result<> parsed = targets.parse(lines);
    if (!parsed)
        return parsed.error();
    return targets;
}

Result<> TargetFile::parse(const QStringList &lines)
{
    m_lines = lines;
    m_sections.clear();
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines.at(i).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')) || line.startsWith(QLatin1Char(';')))
            continue;
        const Result<> parsed = parseLine(line, i);
        if (!parsed)
            return Error{QStringLiteral("%1:%2: %3").arg(m_path, QString::number(i + 1), parsed.errorText())};
        m_sections.back().endLine = i + 1;
    }
    return {};
}

Result<> TargetFile::parseLine(const QString &line, int index)
{
    if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'))) {
        const QString name = line.mid(1, line.size() - 2).trimmed();
        if (!isName(name))
            return Error{expectedName(name)};
        if (section(name) != nullptr)
            return Error{QStringLiteral("there is a target \"%1\" already").arg(name)};
        m_sections.push_back({name, index, index + 1, {}});
        return {};
    }
    const QString key = line.section(QLatin1Char('='), 0, 0).trimmed().toLower();
    if (m_sections.empty() || !line.contains(QLatin1Char('=')))
        return Error{QStringLiteral("\"%1\": expected %2")
                         .arg(line, m_sections.empty() ? QStringLiteral("a target's name in brackets first")
                                                       : QStringLiteral("SETTING = VALUE"))};
    if (!targetSettingNames().contains(key))
        return Error{QStringLiteral("\"%1\": expected one of %2")
                         .arg(key, targetSettingNames().join(QStringLiteral(", ")))};
    const QString value = line.section(QLatin1Char('='), 1).trimmed();
    if (!m_sections.back().settings.emplace(key, value).second)
        return Error{QStringLiteral("\"%1\" is set already").arg(key)};
    return {};
}

const TargetFile::Section *TargetFile::section(const QString &name) const
{
    const auto found = std::find_if(m_sections.begin(), m_sections.end(),
                                    [&](const Section &section) { return section.name == name; });
    return found == m_sections.end() ? nullptr : &*found;
}

QStringList TargetFile::names() const
{
    QStringList names;
    for (const Section &section : m_sections)
        names += section.name;
    return names;
}

std::optional<TargetSettings> TargetFile::find(const QString &name) const
{
    const Section *const found = section(name);
    if (found == nullptr)
        return std::nullopt;
    TargetSettings settings = found->settings;
    for (auto &[key, value] : settings) {
        if (namesFile(key))
            value = QDir::cleanPath(QFileInfo(m_path).absoluteDir().absoluteFilePath(value));
    }
    return settings;
}

Result<> TargetFile::add(const QString &name, const TargetSettings &settings)
{
    if (!isName(name))
        return Error{QStringLiteral("target ") + expectedName(name)};
    if (section(name) != nullptr)
        return Error{QStringLiteral("there is a target \"%1\" already; remove it first").arg(name)};
    QStringList lines = m_lines;
    if (!lines.isEmpty())
        lines += QString();
    lines += QStringLiteral("[%1]").arg(name);
    for (const QString &key : targetSettingNames()) {
        const auto setting = settings.find(key);
        if (setting != settings.end())
            lines += QStringLiteral("%1 = %2").arg(key, setting->second);
    }
    return parse(lines);
}

bool TargetFile::remove(const QString &name)
{
    const Section *const found = section(name);
    if (found == nullptr)
        return false;
    int first = found->firstLine;
    if (first > 0 && m_lines.at(first - 1).trimmed().isEmpty())
        --first;
    const QStringList lines = m_lines.mid(0, first) + m_lines.mid(found->endLine);
    return parse(lines).isGood();
}

Result<> TargetFile::save() const
{
    if (!QDir().mkpath(QFileInfo(m_path).absolutePath()))
        return Error{QStringLiteral("%1: the folder cannot be made").arg(QFileInfo(m_path).absolutePath())};
    return writeWholeFile(m_path, (m_lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8());
}
