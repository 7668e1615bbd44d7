#include "apps/driverhost/commands/commands.h"
#include "apps/driverhost/console/messages.h"

#include <QCoreApplication>

namespace
{

struct Subcommand {
    const char *name;
    const char *summary;
    Job (*prepare)(const QStringList &arguments);
};

const Subcommand Subcommands[] = {
    {"info", "What the plug-in says about itself", prepareInfo},
    {"read", "Read values from a slave", prepareRead},
    {"write", "Write values to a slave", prepareWrite},
    {"watch", "Read values again and again", prepareWatch},
    {"tags", "Read all tags of a project", prepareTags},
    {"scan", "Find stations, or the addresses that a slave has", prepareScan},
    {"doctor", "Say what is wrong between here and the slave", prepareDoctor},
    {"points", "Check tables of points, or make one", preparePoints},
    {"target", "Keep targets by name", prepareTarget},
    {"snapshot", "Keep what a slave holds in a file", prepareSnapshot},
    {"compare", "Say what differs from a snapshot", prepareCompare},
    {"restore", "Put back what a snapshot holds", prepareRestore},
    {"project", "Make, print and explain project databases", prepareProject},
    {"slave", "Be a slave, also a faulty one", prepareSlave},
    {"demo", "Show the plug-in at work against a slave of its own", prepareDemo},
};

QString helpText()
{
    QString text =
        QStringLiteral("Usage: driverhost SUBCOMMAND [options] ...\n"
                       "       driverhost help [SUBCOMMAND]\n"
                       "       driverhost --version\n\n"
                       "Loads the Modbus RTU over TCP driver plug-in and talks to slaves through it.\n\n"
                       "Subcommands:\n");
    for (const Subcommand &subcommand : Subcommands)
        text += QStringLiteral("  %1  %2\n")
                    .arg(QLatin1String(subcommand.name), -8)
                    .arg(QLatin1String(subcommand.summary));
    return text +
           QStringLiteral("\n\"driverhost SUBCOMMAND --help\" says more. Exit codes: 0 success, 1 other\n"
                          "failure, 2 usage, 3 cannot connect, 4 no or broken reply, 5 exception reply,\n"
                          "6 project database, 7 not verified, 8 explained and 9 not explained by doctor,\n"
                          "10 differences found, 130 interrupted, 141 output closed.");
}

int printText(const QString &text)
{
    return print({text}) ? Success : OutputClosed;
}

const Subcommand *findSubcommand(const QString &name)
{
    for (const Subcommand &subcommand : Subcommands) {
        if (name == QLatin1String(subcommand.name))
            return &subcommand;
    }
    return nullptr;
}

int refuseName(const QString &name)
{
    reportError(name.isEmpty() ? QStringLiteral("no subcommand")
                               : QStringLiteral("unknown subcommand \"%1\"").arg(name));
    report(QStringLiteral("Try \"driverhost --help\"."));
    return UsageError;
}

int runSubcommand(const QString &name, const QStringList &arguments)
{
    const Subcommand *subcommand = findSubcommand(name);
    return subcommand == nullptr ? refuseName(name) : finish(subcommand->prepare(arguments));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("driverhost"));
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const QString name = arguments.value(0);
    if (name == QLatin1String("--version"))
        return printText(QStringLiteral("driverhost " DRIVERHOST_VERSION));
    if (name == QLatin1String("help") && arguments.size() > 1)
        return runSubcommand(arguments.at(1), {QStringLiteral("--help")});
    if (name == QLatin1String("--help") || name == QLatin1String("-h") || name == QLatin1String("help"))
        return printText(helpText());
    return runSubcommand(name, arguments.mid(1));
}
