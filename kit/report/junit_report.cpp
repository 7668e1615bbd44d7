#include "kit/report/junit_report.h"

#include "kit/report/text_report.h"

#include <QStringList>
#include <QXmlStreamWriter>

namespace kit
{

namespace
{

// XML has no place for other characters, however written.
QString printable(const QString &text)
{
    QString clean = text;
    for (int i = 0; i < clean.size(); ++i)
        if (!clean.at(i).isPrint() && clean.at(i) != QLatin1Char('\n'))
            clean[i] = QLatin1Char('?');
    return clean;
}

QString seconds(double number)
{
    return QString::number(number, 'f', 3);
}

double totalSeconds(const Results &results)
{
    double total = 0;
    for (const Result &result : results)
        total += result.verdict.seconds;
    return total;
}

void writeCase(QXmlStreamWriter &xml, const QString &suite, const Result &result)
{
    const Verdict &verdict = result.verdict;
    xml.writeStartElement(QLatin1String("testcase"));
    xml.writeAttribute(QLatin1String("classname"), suite);
    xml.writeAttribute(QLatin1String("name"), QLatin1String(result.check.id));
    xml.writeAttribute(QLatin1String("time"), seconds(verdict.seconds));
    if (verdict.state == Verdict::Failed) {
        xml.writeStartElement(QLatin1String("failure"));
        xml.writeAttribute(QLatin1String("message"), QLatin1String(result.check.why));
        xml.writeCharacters(printable(textReport(result)));
        xml.writeEndElement();
    }
    if (verdict.state == Verdict::Skipped) {
        xml.writeStartElement(QLatin1String("skipped"));
        xml.writeAttribute(QLatin1String("message"), printable(verdict.skipped));
        xml.writeEndElement();
    }
    if (verdict.state == Verdict::Differs)
        xml.writeTextElement(
            QLatin1String("system-out"),
            printable(QLatin1String("differs as declared: ") + verdict.reasons.join(QLatin1String("; "))));
    xml.writeEndElement();
}

} // namespace

QByteArray junitReport(const QString &suite, const Results &results)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QLatin1String("testsuites"));
    xml.writeStartElement(QLatin1String("testsuite"));
    xml.writeAttribute(QLatin1String("name"), suite);
    xml.writeAttribute(QLatin1String("tests"), QString::number(results.size()));
    xml.writeAttribute(QLatin1String("failures"), QString::number(countOf(Verdict::Failed, results)));
    xml.writeAttribute(QLatin1String("errors"), QLatin1String("0"));
    xml.writeAttribute(QLatin1String("skipped"), QString::number(countOf(Verdict::Skipped, results)));
    xml.writeAttribute(QLatin1String("time"), seconds(totalSeconds(results)));
    for (const Result &result : results)
        writeCase(xml, suite, result);
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    return bytes;
}

} // namespace kit
