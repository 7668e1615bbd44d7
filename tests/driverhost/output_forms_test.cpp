#include "desk/output/output_form.h"
#include "desk/readings/readings.h"
#include "tests/driverhost/support/slave_test.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

// The forms of the output that programs read. Names and meanings of fields are relied on; OutputVersion
// counts changes.

namespace
{

SlaveOptions withHole()
{
    SlaveOptions options;
    options.memory.addHole({0, Area::HoldingRegisters, 9, 9});
    return options;
}

QStringList linesOf(const QString &text)
{
    return text.split('\n', Qt::SkipEmptyParts);
}

QJsonObject objectIn(const QString &line)
{
    return QJsonDocument::fromJson(line.toUtf8()).object();
}

} // namespace

class OutputFormsTest : public SlaveTest
{
protected:
    OutputFormsTest() : SlaveTest(withHole()) {}
};

TEST_F(OutputFormsTest, WhatCouldNotBeReadHasARow)
{
    const HostRun run = host("read TARGET HR9 --count 2 HR1 --retries 0 --format csv");
    EXPECT_EQ(run.out, "station,address,offset,kind,value,failure,error\n"
                       "1,HR9,8,word,,exception,exception code:0x02 (read 2 word(s) from 1-HR9)\n"
                       "1,HR10,9,word,,exception,exception code:0x02 (read 2 word(s) from 1-HR9)\n"
                       "1,HR1,0,word,0,,\n1,HR2,1,word,0,,\n");
    const QJsonObject failed =
        objectIn(linesOf(host("read TARGET HR10 --retries 0 --format json").out).value(0));
    EXPECT_EQ(failed, (QJsonObject{{"station", 1},
                                   {"address", "HR10"},
                                   {"offset", 9},
                                   {"kind", "word"},
                                   {"value", QJsonValue()},
                                   {"text", QJsonValue()},
                                   {"failure", "exception"},
                                   {"error", "exception code:0x02 (read 1 word(s) from 1-HR10)"}}));
}

TEST_F(OutputFormsTest, WhatWasNotTriedForWantOfAConnectionHasARow)
{
    slave.stop();
    const QStringList lines = linesOf(host("read TARGET HR1 5-HR2 --format csv").out);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines.at(1).startsWith("1,HR1,0,word,,no-connection,cannot connect to "))
        << lines.at(1).toStdString();
    EXPECT_TRUE(lines.at(2).startsWith("5,5-HR2,1,word,,no-connection,cannot connect to "))
        << lines.at(2).toStdString();
}

TEST_F(OutputFormsTest, AWatchTellsAnEarlierValueFromAValue)
{
    setHoldingRegister(0, 4711);
    SlaveOptions options;
    ASSERT_TRUE(options.faults.add("exception:4=1/2"));
    SlaveThread other(options);
    ASSERT_TRUE(other.start());
    other.setValue(1, Area::HoldingRegisters, 0, 4711);
    const QString target = QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(other.port());
    const HostRun run = runHost({"watch", target, "HR1", "--as", "hex", "--retries", "0", "--interval", "0",
                                 "--count", "2", "--format", "json"});
    const QStringList lines = linesOf(run.out);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_FALSE(objectIn(lines.at(0)).contains("stale"));
    const QJsonObject failed = objectIn(lines.at(1));
    EXPECT_TRUE(failed.value("value").isNull());
    EXPECT_TRUE(failed.value("latency_ms").isNull());
    EXPECT_EQ(failed.value("failure"), "exception");
    EXPECT_EQ(failed.value("last_value"), 4711);
    EXPECT_EQ(failed.value("last_time"), objectIn(lines.at(0)).value("time"));
    EXPECT_EQ(failed.value("stale"), true);

    const QStringList csv = linesOf(runHost({"watch", target, "HR1", "--as", "hex", "--retries", "0",
                                             "--interval", "0", "--count", "2", "--format", "csv"})
                                        .out);
    const QRegularExpression stale(
        "^[^,]+,1,HR1,0,word,,,[0-9.]+,1,exception,exception code:0x04 [^,]+,0x1267,[^,]+,true$");
    EXPECT_TRUE(stale.match(csv.value(2)).hasMatch()) << csv.value(2).toStdString();
    EXPECT_EQ(csv.value(0).count(','), csv.value(1).count(','));
    EXPECT_EQ(csv.value(0).count(','), csv.value(2).count(','));
}

TEST_F(OutputFormsTest, AWriteSaysWhatBecameOfEachItem)
{
    EXPECT_EQ(host("write TARGET HR1 7 -1 --as signed --format csv").out,
              "station,address,offset,kind,value,wanted,result,failure,error\n"
              "1,HR1,0,word,7,7,written,,\n1,HR2,1,word,-1,-1,written,,\n");
    const QStringList lines = linesOf(host("write TARGET HR1 7 --verify --format json").out);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(objectIn(lines.at(0)), (QJsonObject{{"station", 1},
                                                  {"address", "HR1"},
                                                  {"offset", 0},
                                                  {"kind", "word"},
                                                  {"value", 7},
                                                  {"text", "7"},
                                                  {"wanted", 7},
                                                  {"result", "verified"}}));
    EXPECT_EQ(linesOf(host("write TARGET HR9 1 2 --retries 0 --format csv").out).value(1),
              "1,HR9,8,word,,1,refused,exception,exception code:0x02 (write 2 word to 1-HR9)");
    EXPECT_EQ(linesOf(host("write TARGET 0-HR1 1 --timeout 60 --format csv").out).value(1),
              "0,0-HR1,0,word,,1,sent,,");
}

TEST_F(OutputFormsTest, ADryRunListsItsFrames)
{
    EXPECT_EQ(host("write TARGET HR1 7 --dry-run --format csv").out,
              "station,frame,meaning\n1,01 10 00 00 00 01 02 00 07 E7 92,\"station 1, write multiple "
              "registers, HR1 "
              "(offset 0, quantity 1), values 7, CRC good\"\n");
    EXPECT_EQ(objectIn(host("write TARGET HR1 7 --dry-run --format json").out).value("frame"),
              "01 10 00 00 00 01 02 00 07 E7 92");
}

TEST_F(OutputFormsTest, AScanListsItsRanges)
{
    EXPECT_EQ(host("scan TARGET HR --to 20 --delay 0 --format csv").out,
              "station,address,first,last\n1,HR1..9,1,9\n1,HR11..20,11,20\n");
    const QStringList lines = linesOf(host("scan TARGET HR --from 11 --to 11 --format json").out);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(objectIn(lines.at(0)),
              (QJsonObject{{"station", 1}, {"address", "HR11"}, {"first", 11}, {"last", 11}}));
}

TEST_F(OutputFormsTest, TimesSayHowFarTheyAreFromUtc)
{
    QProcessEnvironment india = QProcessEnvironment::systemEnvironment();
    india.insert("TZ", "IST-05:30");
    const QStringList arguments{"watch", target(), "HR1", "--count", "1", "--interval", "0", "--trace"};
    const HostRun text = runHost(arguments, india);
    const QRegularExpression time("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\+05:30");
    EXPECT_TRUE(time.match(text.out).hasMatch()) << text.out.toStdString();
    const QRegularExpression clock("\n\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\\+05:30 - connected\n");
    EXPECT_TRUE(clock.match(text.err).hasMatch()) << text.err.toStdString();
    const QString csv = linesOf(runHost(arguments + QStringList{"--format", "csv"}, india).out).value(1);
    EXPECT_TRUE(time.match(csv).hasMatch()) << csv.toStdString();
    const QString json = linesOf(runHost(arguments + QStringList{"--format", "json"}, india).out).value(0);
    EXPECT_TRUE(time.match(objectIn(json).value("time").toString()).hasMatch()) << json.toStdString();
}

TEST(OutputForm, HasNoNegativeZero)
{
    Address address;
    address.number = 1;
    ValueRow row;
    row.value =
        shownOf(namelessPoint(*typedItems(address, *parseType("f32"))), QByteArray::fromHex("80000000"));
    EXPECT_TRUE(linesOf({row}, OutputFormat::Json).value(0).contains("\"value\":0}"))
        << linesOf({row}, OutputFormat::Json).value(0).toStdString();
}
