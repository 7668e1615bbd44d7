#pragma once

#include "desk/result.h"

#include <QStringList>

#include <map>
#include <optional>
#include <vector>

/// What a person has said once about a target: texts by the names of the options that would say the same,
/// "host", "port", "timeout".
using TargetSettings = std::map<QString, QString>;

/// The names that settings may have.
const QStringList &targetSettingNames();

/// Targets with names, in a file of sections that people edit as well:
///
///     # the boiler house
///     [boiler]
///     host = 192.168.0.10
///     station = 5
///
/// Changes leave all other lines as they are.
class TargetFile
{
public:
    /// "targets.ini" in the program's folder for the user's configuration.
    static QString defaultPath();
    /// The file's targets; none when there is no such file. The error names line and what was expected.
    static Result<TargetFile> read(const QString &path);

    QString path() const { return m_path; }
    QStringList names() const;
    /// Nothing when there is no such target. Files are named from the root; what is relative in the file
    /// counts from its folder.
    std::optional<TargetSettings> find(const QString &name) const;

    /// Adds a target at the end; the error says why its name cannot be one, or is taken.
    Result<> add(const QString &name, const TargetSettings &settings);
    /// Takes a target out; false when there is none.
    bool remove(const QString &name);
    /// Writes the file whole or not at all; makes its folder when there is none.
    Result<> save() const;

private:
    struct Section {
        QString name;
        int firstLine = 0;
        int endLine = 0; ///< after the last setting
        TargetSettings settings;
    };

    explicit TargetFile(const QString &path) : m_path(path) {}
    Result<> parse(const QStringList &lines);
    Result<> parseLine(const QString &line, int index);
    const Section *section(const QString &name) const;

    QString m_path;
    QStringList m_lines;
    std::vector<Section> m_sections;
};
