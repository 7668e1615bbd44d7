#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/target_choice.h"
#include "desk/output/table.h"

#include <QDir>
#include <QFileInfo>

namespace
{

const CommandLine::Texts Texts = {
    "target",
    "[add NAME rtutcp://HOST:PORT/STATION | remove NAME]",
    "Keeps targets by name, with the options that go with them. @NAME then stands for the target wherever "
    "one "
    "is taken,\n"
    "also in DRIVERHOST_TARGET in the environment. Without words the targets are listed. They are kept in "
    "targets.ini in\n"
    "the user's folder for configuration, a file that people edit as well.",
    "  driverhost target add boiler rtutcp://192.168.0.10:502/5 --timeout 500 --points boiler.csv\n"
    "  driverhost read @boiler temperature",
};

QList<QCommandLineOption> keptOptions()
{
    QList<QCommandLineOption> kept{
        {QStringLiteral("points"), QStringLiteral("Table of the target's points."), QStringLiteral("FILE")}};
    for (const QCommandLineOption &option : linkOptions()) {
        if (targetSettingNames().contains(option.names().constFirst()))
            kept += option;
    }
    return kept;
}

int listTargets(const TargetFile &file)
{
    Table table({QStringLiteral("name"), QStringLiteral("settings")});
    for (const QString &name : file.names()) {
        QStringList settings;
        for (const auto &[setting, value] : file.find(name).value_or(TargetSettings()))
            settings += QStringLiteral("%1=%2").arg(setting, value);
        table.addRow({name, settings.join(QLatin1Char(' '))});
    }
    if (file.names().isEmpty()) {
        report(QStringLiteral("no targets in %1").arg(file.path()));
        return Success;
    }
    return print(table.lines()) ? Success : OutputClosed;
}

// As it is used, or as it is kept.
QString nameOf(const QString &word)
{
    return looksLikeTargetName(word) ? word.mid(1) : word;
}

int save(const TargetFile &file)
{
    const Result<> saved = file.save();
    if (saved)
        return Success;
    reportError(saved.errorText());
    return OtherFailure;
}

// Files as they are found from anywhere.
QString settingText(const CommandLine &line, const QString &name)
{
    const QString text = line.text(name.toLatin1().constData());
    const bool isFile = name == QLatin1String("project") || name == QLatin1String("points");
    return isFile ? QFileInfo(text).absoluteFilePath() : text;
}

int addTarget(TargetFile &file, const QString &name, CommandLine &line, QStringList words)
{
    linkSettings(line, words);
    if (!words.isEmpty())
        line.addError(QStringLiteral("\"%1\": expected nothing after the target").arg(words.first()));
    TargetSettings settings;
    for (const QString &setting : targetSettingNames()) {
        if (line.isGiven(setting.toLatin1().constData()))
            settings[setting] = settingText(line, setting);
    }
    if (settings.count(QStringLiteral("host")) == 0)
        line.addError(QStringLiteral("expected a target such as rtutcp://192.168.0.10:502/5"));
    if (!line.isValid())
        return line.reportUsageError();
    const Result<> added = file.add(name, settings);
    if (!added)
        line.addError(added.errorText());
    return added ? save(file) : line.reportUsageError();
}

int removeTarget(TargetFile &file, const QString &name, CommandLine &line)
{
    if (file.remove(name))
        return save(file);
    line.addError(QStringLiteral("there is no target \"%1\" in %2").arg(name, file.path()));
    return line.reportUsageError();
}

} // namespace

Job prepareTarget(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions(keptOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    Result<TargetFile> file = TargetFile::read(TargetFile::defaultPath());
    if (!file) {
        reportError(file.errorText());
        return UsageError;
    }
    const QStringList words = line.words();
    const QString what = words.value(0);
    if (words.isEmpty())
        return listTargets(*file);
    if (what == QLatin1String("add") && words.size() >= 2)
        return addTarget(*file, nameOf(words.at(1)), line, words.mid(2));
    if (what == QLatin1String("remove") && words.size() == 2)
        return removeTarget(*file, nameOf(words.at(1)), line);
    line.addError(QStringLiteral("expected nothing, add NAME rtutcp://HOST:PORT/STATION, or remove NAME"));
    return line.reportUsageError();
}
