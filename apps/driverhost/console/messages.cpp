#include "apps/driverhost/console/messages.h"

#include "desk/items/portions.h"

#include <cerrno>
#include <cstdio>

void reportError(const QString &text)
{
    report(QStringLiteral("driverhost: ") + text);
}

void report(const QString &text)
{
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

void reportFailure(Session &session, const QString &label)
{
    const Failure failure = session.failure();
    reportError(QStringLiteral("%1: %2").arg(label, failure.text));
    report(QStringLiteral("  check: ") + failure.advice);
}

void reportBroadcast(int station)
{
    if (station == modbus::BroadcastStation)
        report(QStringLiteral("station 0 is a broadcast: every slave takes a write, and none replies"));
}

void reportPortions(const std::vector<Items> &all)
{
    for (const Items &items : all) {
        const size_t portions = portionsOf(items).size();
        if (portions > 1)
            report(
                QStringLiteral("%1: %2 items are more than one request carries; reading them in %3 portions")
                    .arg(items.label(0), QString::number(items.count), QString::number(portions)));
    }
}

bool print(const QStringList &lines)
{
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
        std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    };
}
