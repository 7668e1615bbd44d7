#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "apps/driverhost/console/point_options.h"
#include "apps/driverhost/console/stop_signal.h"
#include "apps/driverhost/console/wanted_options.h"
#include "apps/driverhost/terminal/status_line.h"
#include "apps/driverhost/terminal/terminal.h"
#include "desk/output/doctor_form.h"
#include "desk/time_text.h"

#include <QFile>

namespace
{

const CommandLine::Texts Texts = {
    "doctor",
    "[rtutcp://HOST:PORT/STATION|@NAME] [ADDRESS[=EXPECTED]... | NAME[=EXPECTED]...]",
    "Says in a minute at most what is wrong between here and the slave: who is at the port, which station "
    "answers,\n"
    "how fast and how well, what else is on the line, what can be read, and whether values are the expected "
    "ones.\n"
    "Goes from the cable up and stops where an answer explains everything. Ends with what to change and with "
    "the\n"
    "command that works. Sends nothing that writes, unless --probe-writes allows it. Exit codes: 0 healthy, "
    "8 explained,\n"
    "9 not explained.",
    "  driverhost doctor rtutcp://192.168.0.10:502/1\n"
    "  driverhost doctor rtutcp://192.168.0.10:502/1 HR100=235 HR110:f32=21.5 --report boiler.html\n"
    "  driverhost doctor @boiler --points boiler.csv --format json",
};

const int LongestListening = 30000;

struct Run {
    DoctorOptions options;
    LinkSettings link;
    OutputFormat format = OutputFormat::Text;
    QString report;
};

// What the caller says of the link besides, for the command that is suggested.
QStringList moreOptions(const CommandLine &line)
{
    QStringList options;
    for (const char *name : {"device", "project", "plugin", "settle", "connect-timeout"}) {
        if (line.isSet(name))
            options += {QStringLiteral("--") + QLatin1String(name), line.text(name)};
    }
    return options;
}

Result<> writeReport(const Diagnosis &diagnosis, const QString &path)
{
    const bool isPage = path.endsWith(QLatin1String(".html")) || path.endsWith(QLatin1String(".htm"));
    const QString examinedAt = dateAndTimeText(QDateTime::currentDateTime());
    const int width = 100;
    const QString text =
        isPage ? pageOf(diagnosis, examinedAt)
               : (linesOf(diagnosis, OutputFormat::Text, width) << QStringLiteral("At %1.").arg(examinedAt))
                         .join(QLatin1Char('\n')) +
                     QLatin1Char('\n');
    const QByteArray bytes = text.toUtf8();
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush())
        return {};
    return Error{QStringLiteral("cannot write %1: %2").arg(path, file.errorString())};
}

int codeOf(const Diagnosis &diagnosis)
{
    if (diagnosis.wasCancelled)
        return Interrupted;
    if (diagnosis.isHealthy())
        return Success;
    return diagnosis.isExplained() ? Explained : NotExplained;
}

int examine(const Run &run)
{
    const StopSignal signal;
    const DeviceSetting device = deviceSettingOf(run.link.channel);
    TcpLine line(device);
    line.setCancelled(StopSignal::raised);
    Observations seen;
    Examiner examiner(line, run.options, seen);
    examiner.setTrace(run.link.trace);
    examiner.setAnnouncement(report);
    examiner.setProgress([&](const QString &doing) {
        const int second = 1000000;
        showStatus(QStringLiteral("%1 s  %2").arg(examiner.now() / second, 2).arg(doing));
    });
    if (run.options.probesWrites)
        report(
            QStringLiteral("--probe-writes: what holds a value is written back as it was read just before"));
    const Diagnosis diagnosis = diagnose(examiner);
    clearStatus();
    if (!print(linesOf(diagnosis, run.format, screenWidth())))
        return OutputClosed;
    const Result<> written = run.report.isEmpty() ? Result<>() : writeReport(diagnosis, run.report);
    if (written)
        return codeOf(diagnosis);
    reportError(written.errorText());
    return OtherFailure;
}

} // namespace

Job prepareDoctor(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions(pointOptions());
    line.addOptions({
        {QStringLiteral("probe-writes"),
         QStringLiteral("Write back what was read just before, to see which functions write.")},
        {QStringLiteral("listen"), QStringLiteral("Seconds to listen to the line at rest (default 10)."),
         QStringLiteral("SECONDS"), QStringLiteral("10")},
        {QStringLiteral("report"),
         QStringLiteral("Write the result to a file too: a page when it ends in .html, otherwise text."),
         QStringLiteral("FILE")},
        formatOption(),
    });
    line.addOptions(linkOptions());
    if (const std::optional<int> end = line.parse(arguments))
        return *end;

    Run run;
    QStringList words = line.words();
    run.link = linkSettings(line, words);
    run.format = formatOf(line);
    run.report = line.text("report");
    run.options.target = run.link.target();
    run.options.exchange = run.link.channel;
    run.options.probesWrites = line.isSet("probe-writes");
    run.options.listenTime = qint64(1000) * line.milliseconds("listen", 0, LongestListening);
    run.options.moreOptions = moreOptions(line);
    run.options.wanted = wantedValues(line, words, run.options.target.station);
    if (run.options.target.station == modbus::BroadcastStation)
        line.addError(QStringLiteral("nobody replies to station 0; expected a station from 1 to 247"));
    return line.isValid() ? examine(run) : line.reportUsageError();
}
