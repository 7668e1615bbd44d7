#include "apps/driverhost/console/messages.h"

#include "apps/driverhost/terminal/status_line.h"
#include "desk/items/number_text.h"
#include "desk/items/portions.h"

#include <cerrno>
#include <cstdio>

void reportError(const QString &text)
{
    report(QStringLiteral("driverhost: ") + text);
}

void report(const QString &text)
{
    clearStatus();
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

namespace
{

// "4 attempts, time-out 3000 ms"; empty where nothing was tried.
QString attemptsText(const Session &session, FailureKind kind)
{
    const CommandRecord &command = session.lastCommand();
    if (command.attempts() == 0)
        return {};
    QString text = counted(command.attempts(), "attempt");
    if (command.withheld() > 0)
        text += QStringLiteral(", %1 of them not sent (--settle)").arg(command.withheld());
    if (kind == FailureKind::NoReply || kind == FailureKind::Cut)
        return text + QStringLiteral(", time-out %1 ms").arg(session.settings().timeout);
    if (kind == FailureKind::CannotConnect)
        return text +
               QStringLiteral(", time-out for connecting %1 ms").arg(session.settings().connectTimeout);
    return text;
}

} // namespace

void reportFailure(Session &session, const QString &label)
{
    const Failure failure = session.failure();
    reportError(QStringLiteral("%1: %2").arg(label, failure.text));
    report(QStringLiteral("  check: ") + failure.advice);
    const QString attempts = attemptsText(session, failure.kind);
    if (!attempts.isEmpty())
        report(QStringLiteral("  ") + attempts);
}

void reportOddSuccess(const Session &session, const QString &label)
{
    const CommandRecord &command = session.lastCommand();
    if (command.attempts() > 1)
        report(QStringLiteral("%1: answered at attempt %2 of %3")
                   .arg(label, QString::number(command.attempts()),
                        QString::number(session.settings().retries + 1)));
    if (command.isEchoed())
        report(QStringLiteral("%1: the request came back in front of the reply: the line echoes").arg(label));
}

void reportBroadcast(int station)
{
    if (station == modbus::BroadcastStation)
        report(QStringLiteral("station 0 is a broadcast: every slave takes a write, and none replies"));
}

void reportPortions(const std::vector<Point> &points)
{
    for (const Point &point : points) {
        const TypedItems &items = point.at;
        const size_t portions = portionsOf(items).size();
        if (portions > 1)
            report(
                QStringLiteral("%1: %2 items are more than one request carries; reading them in %3 portions")
                    .arg(items.label(0), QString::number(items.count), QString::number(portions)));
    }
}

void reportWritePortions(const TypedItems &items)
{
    const size_t portions = writePortionsOf(items).size();
    if (portions > 1)
        report(
            QStringLiteral("%1: %2 items are more than one request carries; writing them in %3 portions, one "
                           "after the other")
                .arg(items.label(0), QString::number(items.count), QString::number(portions)));
}

bool print(const QStringList &lines)
{
    clearStatus();
    for (const QString &line : lines)
        std::fprintf(stdout, "%s\n", line.toLocal8Bit().constData());
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return true;
    if (errno != EPIPE)
        reportError(QStringLiteral("cannot write the output: ") + qt_error_string(errno));
    return false;
}

TraceSink stderrTrace()
{
    return [](const QString &line) {
        const QByteArray bytes = line.toLocal8Bit() + '\n';
        clearStatus();
        std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    };
}
