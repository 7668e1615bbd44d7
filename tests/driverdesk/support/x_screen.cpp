#include "tests/driverdesk/support/x_screen.h"

#include "tests/peers/waiting.h"

#include <gtest/gtest.h>

#include <QDir>

namespace
{

const int StartTime = 20000; // milliseconds

} // namespace

XScreen::XScreen(const QString &size)
{
    // The server chooses a free display and says which.
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), size + QStringLiteral("x24"), QStringLiteral("-noreset"),
                    QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    QByteArray number;
    while (!number.endsWith('\n') && m_server.waitForReadyRead(StartTime))
        number += m_server.readAllStandardOutput();
    if (number.endsWith('\n'))
        m_display = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    // Without a window manager no dialog gets the keys.
    m_manager.setProcessEnvironment(environment());
    m_manager.start(QStringLiteral("openbox"), QStringList());
    waitUntil([this] { return !run(QStringLiteral("xdotool"), {QStringLiteral("get_desktop")}).isEmpty(); },
              StartTime);
}

XScreen::~XScreen()
{
    for (QProcess *process : {&m_program, &m_manager, &m_server}) {
        process->terminate();
        if (!process->waitForFinished(StartTime))
            process->kill();
        process->waitForFinished();
    }
}

QProcessEnvironment XScreen::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_display);
    environment.insert(QStringLiteral("HOME"), m_home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.path());
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    return environment;
}

bool XScreen::start(const QStringList &arguments)
{
    m_program.setProcessEnvironment(environment());
    m_program.setProcessChannelMode(QProcess::MergedChannels);
    m_program.start(QStringLiteral(DESK_PROGRAM), arguments);
    if (!m_program.waitForStarted(StartTime))
        return false;
    return comesToFront(QStringLiteral("driverdesk"));
}

bool XScreen::comesToFront(const QString &title)
{
    const QStringList activeName{QStringLiteral("getactivewindow"), QStringLiteral("getwindowname")};
    return waitUntil(
               [&] {
                   return !isRunning() || run(QStringLiteral("xdotool"), activeName).contains(title.toUtf8());
               },
               StartTime) &&
           isRunning();
}

QByteArray XScreen::run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(program, arguments);
    if (!process.waitForFinished(StartTime))
        ADD_FAILURE() << program.toStdString() << " does not end";
    return process.readAllStandardOutput();
}

void XScreen::press(const QStringList &keys)
{
    run(QStringLiteral("xdotool"),
        QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("80")} + keys);
}

void XScreen::type(const QString &text)
{
    run(QStringLiteral("xdotool"),
        {QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("20"), text});
}

QString XScreen::clipboard()
{
    return QString::fromUtf8(
        run(QStringLiteral("xclip"),
            {QStringLiteral("-selection"), QStringLiteral("clipboard"), QStringLiteral("-o")}));
}

QString XScreen::copiedTable()
{
    press({QStringLiteral("ctrl+a"), QStringLiteral("ctrl+c")});
    return clipboard();
}

QImage XScreen::picture()
{
    return QImage::fromData(run(QStringLiteral("import"), {QStringLiteral("-window"), QStringLiteral("root"),
                                                           QStringLiteral("png:-")}));
}
