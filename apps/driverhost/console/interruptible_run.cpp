#include "apps/driverhost/console/interruptible_run.h"

#include "apps/driverhost/terminal/status_line.h"

#include <algorithm>

namespace
{

const qint64 Millisecond = 1000; // in the microseconds of the channel's clock
const qint64 Second = 1000 * Millisecond;
// What is faster is no wait.
const qint64 FirstMoments = Second / 2;

QString leftText(qint64 microseconds)
{
    return QStringLiteral("%1 s left").arg((std::max<qint64>(microseconds, 0) + Second - 1) / Second);
}

// An attempt waits once for its reply, as a rule: the driver gives up when the first bytes do not come.
qint64 timeLeft(const Session &session)
{
    const ChannelSettings &settings = session.settings();
    const CommandRecord &command = session.lastCommand();
    const qint64 now = session.channel().now();
    const qint64 others = settings.retries + 1 - command.attempts();
    return std::max<qint64>(others, 0) * (settings.timeout + qint64(settings.delay)) * Millisecond +
           command.sentAt() + settings.timeout * Millisecond - now;
}

} // namespace

QString waitText(const Session &session)
{
    const CommandRecord &command = session.lastCommand();
    const qint64 now = session.channel().now();
    if (!command.isRunning() || now - command.beganAt() < FirstMoments)
        return {};
    if (command.attempts() == 0)
        return QStringLiteral("connecting, ") +
               leftText(command.beganAt() + session.settings().connectTimeout * Millisecond - now);
    return QStringLiteral("attempt %1 of %2, %3")
        .arg(QString::number(command.attempts()), QString::number(session.settings().retries + 1),
             leftText(timeLeft(session)));
}

InterruptibleRun::InterruptibleRun(Session &session)
    : InterruptibleRun(
          session, [this](const QString &wait) { showStatus(QStringLiteral("%1: %2").arg(m_label, wait)); })
{
}

InterruptibleRun::InterruptibleRun(Session &session, const std::function<void(const QString &wait)> &show)
    : m_session(session)
{
    session.channel().setCancelled([&session, show] {
        const QString wait = waitText(session);
        if (!wait.isEmpty())
            show(wait);
        return StopSignal::raised();
    });
}

InterruptibleRun::~InterruptibleRun()
{
    m_session.channel().setCancelled({});
    clearStatus();
}
