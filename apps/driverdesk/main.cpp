#include "apps/driverdesk/opening/run_program.h"
#include "apps/driverdesk/opening/window_options.h"
#include "apps/driverdesk/window/end_guard.h"
#include "apps/driverdesk/window/main_window.h"
#include "apps/driverdesk/window/palettes.h"
#include "apps/driverhost/console/exit_code.h"
#include "apps/driverhost/console/stop_signal.h"
#include "desk/startup/beside_database.h"

#include <QApplication>
#include <QIcon>
#include <QScreen>

#include <algorithm>
#include <cstdio>

namespace
{

const int EndTime = 800; // milliseconds from closing to the end of the process

int say(std::FILE *where, const QString &text, int code)
{
    std::fprintf(where, "%s\n", text.toLocal8Bit().constData());
    return code;
}

bool asksFor(const QStringList &arguments, std::initializer_list<const char *> names)
{
    return std::any_of(names.begin(), names.end(),
                       [&arguments](const char *name) { return arguments.contains(QLatin1String(name)); });
}

// The first process: it needs no display.
int startAgain(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (asksFor(arguments, {"--help", "-h"}))
        return say(stdout, windowHelp(), Success);
    if (asksFor(arguments, {"--version", "-v"}))
        return say(stdout, QStringLiteral("driverdesk " DRIVERDESK_VERSION), Success);
    return runBeside();
}

int showWindow(QApplication &application)
{
    const Result<WindowOptions> options = windowOptionsOf(QApplication::arguments().mid(1));
    if (!options)
        return say(stderr,
                   QStringLiteral("driverdesk: %1\nTry \"driverdesk --help\".").arg(options.errorText()),
                   UsageError);
    MainWindow window;
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/driverdesk.svg")));
    QObject::connect(&window, &MainWindow::closing, &application, [] { endWithin(EndTime); });
    StopSignal signal;
    QObject::connect(&signal, &StopSignal::stop, &window, &QWidget::close);
    window.resize(QSize(1280, 800).boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    window.start(*options);
    window.show();
    return QApplication::exec();
}

bool isBesideDatabase(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    return runsBesideDatabase();
}

} // namespace

int main(int argc, char **argv)
{
    if (!isBesideDatabase(argc, argv))
        return startAgain(argc, argv);
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setStyle(newStyle());
    QApplication::setOrganizationName(QStringLiteral("driverdesk"));
    QApplication::setApplicationName(QStringLiteral("driverdesk"));
    QApplication::setApplicationVersion(QStringLiteral(DRIVERDESK_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("driverdesk"));
    return showWindow(application);
}
