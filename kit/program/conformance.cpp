#include "kit/program/conformance.h"
#include "kit/program/conformance_program.h"

#include "kit/checks/all_checks.h"
#include "kit/program/beside_project.h"
#include "kit/program/options.h"
#include "kit/report/junit_report.h"
#include "kit/report/text_report.h"
#include "kit/subject/transcript_subject.h"
#include "kit/suite/check_run.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <fnmatch.h>

namespace kit
{

namespace
{

enum ExitCode { Passes = 0, Fails = 1, Usage = 2, CannotTry = 3 };

void print(const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stdout);
    std::fflush(stdout);
}

void printError(const QString &text)
{
    std::fputs((QLatin1String("driver-conformance: ") + text + QLatin1Char('\n')).toLocal8Bit().constData(),
               stderr);
}

int cannotTry(const QString &text)
{
    printError(text);
    return CannotTry;
}

int usageError(const QString &text)
{
    printError(text);
    printError(QLatin1String("--help says how it is called"));
    return Usage;
}

bool isWanted(const Check &check, const Options &options)
{
    bool isWanted = options.only.isEmpty();
    for (int i = 0; i < options.only.size(); ++i)
        isWanted = isWanted || fnmatch(options.only.at(i).toLocal8Bit().constData(), check.id, 0) == 0;
    return isWanted;
}

Checks wantedChecks(const Options &options)
{
    Checks wanted;
    for (const Check &check : allChecks())
        if (isWanted(check, options))
            wanted.push_back(check);
    return wanted;
}

// A difference of a check that there is none of; empty when all are known.
QString unknownDifference(const Subject &subject)
{
    for (const Difference &difference : subject.differences()) {
        bool isKnown = false;
        for (const Check &check : allChecks())
            isKnown = isKnown || difference.check == QLatin1String(check.id);
        if (!isKnown)
            return difference.check;
    }
    return QString();
}

bool readTranscript(const QString &path, Transcript &transcript, QString &error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QString::fromLatin1("cannot read %1: %2").arg(path, file.errorString());
        return false;
    }
    transcript = parsedTranscript(file.readAll(), error);
    if (!error.isEmpty())
        error = path + QLatin1String(", ") + error;
    return error.isEmpty();
}

bool writeJunit(const Options &options, const Results &results)
{
    if (options.junit.isEmpty())
        return true;
    QFile file(options.junit);
    const QByteArray report = junitReport(QFileInfo(options.plugin).completeBaseName(), results);
    return file.open(QIODevice::WriteOnly) && file.write(report) == report.size();
}

Results runChecks(const Checks &checks, const Settings &settings, bool isHere, Subject &subject)
{
    Results results;
    for (const Check &check : checks) {
        const Verdict verdict =
            isHere ? runHere(check, settings, subject) : runIsolated(check, settings, subject);
        results.push_back(Result{check, verdict});
        print(textReport(results.back()));
    }
    print(textSummary(results));
    return results;
}

int runSuite(const Options &options, const Transcript *transcript, Subject &subject)
{
    const Checks checks = wantedChecks(options);
    if (checks.empty())
        return usageError(QLatin1String("--only fits no check"));
    const QString unknown = unknownDifference(subject);
    if (!unknown.isEmpty())
        return cannotTry(
            QString::fromLatin1("a difference is declared for \"%1\", which is no check").arg(unknown));
    const QString missing = subject.prepare();
    if (!missing.isEmpty())
        return cannotTry(missing);
    Settings settings;
    settings.plugin = options.plugin;
    settings.commands = options.commands;
    settings.timeout = options.timeout;
    settings.transcript = transcript;
    const Results results = runChecks(checks, settings, options.isHere, subject);
    subject.cleanUp();
    if (!writeJunit(options, results))
        return cannotTry(QString::fromLatin1("cannot write %1").arg(options.junit));
    return countOf(Verdict::Failed, results) == 0 ? Passes : Fails;
}

int runWithTranscript(const Options &options, Subject *subject)
{
    Transcript transcript;
    QString error;
    if (!options.transcript.isEmpty() && !readTranscript(options.transcript, transcript, error))
        return cannotTry(error);
    if (subject != nullptr)
        return runSuite(options, options.transcript.isEmpty() ? nullptr : &transcript, *subject);
    if (options.transcript.isEmpty())
        return usageError(QLatin1String("no transcript: without one nobody knows what the driver can do"));
    TranscriptSubject played(transcript);
    return runSuite(options, &transcript, played);
}

QString checkList()
{
    QString text;
    for (const Check &check : allChecks())
        text +=
            QString::fromLatin1("%1  %2\n").arg(QLatin1String(check.id), -26).arg(QLatin1String(check.why));
    return text;
}

// The words without the option, which has been seen to.
QStringList withoutProject(QStringList words)
{
    const auto at = words.indexOf(QLatin1String("--project"));
    words.removeAt(at + 1);
    words.removeAt(at);
    return words;
}

int runBeside(const Options &options, const QStringList &words)
{
    QString error;
    const int code = runBesideProject(options.project, withoutProject(words), error);
    return code < 0 ? cannotTry(error) : code;
}

} // namespace

int conformanceMain(int argc, char **argv, Subject *subject)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    QString error;
    const Options options = parsedOptions(words, error);
    if (!error.isEmpty())
        return usageError(error);
    if (options.isHelp) {
        print(helpText(QFileInfo(QCoreApplication::applicationFilePath()).fileName(), subject == nullptr));
        return Passes;
    }
    if (options.isList) {
        print(checkList());
        return Passes;
    }
    return options.project.isEmpty() ? runWithTranscript(options, subject) : runBeside(options, words);
}

int conformanceMain(int argc, char **argv, Subject &subject)
{
    return conformanceMain(argc, argv, &subject);
}

} // namespace kit
