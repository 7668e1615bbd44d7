#include "kit/report/text_report.h"

#include <algorithm>

namespace kit
{

int countOf(Verdict::State state, const Results &results)
{
    return static_cast<int>(std::count_if(results.begin(), results.end(), [state](const Result &result) {
        return result.verdict.state == state;
    }));
}

namespace
{

QString word(Verdict::State state)
{
    switch (state) {
    case Verdict::Passed: return QLatin1String("ok     ");
    case Verdict::Differs: return QLatin1String("differs");
    case Verdict::Skipped: return QLatin1String("skipped");
    case Verdict::Failed: break;
    }
    return QLatin1String("FAILED ");
}

// "         command   read 2 words at D1", lines that follow below the text.
QString entry(const char *name, const QString &text)
{
    if (text.isEmpty())
        return QString();
    const QString label = QString::fromLatin1("         %1").arg(QLatin1String(name), -10);
    QString indented = text;
    indented.replace(QLatin1Char('\n'), QLatin1Char('\n') + QString(label.size(), QLatin1Char(' ')));
    return label + indented + QLatin1Char('\n');
}

QString findingText(const Finding &finding)
{
    return entry("command", finding.command) + entry("frames", finding.frames) +
           entry("expected", finding.expected) + entry("happened", finding.happened) + QLatin1Char('\n');
}

QString findingsText(const Verdict &verdict)
{
    QString text;
    for (const Finding &finding : verdict.findings)
        text += findingText(finding);
    const int more = verdict.findingCount - static_cast<int>(verdict.findings.size());
    if (more > 0)
        text += QString::fromLatin1("         ... and %1 more\n\n").arg(more);
    return text;
}

QString line(const QString &text)
{
    return QLatin1String("         ") + text + QLatin1Char('\n');
}

} // namespace

QString textReport(const Result &result)
{
    const Verdict &verdict = result.verdict;
    QString text =
        word(verdict.state) + QLatin1String("  ") + QLatin1String(result.check.id) + QLatin1Char('\n');
    if (verdict.state == Verdict::Failed)
        text += line(QLatin1String(result.check.why)) + QLatin1Char('\n') + findingsText(verdict);
    if (verdict.state == Verdict::Skipped)
        text += line(verdict.skipped);
    for (int i = 0; i < verdict.reasons.size(); ++i)
        text += line(verdict.reasons.at(i));
    return text;
}

QString textSummary(const Results &results)
{
    return QString::fromLatin1("%1 checks: %2 passed, %3 differ as declared, %4 skipped, %5 failed\n")
        .arg(results.size())
        .arg(countOf(Verdict::Passed, results))
        .arg(countOf(Verdict::Differs, results))
        .arg(countOf(Verdict::Skipped, results))
        .arg(countOf(Verdict::Failed, results));
}

} // namespace kit
