#include "tests/driverhost/support/slave_test.h"

#include <QJsonDocument>
#include <QJsonObject>

// Types for each item, on real sockets.

class TypedValuesOfHolesTest : public SlaveTest
{
protected:
    TypedValuesOfHolesTest() : SlaveTest(withHoles()) {}
};

class TypedValuesTest : public SlaveTest
{
protected:
    void setRegisters(int number, const std::vector<int> &values)
    {
        for (size_t i = 0; i < values.size(); ++i)
            setHoldingRegister(number - 1 + static_cast<int>(i), static_cast<quint16>(values[i]));
    }
    std::vector<int> registers(int number, int count)
    {
        std::vector<int> values;
        for (int i = 0; i < count; ++i)
            values.push_back(holdingRegister(number - 1 + i));
        return values;
    }
    QStringList values(const QString &items)
    {
        const HostRun run = host("read TARGET " + items + " --format csv");
        EXPECT_EQ(run.code, 0) << run.err.toStdString();
        QStringList texts;
        for (const QString &line : run.out.split('\n', Qt::SkipEmptyParts).mid(1))
            texts += line.section(',', 4, 4);
        return texts;
    }
    HostRun runWords(const QStringList &words)
    {
        return runHost(QStringList{words.first(), target()} + words.mid(1));
    }
};

TEST_F(TypedValuesTest, AreReadInTheirOrder)
{
    setRegisters(1, {0x47F1, 0x2000, 0x3FF8, 0, 0, 0, 0x5075, 0x6D70, 0x3400, 0x1234, 0x5678});
    slave.setValue(1, Area::DiscreteInputs, 2, 1);
    EXPECT_EQ(
        values("HR1:f32@ABCD HRSW1:f32 HR3:f64@ABCDEFGH HR7:str5 HR10:bcd32@ABCD HR10:hexx2 HR1:float@CDAB "
               "HR10:u8x2 DI1:bitx4 DI1:u8 HR10.2:bit HR1:i16"),
        (QStringList{"123456", "123456", "1.5", "Pump4", "12345678", "0x1234", "0x5678", "1.0865825e-19",
                     "52", "18", "0", "0", "1", "0", "4", "1", "18417"}));
}

TEST_F(TypedValuesTest, ShowTheirTypesWhereAnAddressIsSeveralThings)
{
    setRegisters(1, {0x41AC, 0});
    EXPECT_EQ(host("read TARGET HR1:f32@ABCD HR1:f32 HR1 HR1:u8@AB").out,
              "address   offset  type           value\n"
              "HR1            0  f32@ABCD        21.5\n"
              "HR1            0  f32       2.3559e-41\n"
              "HR1            0  word           16812\n"
              "HR1 high       0  u8@AB             65\n");
    EXPECT_EQ(host("read TARGET HR1:f32@ABCD HR2").out, "address  offset  value\nHR1           0   21.5\n"
                                                        "HR2           1      0\n");
}

TEST_F(TypedValuesTest, NameEachValueAndItsType)
{
    EXPECT_EQ(host("read TARGET HR9:f32x2 2-HR1 --kind word --retries 0 --timeout 50 --format csv")
                  .out.section('\n', 0, 2),
              "station,address,offset,kind,value,failure,error\n1,HR9,8,f32,0,,\n1,HR11,10,f32,0,,");
    const QJsonObject text =
        QJsonDocument::fromJson(host("read TARGET HR1:str4 --format json").out.section('\n', 0, 0).toUtf8())
            .object();
    EXPECT_EQ(text.value("value"), "");
    EXPECT_EQ(text.value("kind"), "str4");
}

TEST_F(TypedValuesTest, GoThroughTheDriverAsFewRequests)
{
    setRegisters(1, {1, 2, 3, 4, 5, 6, 7, 8});
    values("HR1:f64x2 HR1:u32x4@DCBA HR1:f32x4@ABCD");
    EXPECT_EQ(slave.counts().requests, 3u);
    values("HR1:u64x40");
    EXPECT_EQ(slave.counts().requests, 5u) << "160 registers, in whole values";
}

TEST_F(TypedValuesTest, AreWrittenInTheirOrder)
{
    const HostRun run =
        host("write TARGET HR1:f32@ABCD=123456 HR3:f64=1.5 HR7:str5=Pump4 HR10:bcd32@ABCD=12345678 "
             "HR12:i16=-2 DO3=on HR13.2=1 --verify");
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(registers(1, 13), (std::vector<int>{0x47F1, 0x2000, 0, 0, 0, 0x3FF8, 0x5075, 0x6D70, 0x3400,
                                                  0x1234, 0x5678, 0xFFFE, 4}));
    EXPECT_EQ(slave.value(1, Area::Coils, 2), 1);
    EXPECT_EQ(host("write TARGET HR20:u16@BA 4660 1").code, 0);
    EXPECT_EQ(registers(20, 2), (std::vector<int>{0x3412, 0x0100}));
    EXPECT_EQ(host("write TARGET FN6HR30:u64@ABCD 0x0123456789ABCDEF --verify").code, 0);
    EXPECT_EQ(registers(30, 4), (std::vector<int>{0x0123, 0x4567, 0x89AB, 0xCDEF}));
}

TEST_F(TypedValuesTest, TextsAreLatin1OrUtf8)
{
    EXPECT_EQ(runWords({"write", "HR1:str6", QString::fromUtf8("Kühl")}).code, 0);
    EXPECT_EQ(registers(1, 3), (std::vector<int>{0x4BFC, 0x686C, 0}));
    EXPECT_EQ(runWords({"write", "HR1:str6", QString::fromUtf8("Kühl"), "--encoding", "utf8"}).code, 0);
    EXPECT_EQ(registers(1, 3), (std::vector<int>{0x4BC3, 0xBC68, 0x6C00}));
    const QString json = runWords({"read", "HR1:str6", "--encoding", "utf8", "--format", "json"}).out;
    EXPECT_EQ(QJsonDocument::fromJson(json.section('\n', 0, 0).toUtf8()).object().value("value"),
              QString::fromUtf8("Kühl"));
}

TEST_F(TypedValuesTest, RefuseWhatTheTypeCannotHoldBeforeAnythingIsSent)
{
    const struct {
        const char *arguments;
        const char *error;
    } cases[] = {
        {"HR1:u16 65536", "HR1: value \"65536\" does not fit u16; expected 0 to 65535"},
        {"HR1:f32 16777217",
         "HR1: value \"16777217\" is more exact than f32 can be; the nearest is 16777216"},
        {"HR1:i16 1.5", "is more exact than i16 can be; the nearest is 2"},
        {"HR1:str2 ABC", "has 3 bytes; str2 holds 2"},
        {"HR1:u8 5",
         "u8 is half a register, and registers are written whole; expected an even count such as u8x2"},
        {"HR1:u16x3 1 2", "\"HR1:u16x3\" takes 3 values; 2 given"},
        {"IR1:u16 1", "IR is an input and cannot be written"},
        {"DO1:u8 1", "DO is written bit by bit"},
        {"HR1:u16=1 HR2", "\"HR2\": expected NAME=VALUE"},
        {"HR1:u16=1 HR2:u16=70000", "HR2: value \"70000\" does not fit"},
        {"HR1:f32@ABCDEFGH 1", "order \"ABCDEFGH\": expected ABCD, CDAB, BADC or DCBA"},
        {"HRSW1:f32@CDAB 1",
         "SW in the address says the high word first, and the order \"CDAB\" the low one"},
    };
    for (const auto &one : cases) {
        const HostRun run = host(QStringLiteral("write TARGET ") + one.arguments);
        EXPECT_EQ(run.code, 2) << one.arguments;
        EXPECT_TRUE(run.err.contains(one.error)) << run.err.toStdString();
    }
    EXPECT_EQ(slave.counts().connections, 0u);
    EXPECT_EQ(host("write TARGET HR1:f32 16777217 --rounded").code, 0);
    EXPECT_EQ(values("HR1:f32"), QStringList{"16777216"});
}

TEST_F(TypedValuesTest, OptionsAreForItemsWithoutAType)
{
    setRegisters(1, {0xFFFE});
    EXPECT_EQ(values("HR1:u16 HR1 --as signed"), (QStringList{"65534", "-2"}));
    EXPECT_EQ(values("HR1:u16 HR1 --count 2"), (QStringList{"65534", "65534", "0"}));
    EXPECT_EQ(values("HR1@BA --as hex"), QStringList{"0xFEFF"})
        << "an order goes with what kind and form make";
    EXPECT_EQ(values("HR1@BADC --kind dword"), QStringList{"4278124544"});
    for (const char *arguments :
         {"HR1:u16 --as hex", "HR1:f32 --word-order high", "HR1:u16 --kind dword", "HR1:u16 --count 2"}) {
        const HostRun run = host(QStringLiteral("read TARGET ") + arguments);
        EXPECT_EQ(run.code, 2) << arguments;
        EXPECT_TRUE(run.err.contains(" is for items without a type, and there are none"))
            << run.err.toStdString();
    }
    EXPECT_TRUE(
        host("read TARGET HR1@ABCD --kind dword --word-order low").err.contains("say different things"));
}

TEST_F(TypedValuesOfHolesTest, AFailureEndsAWriteOfSeveral)
{
    const HostRun run = host("write TARGET HR1:u16=7 HR50:u16=8 HR9:u16=9 --retries 0 --format csv");
    EXPECT_EQ(run.code, 5);
    EXPECT_TRUE(run.err.contains("HR9: not sent")) << run.err.toStdString();
    const QStringList lines = run.out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines.at(1).startsWith("1,HR1,0,u16,7,7,written,")) << lines.at(1).toStdString();
    EXPECT_TRUE(lines.at(2).startsWith("1,HR50,49,u16,,8,refused,exception,")) << lines.at(2).toStdString();
    EXPECT_TRUE(lines.at(3).startsWith("1,HR9,8,u16,,9,not-sent,")) << lines.at(3).toStdString();
    EXPECT_EQ(holdingRegister(0), 7);
    EXPECT_EQ(holdingRegister(8), 0);
}

TEST_F(TypedValuesTest, AProbeOfAScanMayHaveAType)
{
    const HostRun run =
        host("scan TARGET stations --to 2 --probe HR5:f64 --passes 1 --after-silence 0 --timeout 50 --trace");
    EXPECT_TRUE(run.err.contains("01 03 00 04 00 04")) << run.err.toStdString();
}
