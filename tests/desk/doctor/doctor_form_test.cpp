#include "desk/output/doctor_form.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

Diagnosis someDiagnosis()
{
    Diagnosis diagnosis;
    diagnosis.target.host = QStringLiteral("<gateway>");
    diagnosis.faults = {{FindingKind::WrongStation,
                         QStringLiteral("station 1 is silent & station 5 answers"),
                         {QStringLiteral("0.500 s > 01 03 00 00 00 01 84 0A")},
                         QStringLiteral("Here: --station 5.")},
                        {FindingKind::Heartbeat, QStringLiteral("a heartbeat comes every 2.0 s"), {}, {}}};
    diagnosis.remarks = {{FindingKind::Timing, QStringLiteral("40 replies took 1.0 ms to 2.0 ms"), {}, {}}};
    diagnosis.command =
        QStringList{QStringLiteral("driverhost"), QStringLiteral("read"), QStringLiteral("HR1")};
    diagnosis.worksNow = true;
    diagnosis.duration = 12300000;
    return diagnosis;
}

} // namespace

TEST(DoctorForm, TextKeepsWithinTheWidthAndNumbersWithTheirUnits)
{
    for (const int width : {60, 80, 130}) {
        const QStringList lines = linesOf(someDiagnosis(), OutputFormat::Text, width);
        for (const QString &line : lines) {
            EXPECT_LE(line.size(), width) << line.toStdString();
            EXPECT_FALSE(line.trimmed().startsWith(QLatin1String("ms"))) << line.toStdString();
        }
        EXPECT_TRUE(lines.contains(QStringLiteral("  driverhost read HR1")));
        EXPECT_EQ(lines.last(), QStringLiteral("Examined rtutcp://<gateway>:502/1 in 12.3 s."));
    }
}

TEST(DoctorForm, VerdictIsOneSentence)
{
    Diagnosis diagnosis = someDiagnosis();
    EXPECT_EQ(
        diagnosis.verdict(),
        QStringLiteral("Station 1 is silent & station 5 answers; besides, a heartbeat comes every 2.0 s."));
    EXPECT_TRUE(diagnosis.isExplained());
    diagnosis.faults.push_back({FindingKind::Silent, QStringLiteral("nobody answers"), {}, {}});
    EXPECT_FALSE(diagnosis.isExplained());
    diagnosis.faults.clear();
    EXPECT_EQ(diagnosis.verdict(), QStringLiteral("Healthy: station 1 answers as it should."));
    diagnosis.wasCancelled = true;
    EXPECT_EQ(diagnosis.verdict(), QStringLiteral("Interrupted before anything was found."));
    EXPECT_FALSE(diagnosis.isHealthy());
}

TEST(DoctorForm, JsonIsOneObject)
{
    const QStringList lines = linesOf(someDiagnosis(), OutputFormat::Json, 80);
    ASSERT_EQ(lines.size(), 1);
    const QJsonObject object = QJsonDocument::fromJson(lines.front().toUtf8()).object();
    EXPECT_EQ(object.value(QStringLiteral("result")).toString(), QStringLiteral("explained"));
    const QJsonObject first = object.value(QStringLiteral("findings")).toArray().first().toObject();
    EXPECT_EQ(first.value(QStringLiteral("name")).toString(), QStringLiteral("wrong-station"));
    EXPECT_TRUE(
        first.value(QStringLiteral("change")).toString().endsWith(QStringLiteral("Here: --station 5.")));
    EXPECT_TRUE(object.value(QStringLiteral("works_now")).toBool());
    EXPECT_EQ(object.value(QStringLiteral("duration_ms")).toDouble(), 12300);
}

TEST(DoctorForm, PageEscapesWhatIsNotItsOwn)
{
    const QString page = pageOf(someDiagnosis(), QStringLiteral("today"));
    EXPECT_TRUE(page.contains(QStringLiteral("rtutcp://&lt;gateway&gt;:502/1")));
    EXPECT_TRUE(page.contains(QStringLiteral("silent &amp; station 5")));
    EXPECT_FALSE(page.contains(QStringLiteral("<gateway>")));
    EXPECT_TRUE(page.contains(QStringLiteral("Examined at today in 12.3 s.")));
}
