#include "desk/output/doctor_form.h"

#include "desk/doctor/observing/evidence.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace
{

QString sentenceOf(const Finding &finding)
{
    QString text = finding.sentence + QLatin1Char('.');
    text[0] = text.at(0).toUpper();
    return text;
}

QString changeOf(const Finding &finding)
{
    const QString usual = QLatin1String(infoOf(finding.kind).change);
    return finding.change.isEmpty() ? usual : usual + QLatin1Char(' ') + finding.change;
}

// A number stays with its unit.
QStringList wordsOf(const QString &text)
{
    QStringList words;
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const bool isUnit = word.startsWith(QLatin1String("ms")) || word == QLatin1String("s") ||
                            word == QLatin1String("s.") || word == QLatin1String("s,") ||
                            word == QLatin1String("%");
        if (isUnit && !words.isEmpty())
            words.last() += QLatin1Char(' ') + word;
        else
            words += word;
    }
    return words;
}

// In lines that begin with \a lead, the first of them with \a firstLead.
QStringList wrapped(const QString &text, int width, const QString &firstLead, const QString &lead)
{
    QStringList lines;
    QString line = firstLead;
    bool isEmpty = true;
    for (const QString &word : wordsOf(text)) {
        if (!isEmpty && line.size() + 1 + word.size() > width) {
            lines += line;
            line = lead;
            isEmpty = true;
        }
        line += isEmpty ? word : QLatin1Char(' ') + word;
        isEmpty = false;
    }
    return lines << line;
}

QStringList textOf(const Finding &finding, int width)
{
    QStringList lines =
        wrapped(sentenceOf(finding), width, finding.name() + QStringLiteral(": "), QStringLiteral("  "));
    const QString indent(8, QLatin1Char(' '));
    lines += wrapped(QLatin1String(infoOf(finding.kind).told), width, QStringLiteral("  told  "), indent);
    QString lead = QStringLiteral("  seen  ");
    for (const QString &line : finding.evidence) {
        const bool isLong = lead.size() + line.size() > width;
        lines +=
            isLong ? wrapped(line, width, lead, indent + QStringLiteral("  ")) : QStringList(lead + line);
        lead = indent;
    }
    return lines + wrapped(changeOf(finding), width, QStringLiteral("  do    "), indent);
}

QString commandTitle(const Diagnosis &diagnosis)
{
    return diagnosis.worksNow ? QStringLiteral("This works:") : QStringLiteral("When that is put right:");
}

QStringList textOf(const Diagnosis &diagnosis, int width)
{
    QStringList lines = wrapped(diagnosis.verdict(), width, {}, {});
    for (const Finding &finding : diagnosis.faults)
        lines += QStringList(QString()) + textOf(finding, width);
    if (!diagnosis.remarks.empty())
        lines += {QString(), QStringLiteral("Also seen:")};
    for (const Finding &finding : diagnosis.remarks) {
        lines += wrapped(sentenceOf(finding), width, QStringLiteral("  "), QStringLiteral("    "));
        for (const QString &line : finding.evidence)
            lines += QStringLiteral("    ") + line;
    }
    lines += {QString(), commandTitle(diagnosis), QStringLiteral("  ") + diagnosis.commandText(), QString()};
    return lines << QStringLiteral("Examined %1 in %2.")
                        .arg(targetText(diagnosis.target), durationText(diagnosis.duration));
}

QString resultOf(const Diagnosis &diagnosis)
{
    if (diagnosis.wasCancelled)
        return QStringLiteral("interrupted");
    if (diagnosis.isHealthy())
        return QStringLiteral("healthy");
    return diagnosis.isExplained() ? QStringLiteral("explained") : QStringLiteral("not-explained");
}

QJsonArray arrayOf(const Findings &findings)
{
    QJsonArray array;
    for (const Finding &finding : findings) {
        QJsonObject object{{QStringLiteral("name"), finding.name()},
                           {QStringLiteral("weight"), nameOf(infoOf(finding.kind).weight)},
                           {QStringLiteral("sentence"), finding.sentence},
                           {QStringLiteral("evidence"), QJsonArray::fromStringList(finding.evidence)}};
        if (finding.isFault())
            object.insert(QStringLiteral("change"), changeOf(finding));
        array += object;
    }
    return array;
}

Fields fieldsOf(const Diagnosis &diagnosis)
{
    return {{"version", 1},
            {"target", targetText(diagnosis.target)},
            {"result", resultOf(diagnosis)},
            {"verdict", diagnosis.verdict()},
            {"findings", arrayOf(diagnosis.faults)},
            {"remarks", arrayOf(diagnosis.remarks)},
            {"command", diagnosis.commandText()},
            {"works_now", diagnosis.worksNow},
            {"duration_ms", millisecondsValue(diagnosis.duration)}};
}

Fields rowOf(const Finding &finding)
{
    return {{"finding", finding.name()},
            {"weight", nameOf(infoOf(finding.kind).weight)},
            {"sentence", finding.sentence},
            {"change", finding.isFault() ? changeOf(finding) : QString()}};
}

QStringList rowsOf(const Diagnosis &diagnosis)
{
    std::vector<Fields> rows;
    for (const Findings *findings : {&diagnosis.faults, &diagnosis.remarks}) {
        for (const Finding &finding : *findings)
            rows.push_back(rowOf(finding));
    }
    const Finding any{FindingKind::OutOfTime, {}, {}, {}};
    return linesForPrograms(rowOf(any), rows, OutputFormat::Csv);
}

QString element(const char *name, const QString &text)
{
    return QStringLiteral("<%1>%2</%1>\n").arg(QLatin1String(name), text.toHtmlEscaped());
}

QString sectionOf(const Finding &fault)
{
    QString text = element("h2", fault.name()) + element("p", sentenceOf(fault));
    if (!fault.evidence.isEmpty())
        text += element("pre", fault.evidence.join(QLatin1Char('\n')));
    return text + element("p", QStringLiteral("Told by: ") + QLatin1String(infoOf(fault.kind).told)) +
           QStringLiteral("<p class=\"change\">%1</p>\n").arg(changeOf(fault).toHtmlEscaped());
}

} // namespace

QStringList linesOf(const Diagnosis &diagnosis, OutputFormat format, int width)
{
    switch (format) {
    case OutputFormat::Csv: return rowsOf(diagnosis);
    case OutputFormat::Json: return {fieldLine(fieldsOf(diagnosis), format)};
    case OutputFormat::Text: break;
    }
    return textOf(diagnosis, width);
}

QString pageOf(const Diagnosis &diagnosis, const QString &examinedAt)
{
    const QString title = targetText(diagnosis.target);
    QString body = element("h1", title) +
                   QStringLiteral("<p class=\"%1\">%2</p>\n")
                       .arg(diagnosis.isHealthy() ? QStringLiteral("healthy") : QStringLiteral("fault"),
                            diagnosis.verdict().toHtmlEscaped());
    for (const Finding &finding : diagnosis.faults)
        body += sectionOf(finding);
    if (!diagnosis.remarks.empty())
        body += element("h2", QStringLiteral("Also seen"));
    for (const Finding &finding : diagnosis.remarks) {
        body += element("p", sentenceOf(finding));
        if (!finding.evidence.isEmpty())
            body += element("pre", finding.evidence.join(QLatin1Char('\n')));
    }
    body += element("h2", commandTitle(diagnosis)) + element("pre", diagnosis.commandText());
    body += element(
        "p", QStringLiteral("Examined at %1 in %2.").arg(examinedAt, durationText(diagnosis.duration)));
    return QStringLiteral(
               "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>%1</title>\n"
               "<style>\nbody { font-family: sans-serif; max-width: 50em; margin: 2em auto; padding: 0 1em "
               "}\n"
               "h2 { font-size: 1em; margin-bottom: 0 }\npre { background: #eee; padding: .5em; overflow-x: "
               "auto }\n"
               ".healthy, .fault { font-size: 1.2em; padding: .5em; border-left: .4em solid #2a2 }\n"
               ".fault { border-color: #c22 }\n.change { font-weight: bold "
               "}\n</style>\n</head>\n<body>\n%2</body>\n"
               "</html>\n")
        .arg(title.toHtmlEscaped(), body);
}
