#include "apps/driverdesk/models/copied_cells.h"
#include "apps/driverdesk/models/points_filter.h"
#include "tests/driverdesk/support/point_rows.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

const qint64 Now = 100000;
const char Table[] = "name,address,type,unit,comment\n"
                     "pump 10,HR10,u16,bar,feed\n"
                     "pump 2,HR2,u16,bar,\n"
                     "boiler,IR3,i16,°C,flow of the boiler\n";

PointSample readSample(double number, const QString &text, qint64 readAt, int round)
{
    PointSample sample;
    sample.text = text;
    sample.raw = text;
    sample.number = number;
    sample.readAt = readAt;
    sample.round = round;
    sample.attempts = 1;
    return sample;
}

std::shared_ptr<Snapshot> snapshotOf(const std::vector<PointSample> &samples, int rounds = 5)
{
    auto snapshot = std::make_shared<Snapshot>();
    snapshot->rounds = rounds;
    snapshot->interval = 1000;
    snapshot->samples = samples;
    return snapshot;
}

class PointsModelTest : public testing::Test
{
protected:
    PointsModelTest() { model.setRows(rowsOfTable(Table)); }

    QString text(int row, PointColumn column) const
    {
        return model.index(row, static_cast<int>(column)).data().toString();
    }
    QStringList names() const
    {
        QStringList names;
        for (int row = 0; row < filter.rowCount(); ++row)
            names += filter.index(row, 0).data().toString();
        return names;
    }

    PointsModel model;
    PointsFilter filter{model};
};

} // namespace

TEST_F(PointsModelTest, SaysWhatAPointIsBeforeItIsRead)
{
    EXPECT_EQ(text(2, PointColumn::Name), QStringLiteral("boiler"));
    EXPECT_EQ(text(2, PointColumn::Address), QStringLiteral("IR3"));
    EXPECT_EQ(text(2, PointColumn::Offset), QStringLiteral("2"));
    EXPECT_EQ(text(2, PointColumn::Station), QStringLiteral("1"));
    EXPECT_EQ(text(2, PointColumn::Type), QStringLiteral("i16"));
    EXPECT_EQ(text(2, PointColumn::State), QStringLiteral("waiting"));
    EXPECT_EQ(text(2, PointColumn::Age), QString());
}

TEST_F(PointsModelTest, ShowsAValueOfTheLastRoundAsLive)
{
    PointSample sample = readSample(21.5, QStringLiteral("21.5 °C"), Now - 200, 4);
    sample.latency = 1234;
    sample.errors = 2;
    model.setSnapshot(snapshotOf({sample}), Now);
    EXPECT_EQ(text(0, PointColumn::Value), QStringLiteral("21.5 °C"));
    EXPECT_EQ(text(0, PointColumn::State), QStringLiteral("live"));
    EXPECT_EQ(text(0, PointColumn::Age), QStringLiteral("200 ms"));
    EXPECT_EQ(text(0, PointColumn::Latency), QStringLiteral("1.23 ms"));
    EXPECT_EQ(text(0, PointColumn::Attempts), QStringLiteral("1"));
    EXPECT_EQ(text(0, PointColumn::Errors), QStringLiteral("2"));
}

TEST_F(PointsModelTest, NeverShowsAnotherValueAsLive)
{
    struct Case {
        const char *what;
        qint64 readAt;
        int round;
        QString failure;
        PointState state;
    };
    const Case cases[] = {
        {"of the last round", Now - 10, 4, {}, PointState::Live},
        {"of the round that is under way", Now - 10, 5, {}, PointState::Live},
        {"of the round before", Now - 10, 3, {}, PointState::Late},
        {"of the last round, which was long ago", Now - 3001, 4, {}, PointState::Late},
        {"failed since", Now - 10, 4, QStringLiteral("PLC no response"), PointState::Failed},
        {"never read", -1, -1, {}, PointState::Waiting},
        {"never read, and failed", -1, -1, QStringLiteral("PLC no response"), PointState::Failed},
    };
    for (const Case &known : cases) {
        PointSample sample = readSample(1, QStringLiteral("1"), known.readAt, known.round);
        sample.failure = known.failure;
        model.setSnapshot(snapshotOf({sample}), Now);
        EXPECT_EQ(model.viewOf(0).state(), known.state) << known.what;
        EXPECT_EQ(text(0, PointColumn::Value) == QStringLiteral("1"), known.state == PointState::Live)
            << known.what;
        EXPECT_EQ(model.count(known.state), known.state == PointState::Waiting ? 3 : 1) << known.what;
    }
}

TEST_F(PointsModelTest, SaysWhyAndHowOldAValueIs)
{
    PointSample sample = readSample(1, QStringLiteral("1 bar"), Now - 65000, 1);
    sample.failure = QStringLiteral("PLC no response (read 1 word(s) from 1-HR10)");
    model.setSnapshot(snapshotOf({sample}), Now);
    EXPECT_EQ(text(0, PointColumn::Value), QStringLiteral("was 1 bar"));
    EXPECT_EQ(text(0, PointColumn::State),
              QStringLiteral("failed: PLC no response (read 1 word(s) from 1-HR10)"));
    EXPECT_EQ(text(0, PointColumn::Age), QStringLiteral("1 min 5 s"));
}

TEST_F(PointsModelTest, BecomesLateWhenNothingComes)
{
    model.setSnapshot(snapshotOf({readSample(1, QStringLiteral("1"), Now, 4)}), Now);
    EXPECT_EQ(model.viewOf(0).state(), PointState::Live);
    model.setNow(Now + 3001);
    EXPECT_EQ(model.viewOf(0).state(), PointState::Late);
}

TEST_F(PointsModelTest, TellsAboutALimitInWords)
{
    PointSample sample = readSample(99, QStringLiteral("99"), Now, 4);
    sample.limit = QStringLiteral("above 80");
    model.setSnapshot(snapshotOf({sample}), Now);
    EXPECT_EQ(text(0, PointColumn::State), QStringLiteral("live, above 80"));
}

TEST_F(PointsModelTest, FiltersByWordsAndByState)
{
    struct Case {
        const char *text;
        QStringList names;
    };
    const Case cases[] = {
        {"", {"pump 10", "pump 2", "boiler"}},
        {"PUMP", {"pump 10", "pump 2"}},
        {"pump feed", {"pump 10"}},
        {"ir3", {"boiler"}},
        {"°c", {"boiler"}},
        {"nothing", {}},
    };
    for (const Case &known : cases) {
        filter.setText(QString::fromUtf8(known.text));
        EXPECT_EQ(names(), known.names) << known.text;
    }
    filter.setText({});
    PointSample failed = readSample(1, QStringLiteral("1"), Now, 4);
    failed.failure = QStringLiteral("CRC error");
    model.setSnapshot(snapshotOf({readSample(1, QStringLiteral("1"), Now, 4), failed, PointSample()}), Now);
    filter.setState(PointState::Failed);
    EXPECT_EQ(names(), QStringList{QStringLiteral("pump 2")});
    failed.failure.clear();
    model.setSnapshot(snapshotOf({failed, failed, failed}), Now);
    filter.followValues();
    EXPECT_EQ(names(), QStringList());
}

TEST_F(PointsModelTest, SortsNumbersAsNumbersAlsoWithinNames)
{
    filter.sort(static_cast<int>(PointColumn::Name));
    EXPECT_EQ(names(), (QStringList{"boiler", "pump 2", "pump 10"}));
    filter.sort(static_cast<int>(PointColumn::Offset), Qt::DescendingOrder);
    EXPECT_EQ(names(), (QStringList{"pump 10", "boiler", "pump 2"}));
    model.setSnapshot(
        snapshotOf({readSample(9, "9", Now, 4), readSample(10, "10", Now, 4), readSample(-1, "-1", Now, 4)}),
        Now);
    filter.sort(static_cast<int>(PointColumn::Value));
    EXPECT_EQ(names(), (QStringList{"boiler", "pump 10", "pump 2"}));
    model.setSnapshot(
        snapshotOf({readSample(9, "9", Now, 4), readSample(1, "1", Now, 4), readSample(20, "20", Now, 4)}),
        Now);
    filter.followValues();
    EXPECT_EQ(names(), (QStringList{"pump 2", "pump 10", "boiler"}));
}

TEST_F(PointsModelTest, CopiesCellsAsATable)
{
    QModelIndexList cells;
    for (const int row : {1, 0}) {
        for (const int column : {1, 0})
            cells += model.index(row, column);
    }
    EXPECT_EQ(copiedText(cells), QStringLiteral("pump 10\tHR10\npump 2\tHR2"));
}

TEST(DurationText, IsShort)
{
    const std::pair<qint64, const char *> cases[] = {{0, "0 ms"},
                                                     {999, "999 ms"},
                                                     {1000, "1.0 s"},
                                                     {9990, "10.0 s"},
                                                     {59000, "59 s"},
                                                     {61000, "1 min 1 s"},
                                                     {3600000 * 26 + 60000, "26 h 1 min"}};
    for (const auto &[milliseconds, text] : cases)
        EXPECT_EQ(durationText(milliseconds), QLatin1String(text));
}
