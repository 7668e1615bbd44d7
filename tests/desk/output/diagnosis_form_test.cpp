#include "desk/output/doctor_form.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace
{

const char At[] = "2026-11-21T10:15:00";

Diagnosis healthy()
{
    Diagnosis diagnosis;
    diagnosis.command = QStringList{QStringLiteral("driverhost"), QStringLiteral("read")};
    diagnosis.worksNow = true;
    diagnosis.duration = 2000000;
    return diagnosis;
}

Diagnosis withFault(const QString &sentence, const QStringList &evidence = {})
{
    Diagnosis diagnosis = healthy();
    diagnosis.worksNow = false;
    diagnosis.faults = {{FindingKind::Heartbeat, sentence, evidence, {}}};
    return diagnosis;
}

Finding timing(const QStringList &evidence)
{
    return {FindingKind::Timing, QStringLiteral("40 replies took 1.0 ms"), evidence, {}};
}

QString resultOf(const Diagnosis &diagnosis)
{
    const QStringList lines = linesOf(diagnosis, OutputFormat::Json, 80);
    return QJsonDocument::fromJson(lines.value(0).toUtf8())
        .object()
        .value(QStringLiteral("result"))
        .toString();
}

} // namespace

TEST(DiagnosisForm, OfAHealthyLineIsShort)
{
    EXPECT_EQ(linesOf(healthy(), OutputFormat::Text, 80),
              (QStringList{"Healthy: station 1 answers as it should.", "", "This works:", "  driverhost read",
                           "", "Examined rtutcp://127.0.0.1:502/1 in 2.0 s."}));
    const QString page = pageOf(healthy(), QLatin1String(At));
    EXPECT_TRUE(
        page.contains(QLatin1String("<p class=\"healthy\">Healthy: station 1 answers as it should.</p>")));
    EXPECT_FALSE(page.contains(QLatin1String("Also seen")));
}

TEST(DiagnosisForm, SaysWhatElseWasSeen)
{
    Diagnosis diagnosis = withFault(QStringLiteral("a heartbeat comes"));
    diagnosis.remarks = {timing({QStringLiteral("0.5 s > 01")}), timing({})};
    const QStringList lines = linesOf(diagnosis, OutputFormat::Text, 80);
    const int at = int(lines.indexOf(QStringLiteral("Also seen:")));
    EXPECT_EQ(lines.mid(at),
              (QStringList{"Also seen:", "  40 replies took 1.0 ms.", "    0.5 s > 01",
                           "  40 replies took 1.0 ms.", "", "When that is put right:", "  driverhost read",
                           "", "Examined rtutcp://127.0.0.1:502/1 in 2.0 s."}));
    const QString page = pageOf(diagnosis, QLatin1String(At));
    EXPECT_EQ(page.count(QLatin1String("<pre>0.5 s &gt; 01</pre>")), 1);
    EXPECT_TRUE(page.contains(QLatin1String("<p class=\"fault\">")));
    EXPECT_TRUE(page.contains(QLatin1String("<h2>When that is put right:</h2>")));
}

TEST(DiagnosisForm, KeepsNumbersWithTheirUnits)
{
    const Diagnosis diagnosis = withFault(QStringLiteral("it takes 1 s, or 2 s. of 30 ms, 4 % and more"),
                                          {QStringLiteral("% 1 s of what came was read in time")});
    for (int width = 12; width < 60; ++width) {
        const QStringList lines = linesOf(diagnosis, OutputFormat::Text, width);
        for (const char *pair : {"1 s,", "2 s.", "30 ms,", "4 %"})
            EXPECT_EQ(lines.filter(QLatin1String(pair)).size(), 2) << pair << " in " << width;
        EXPECT_EQ(lines.filter(QStringLiteral("seen  %")).size(), 1) << width;
    }
}

TEST(DiagnosisForm, HasAWordForEachResult)
{
    EXPECT_EQ(resultOf(healthy()), QStringLiteral("healthy"));
    EXPECT_EQ(resultOf(withFault(QStringLiteral("a heartbeat comes"))), QStringLiteral("explained"));
    Diagnosis diagnosis = withFault(QStringLiteral("nobody answers"));
    diagnosis.faults.front().kind = FindingKind::Silent;
    EXPECT_EQ(resultOf(diagnosis), QStringLiteral("not-explained"));
    diagnosis.wasCancelled = true;
    EXPECT_EQ(resultOf(diagnosis), QStringLiteral("interrupted"));
}
