#include "apps/driverhost/runs/scan_stations.h"

#include "apps/driverhost/console/interruptible_run.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/terminal/progress.h"
#include "desk/items/number_text.h"
#include "desk/output/scan_form.h"
#include "desk/output/summary.h"
#include "desk/plan/station_scan.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>
#include <numeric>

namespace
{

// For gateways that try a station for seconds before they take the next request.
const int SlowTimeout = 2000;

StationAnswer::Kind kindOf(const Failure &failure)
{
    switch (failure.kind) {
    case FailureKind::NoReply: return StationAnswer::Silent;
    case FailureKind::Echo: return StationAnswer::Echo;
    case FailureKind::Exception:
        return failure.isStationAbsent() ? StationAnswer::Absent : StationAnswer::Refuses;
    case FailureKind::CannotConnect:
    case FailureKind::NotRequested:
    case FailureKind::ProjectDatabase:
    case FailureKind::BitNotInProject: return StationAnswer::Hopeless;
    default: return StationAnswer::Disturbed;
    }
}

class StationScanRun
{
public:
    StationScanRun(Session &session, const StationScanOptions &options);

    int scan();

private:
    bool pass(const char *title, const std::vector<int> &stations);
    StationAnswer ask(int station);
    StationAnswer answerOfFailure() const;
    void waitAfterSilence() const;
    void secondPass();
    void reportEnd() const;
    void reportDisturbed() const;
    int print() const;
    QStringList foundLines() const;
    std::vector<StationRow> rows() const;

    Session &m_session;
    const StationScanOptions &m_options;
    Progress *m_progress = nullptr;
    InterruptibleRun m_run;
    StationScan m_scan;
    int m_code = Success;
};

StationScanRun::StationScanRun(Session &session, const StationScanOptions &options)
    : m_session(session),
      m_options(options),
      m_run(session, [this](const QString &wait) { m_progress->showNote(wait); }),
      m_scan([this](int station) { return ask(station); })
{
}

int StationScanRun::scan()
{
    std::vector<int> stations(static_cast<size_t>(m_options.last - m_options.first + 1));
    std::iota(stations.begin(), stations.end(), m_options.first);
    // A silent station is no reason to give up a connection that is in order, and gateways are slow to take
    // another one.
    m_session.channel().setKeepsOpen(true);
    if (pass("stations", stations) && m_options.passes > 1)
        secondPass();
    reportEnd();
    const int code = print();
    report(countsText(m_session.counts().total()));
    return code;
}

bool StationScanRun::pass(const char *title, const std::vector<int> &stations)
{
    Progress progress(QLatin1String(title), static_cast<qint64>(stations.size()));
    m_progress = &progress;
    return m_scan.run(stations, [&](int done, int /*total*/, int found) {
        progress.show(done, QStringLiteral("%1 found").arg(found));
        return !m_run.isInterrupted();
    });
}

void StationScanRun::secondPass()
{
    const std::vector<int> doubtful = m_scan.doubtful();
    if (doubtful.empty())
        return;
    const int timeout = std::max(SlowTimeout, m_session.settings().timeout);
    report(QStringLiteral("%1: asking %2 once more, with %3 ms for each reply (--passes 1 leaves that out)")
               .arg(m_scan.found().empty() ? QStringLiteral("nothing answered")
                                           : QStringLiteral("some replies were late or disturbed"),
                    counted(static_cast<qint64>(doubtful.size()), "station"), QString::number(timeout)));
    m_session.setTimeout(timeout);
    pass("once more", doubtful);
}

StationAnswer StationScanRun::ask(int station)
{
    Items items = m_options.probe;
    items.address.station = station;
    const bool isRead = m_session.read(items).has_value();
    if (isRead && !m_session.lastCommand().isEchoed())
        return {StationAnswer::Answers, -1, {}, {}};
    if (isRead)
        return {StationAnswer::Echo, -1, {}, {}};
    StationAnswer answer = answerOfFailure();
    if (m_run.isInterrupted())
        return answer;
    if (answer.kind == StationAnswer::Hopeless) {
        reportFailure(m_session, items.label(0));
        m_code = exitCodeOf(m_session.failure());
    }
    if (answer.kind == StationAnswer::Silent || answer.kind == StationAnswer::Disturbed)
        waitAfterSilence();
    return answer;
}

StationAnswer StationScanRun::answerOfFailure() const
{
    const Failure failure = m_session.failure();
    const std::vector<Exchange> &exchanges = m_session.exchanges();
    const bool isOther = failure.kind == FailureKind::OtherStation && !exchanges.empty();
    return {kindOf(failure), isOther ? byteAt(exchanges.back().reply, 0) : -1, failure.text,
            nameOf(failure.kind), failure.advice};
}

// Some slaves take the next request for the reply to the one before, when that was for another station.
void StationScanRun::waitAfterSilence() const
{
    const qint64 microseconds = m_session.channel().now() - m_session.lastCommand().sentAt();
    m_run.pause(m_options.afterSilence - microseconds / 1000);
}

void StationScanRun::reportEnd() const
{
    if (m_scan.scannedTo() < m_options.last)
        reportError(QStringLiteral("%1; %2").arg(
            m_run.isInterrupted() ? QStringLiteral("interrupted") : QStringLiteral("broken off"),
            m_scan.scannedTo() == 0
                ? QStringLiteral("no station was asked to the end")
                : QStringLiteral("stations %1 to %2 were asked")
                      .arg(QString::number(m_options.first), QString::number(m_scan.scannedTo()))));
    else if (m_run.isInterrupted())
        reportError(QStringLiteral("interrupted while asking once more; stations %1 to %2 were asked")
                        .arg(QString::number(m_options.first), QString::number(m_options.last)));
    report(QStringLiteral("%1 answered").arg(counted(static_cast<qint64>(m_scan.found().size()), "station")));
    reportDisturbed();
    if (const int echoes = m_scan.count(StationAnswer::Echo))
        report(QStringLiteral(
                   "the line echoes: what came back was the request itself, for %1; switch that off in "
                   "the gateway or the two-wire adapter")
                   .arg(counted(echoes, "station")));
    if (const int absent = m_scan.count(StationAnswer::Absent))
        report(QStringLiteral("for %1 the gateway answered that %2 not there (exception 0x0A or 0x0B)")
                   .arg(counted(absent, "station"),
                        absent == 1 ? QStringLiteral("it is") : QStringLiteral("they are")));
}

// What to look at stands once, under the last station that it is about.
void StationScanRun::reportDisturbed() const
{
    const std::vector<StationScan::Result> disturbed = m_scan.disturbed();
    for (size_t i = 0; i < disturbed.size(); ++i) {
        const StationAnswer &answer = disturbed[i].answer;
        report(QStringLiteral("station %1 disturbed: %2")
                   .arg(QString::number(disturbed[i].station), answer.text));
        if (i + 1 == disturbed.size() || disturbed[i + 1].answer.advice != answer.advice)
            report(QStringLiteral("  check: ") + answer.advice);
    }
}

int StationScanRun::print() const
{
    const int found = static_cast<int>(m_scan.found().size());
    QStringList lines =
        m_options.format == OutputFormat::Text ? foundLines() : linesOf(rows(), m_options.format);
    if (m_options.format == OutputFormat::Json)
        lines += summaryLine(m_session.counts(), {{QStringLiteral("found"), found},
                                                  {QStringLiteral("scanned_to"), m_scan.scannedTo()},
                                                  {QStringLiteral("interrupted"), m_run.isInterrupted()}});
    if (!lines.isEmpty() && !::print(lines))
        return OutputClosed;
    return m_run.endOf(m_code == Success && found == 0 ? NoReply : m_code);
}

QStringList StationScanRun::foundLines() const
{
    QStringList lines;
    for (const StationScan::Result &result : m_scan.found())
        lines += QStringLiteral("%1  %2").arg(QString::number(result.station),
                                              result.answer.kind == StationAnswer::Answers
                                                  ? QStringLiteral("answers")
                                                  : QStringLiteral("answers with ") + result.answer.text);
    return lines;
}

std::vector<StationRow> StationScanRun::rows() const
{
    std::vector<StationRow> rows;
    for (const StationScan::Result &result : m_scan.found())
        rows.push_back({result.station,
                        result.answer.kind == StationAnswer::Answers ? QStringLiteral("answers")
                                                                     : QStringLiteral("refuses"),
                        result.answer.failure, result.answer.text});
    for (const StationScan::Result &result : m_scan.disturbed())
        rows.push_back(
            {result.station, QStringLiteral("disturbed"), result.answer.failure, result.answer.text});
    return rows;
}

} // namespace

int scanStations(Session &session, const StationScanOptions &options)
{
    return StationScanRun(session, options).scan();
}
