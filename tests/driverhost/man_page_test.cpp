#include "apps/driverhost/console/exit_code.h"
#include "tests/driverhost/support/host_program.h"

#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace
{

using Options = QSet<QString>;

QString manualPage()
{
    QFile file(sourceFile(QStringLiteral("apps/driverhost/driverhost.1")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

Options optionsIn(const QString &text, const QString &pattern)
{
    Options options;
    const QRegularExpression option(pattern, QRegularExpression::MultilineOption);
    for (auto match = option.globalMatch(text); match.hasNext();)
        options += match.next().captured(1);
    return options;
}

// The options that each section of the page describes.
QMap<QString, Options> documented()
{
    QMap<QString, Options> sections;
    QString section;
    for (const QString &line : manualPage().split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String(".Ss ")) || line.startsWith(QLatin1String(".Sh ")))
            section = line.mid(4);
        if (line.startsWith(QLatin1String(".It Fl -")))
            sections[section] += optionsIn(line, QStringLiteral("Fl -([a-z-]+)"));
    }
    return sections;
}

Options helpOptions(const QString &subcommand)
{
    const QString help = runHost({subcommand, QStringLiteral("--help")}).out;
    Options options = optionsIn(help, QStringLiteral("^ +(?:-h, |--[a-z-]+, )?--([a-z-]+)"));
    options += optionsIn(help, QStringLiteral("^ +--([a-z-]+)"));
    options -= QStringLiteral("help");
    return options;
}

QStringList subcommands()
{
    const QString help = runHost({QStringLiteral("--help")}).out;
    QStringList names;
    const QRegularExpression name(QStringLiteral("^  ([a-z]+)  "), QRegularExpression::MultilineOption);
    for (auto match = name.globalMatch(help); match.hasNext();)
        names += match.next().captured(1);
    return names;
}

QString shown(const Options &options)
{
    QStringList names = options.values();
    names.sort();
    return names.join(QLatin1Char(' '));
}

} // namespace

TEST(ManualPage, DescribesEveryOptionOfEverySubcommandAndNoOther)
{
    const QMap<QString, Options> sections = documented();
    const QStringList names = subcommands();
    ASSERT_EQ(names.size(), 15);
    for (const QString &name : names) {
        Options expected = sections.value(name);
        if (QStringList{"read", "write", "watch", "tags", "scan", "doctor", "snapshot", "compare", "restore"}
                .contains(name))
            expected += sections.value(QStringLiteral("OPTIONS OF THE LINK"));
        if (name == QLatin1String("target"))
            expected +=
                sections.value(QStringLiteral("OPTIONS OF THE LINK")) - Options{"plugin", "record", "trace"};
        if (QStringList{"read", "write", "watch"}.contains(name))
            expected += sections.value(QStringLiteral("OPTIONS OF ITEMS"));
        EXPECT_EQ(shown(helpOptions(name)), shown(expected)) << name.toStdString();
        EXPECT_TRUE(manualPage().contains(QStringLiteral(".Ss ") + name)) << name.toStdString();
    }
}

TEST(ManualPage, DescribesEveryExitCode)
{
    const QString page = manualPage();
    for (const int code :
         {Success, OtherFailure, UsageError, CannotConnect, NoReply, ExceptionReply, DatabaseError,
          NotVerified, Explained, NotExplained, FoundDifferent, Interrupted, OutputClosed})
        EXPECT_TRUE(page.contains(QStringLiteral(".It %1\n").arg(code))) << code;
}

TEST(Help, FitsATerminalOfEightyColumns)
{
    for (const QString &name : subcommands()) {
        const QStringList lines = runHost({name, QStringLiteral("--help")}).out.split(QLatin1Char('\n'));
        const auto example = lines.indexOf(QStringLiteral("Example:"));
        ASSERT_GT(example, 0) << name.toStdString();
        // Commands to be copied stay in one piece.
        for (const QString &line : lines.mid(0, example))
            EXPECT_LT(line.size(), 80) << name.toStdString() << ": " << line.toStdString();
    }
    for (const QString &line : runHost({QStringLiteral("--help")}).out.split(QLatin1Char('\n')))
        EXPECT_LT(line.size(), 80) << line.toStdString();
}

TEST(ManualPage, EverySubcommandHasAnExampleInItsHelp)
{
    for (const QString &name : subcommands()) {
        const HostRun run = runHost({name, QStringLiteral("--help")});
        EXPECT_EQ(run.code, 0) << name.toStdString();
        EXPECT_TRUE(run.out.startsWith(QStringLiteral("Usage: driverhost ") + name)) << name.toStdString();
        EXPECT_TRUE(run.out.contains(QStringLiteral("\nExample:\n  driverhost ") + name))
            << name.toStdString();
    }
}
