#include "commands.h"
#include "exit_codes.h"
#include "messages.h"
#include "slave_command.h"

#include <QCoreApplication>

#include <cstdio>

namespace
{

struct Subcommand {
    const char *name;
    const char *summary;
    int (*run)(const QStringList &arguments);
};

const Subcommand Subcommands[] = {
    {"info", "What the plug-in says about itself", runInfo},
    {"read", "Read values from a slave", runRead},
    {"write", "Write values to a slave", runWrite},
    {"watch", "Read values again and again", runWatch},
    {"tags", "Read all tags of a project", runTags},
    {"scan", "Find stations, or the addresses that a slave has", runScan},
    {"project", "Make, print and explain project databases", runProject},
    {"slave", "Be a slave, also a faulty one", runSlave},
    {"demo", "Show the plug-in at work against a slave of its own", runDemo},
};

QString helpText()
{
    QString text =
        QStringLiteral("Usage: driverhost SUBCOMMAND [options] ...\n\n"
                       "Loads the Modbus RTU over TCP driver plug-in and talks to slaves through it.\n\n"
                       "Subcommands:\n");
    for (const Subcommand &subcommand : Subcommands)
        text += QStringLiteral("  %1  %2\n")
                    .arg(QLatin1String(subcommand.name), -8)
                    .arg(QLatin1String(subcommand.summary));
    return text +
           QStringLiteral("\n\"driverhost SUBCOMMAND --help\" tells more. Exit codes: 0 success, 1 other "
                          "failure, 2 usage,\n3 cannot connect, 4 no or broken reply, 5 exception reply, "
                          "6 project database,\n7 not verified, 130 interrupted, 141 output closed.\n");
}

int refuse(const QString &name)
{
    complain(name.isEmpty() ? QStringLiteral("no subcommand")
                            : QStringLiteral("unknown subcommand \"%1\"").arg(name));
    tell(QStringLiteral("Try \"driverhost --help\"."));
    return UsageError;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("driverhost"));
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const QString name = arguments.value(0);
    for (const Subcommand &subcommand : Subcommands) {
        if (name == QLatin1String(subcommand.name))
            return subcommand.run(arguments.mid(1));
    }
    if (name != QLatin1String("--help") && name != QLatin1String("-h") && name != QLatin1String("help"))
        return refuse(name);
    std::fputs(helpText().toLocal8Bit().constData(), stdout);
    return Success;
}
