#include "kit/suite/check_run.h"

#include "kit/link/command_at_work.h"
#include "kit/link/outcome.h"
#include "kit/process/skipped_time.h"

#include <QDataStream>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryFile>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kit
{

namespace
{

// What a process that runs a check leaves behind.
struct Remains {
    QByteArray report;
    int status;
    bool isTimedOut;
};

void writeAll(int file, const QByteArray &bytes)
{
    for (int done = 0; done < bytes.size();) {
        const ssize_t count = write(file, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (count < 0 && errno != EINTR)
            return;
        done += count < 0 ? 0 : static_cast<int>(count);
    }
}

// Does not return. Nothing that the driver registered for the end of the process is run.
void runInChild(const Check &check, const Settings &settings, Subject &subject, int report, int errors)
{
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    close(nowhere);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << runHere(check, settings, subject);
    writeAll(report, bytes);
    _exit(0);
}

// Until the other end is closed. False when the time is over before.
bool readUntilClosed(int file, int timeout, QByteArray &bytes)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        const qint64 left = qint64(timeout) * 1000 - clock.elapsed();
        pollfd ready = {file, POLLIN, 0};
        if (left <= 0 || (poll(&ready, 1, static_cast<int>(left)) < 0 && errno != EINTR))
            return false;
        if (ready.revents == 0)
            continue;
        char buffer[4096];
        const ssize_t count = read(file, buffer, sizeof buffer);
        if (count == 0)
            return true;
        if (count > 0)
            bytes.append(buffer, static_cast<int>(count));
    }
}

Remains remainsOf(pid_t child, int report, int timeout)
{
    Remains remains = {QByteArray(), 0, false};
    remains.isTimedOut = !readUntilClosed(report, timeout, remains.report);
    if (remains.isTimedOut)
        kill(child, SIGKILL);
    while (waitpid(child, &remains.status, 0) < 0 && errno == EINTR) {
    }
    return remains;
}

QString endOf(const Remains &remains, int timeout)
{
    if (remains.isTimedOut)
        return QString::fromLatin1("the check was not over after %1 seconds").arg(timeout);
    if (WIFSIGNALED(remains.status))
        return QString::fromLatin1("the process ended by signal %1 (%2)")
            .arg(WTERMSIG(remains.status))
            .arg(QString::fromLocal8Bit(strsignal(WTERMSIG(remains.status))));
    return QString::fromLatin1("the process ended with exit code %1").arg(WEXITSTATUS(remains.status));
}

// The first lines are what matters of what a sanitizer or an assertion says.
QString saidBy(QFile &errors)
{
    const int longest = 4000;
    errors.seek(0);
    const QString text = QString::fromLocal8Bit(errors.readAll()).trimmed();
    return text.size() <= longest ? text : text.left(longest) + QLatin1String("\n...");
}

Verdict crashed(const Remains &remains, int timeout, QFile &errors)
{
    Verdict verdict;
    verdict.state = Verdict::Failed;
    verdict.findingCount = 1;
    Finding finding = findingOf(QLatin1String("the check comes to its end"), endOf(remains, timeout));
    finding.command = CommandAtWork::text();
    finding.frames = saidBy(errors);
    verdict.findings.push_back(finding);
    return verdict;
}

Verdict judged(const Remains &remains, int timeout, QFile &errors)
{
    Verdict verdict;
    QDataStream stream(remains.report);
    stream >> verdict;
    const bool isWhole = !remains.report.isEmpty() && stream.status() == QDataStream::Ok;
    return isWhole && !remains.isTimedOut ? verdict : crashed(remains, timeout, errors);
}

Verdict failedToStart(const char *what)
{
    Verdict verdict;
    verdict.state = Verdict::Failed;
    verdict.findingCount = 1;
    verdict.findings.push_back(findingOf(
        QLatin1String("a process for the check"),
        QString::fromLatin1("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(strerror(errno)))));
    return verdict;
}

} // namespace

Verdict runIsolated(const Check &check, const Settings &settings, Subject &subject)
{
    QElapsedTimer clock;
    clock.start();
    QTemporaryFile errors;
    int report[2] = {-1, -1};
    if (!errors.open() || pipe(report) != 0)
        return failedToStart("no room for its report");
    fflush(nullptr);
    CommandAtWork::share();
    CommandAtWork::clear();
    const pid_t child = fork();
    if (child < 0)
        return failedToStart("fork");
    if (child == 0) {
        close(report[0]);
        runInChild(check, settings, subject, report[1], errors.handle());
    }
    close(report[1]);
    const Remains remains = remainsOf(child, report[0], settings.timeout);
    close(report[0]);
    Verdict verdict = judged(remains, settings.timeout, errors);
    verdict.seconds = static_cast<double>(clock.elapsed()) / 1000;
    return verdict;
}

Verdict runHere(const Check &check, const Settings &settings, Subject &subject)
{
    const SkippedTime nobodyWaits;
    Trial trial(QLatin1String(check.id), settings, subject);
    check.run(trial);
    return trial.verdict();
}

} // namespace kit
