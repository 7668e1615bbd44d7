#include "desk/doctor/observing/finding.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <QSet>

// docs/doctor.md beside the table of findings.

namespace
{

QStringList documentLines()
{
    QFile file(sourceFile(QStringLiteral("docs/doctor.md")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))
                                          : QStringList();
}

QStringList rowsWithNames()
{
    return documentLines().filter(QRegularExpression(QStringLiteral("^\\| `")));
}

QString titleOf(Weight weight)
{
    switch (weight) {
    case Weight::Explains: return QStringLiteral("## What explains a fault");
    case Weight::Open: return QStringLiteral("## What is seen and not explained");
    case Weight::Remark: break;
    }
    return QStringLiteral("## What is only said");
}

} // namespace

TEST(FindingTexts, StandInTheDocumentAndNoOthers)
{
    QStringList expected;
    for (const FindingInfo &info : findingInfos())
        expected += QStringLiteral("| `%1` | %2 | %3 |")
                        .arg(QLatin1String(info.name), QLatin1String(info.told), QLatin1String(info.change));
    QStringList found = rowsWithNames();
    expected.sort();
    found.sort();
    EXPECT_EQ(found, expected);
}

TEST(FindingTexts, StandUnderTheirWeight)
{
    const QStringList lines = documentLines();
    for (const FindingInfo &info : findingInfos()) {
        QString title;
        for (const QString &line : lines) {
            if (line.startsWith(QLatin1String("## ")))
                title = line;
            const bool isItsRow = line.startsWith(QStringLiteral("| `%1` ").arg(QLatin1String(info.name)));
            EXPECT_TRUE(!isItsRow || title == titleOf(info.weight)) << info.name;
        }
    }
}

TEST(FindingTexts, EveryKindHasARowAndANameOfItsOwn)
{
    QSet<QString> names;
    for (int kind = 0; kind <= static_cast<int>(FindingKind::OutOfTime); ++kind)
        names += QLatin1String(infoOf(static_cast<FindingKind>(kind)).name);
    EXPECT_EQ(names.size(), static_cast<int>(FindingKind::OutOfTime) + 1);
    EXPECT_EQ(static_cast<int>(findingInfos().size()), names.size());
}
