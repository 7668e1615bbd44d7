#include "tests/desk/doctor/written_observations.h"
#include "tests/peers/text_printing.h"
#include "tests/plants/plant_line.h"

#include <gtest/gtest.h>

// Who is taken for what at a port where nobody answers as an RTU slave.

namespace
{

const char *const Nobody = "";
const char *const Text = "text-banner";

struct Brought {
    QByteArray bytes;
    const char *name;
    const char *why;
};

Seen nothingYet()
{
    Seen seen;
    seen.seen.working = -1;
    return seen;
}

void expectNames(const std::vector<Brought> &rows)
{
    for (const Brought &row : rows) {
        Seen seen = nothingYet();
        seen.brought(AskResult::Noise, row.bytes);
        const Judgement judgement = judge(serviceExamination(), seen);
        EXPECT_EQ(faultsOf(judgement).join(QLatin1Char(',')), QLatin1String(row.name)) << row.why;
        EXPECT_EQ(judgement.explainsAll, *row.name != '\0') << row.why;
        EXPECT_EQ(judgement.remedy.worksNow, *row.name == '\0') << row.why;
    }
}

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

TEST(Service, ModbusTcpIsTheReplyToWhatWasAsked)
{
    const char *const tcp = "modbus-tcp";
    expectNames({{hex("4d4200000005010302 1234"), tcp, "a value"},
                 {hex("4d4200000003018302"), tcp, "an exception"},
                 {hex("ff4d4200000005010302 1234"), tcp, "behind a byte of something else"},
                 {hex("4d4200000006010300000001"), Nobody, "the request itself"},
                 {hex("4d42000000060103000000014d42000000050103021234"), tcp, "the request and its reply"},
                 {hex("4d4200000006010400000001"), Nobody, "as long as the request, of another function"},
                 {hex("4d42000000050104021234"), Nobody, "of another function"},
                 {hex("4d4200000005010302"), Nobody, "cut"},
                 {hex("4d42000000020103"), Nobody, "too short for a value"},
                 {hex("4d4300000005010302 1234"), Nobody, "another transaction"}});
}

TEST(Service, ModbusAsciiHasARightSum)
{
    const char *const ascii = "modbus-ascii";
    expectNames({{":0103021234B4\r\n", ascii, "a value"},
                 {":0183027A\r\n", ascii, "an exception"},
                 {"XX:0103021234B4\r\n", ascii, "behind something else"},
                 {":0103021234B5\r\n", Text, "a wrong sum"},
                 {":010300000001FB\r\n", Text, "the request itself"},
                 {":0103FC\r\n", Text, "shorter than an exception"},
                 {"0103021234B4\r\n", Text, "without its beginning"}});
}

TEST(Service, WebAndShellSayWhoTheyAre)
{
    expectNames({{"HTTP/1.1 400 Bad Request\r\n\r\n", "http", "a status line"},
                 {"GET / HTTP/1.0\r\n\r\n", Text, "the request comes back"},
                 {"SSH-2.0-x\r\n", "ssh", "the version of today"},
                 {"SSH-1.99-x\r\n", "ssh", "one that also speaks the old one"},
                 {"SSH\r\n", Text, "the letters alone"}});
}

TEST(Service, TlsIsAnAlertOrAHandshake)
{
    const char *const tls = "tls";
    const QByteArray greeting = hex("160301002d010000290303") + QByteArray(32, 'd') + hex("000002002f0100");
    expectNames({{hex("15030300020228"), tls, "an alert"},
                 {hex("160304000402000000"), tls, "a handshake"},
                 {hex("17030300020228"), Nobody, "application data"},
                 {hex("15020300020228"), Nobody, "an older major version"},
                 {hex("15030500020228"), Nobody, "a newer minor version"},
                 {hex("1503030003022800"), Nobody, "an alert of three bytes"},
                 {hex("1603030003020000"), Nobody, "a handshake without a body"},
                 {hex("1503030002"), Nobody, "no more than a header"},
                 {greeting, Nobody, "the greeting comes back"}});
}

TEST(Service, TextIsReadableAndHasLines)
{
    expectNames({{"login:\r", Text, "ends with a carriage return"},
                 {"\tname\tvalue\n", Text, "with tabs"},
                 {"a line of some length\x7f\n", Text, "one byte in twenty is none"},
                 {"ab\x7f\x7f\n", Nobody, "two in five are none"},
                 {"ab\xe9\xe9\n", Nobody, "neither are accents"},
                 {"registered", Nobody, "no line"},
                 {"ok\n", Nobody, "too short"}});
}

TEST(Service, TelnetIsKnownByItsGreeting)
{
    const auto nameOf = [](const QByteArray &bytes, bool isFirst) {
        Seen seen = nothingYet();
        seen.stray(10, bytes, isFirst).silence();
        return faultsOf(judge(serviceExamination(), seen)).join(QLatin1Char(','));
    };
    EXPECT_EQ(nameOf(hex("fffd18"), true), QLatin1String(Text));
    EXPECT_EQ(nameOf(hex("fffb01"), true), QLatin1String(Text));
    EXPECT_EQ(nameOf(hex("fffd18"), false), QString()) << "later it is no greeting";
    EXPECT_EQ(nameOf(hex("fffa18"), true), QString()) << "no option is negotiated";
    EXPECT_EQ(nameOf(hex("ffff18"), true), QString());
    EXPECT_EQ(nameOf(hex("fefd18"), true), QString());
}

TEST(Service, ConnectionsEndAlsoWhereNoneCouldBeMadeForTheNextRequest)
{
    Seen ended = nothingYet();
    ended.silent(Seen::read(1)).result = AskResult::Ended;
    ended.silent(Seen::read(1)).result = AskResult::Unsent;
    EXPECT_EQ(faultsOf(judge(serviceExamination(), ended)), QStringList{"connection-ends"});
    ended.silence();
    EXPECT_EQ(faultsOf(judge(serviceExamination(), ended)), QStringList()) << "one was only not answered";
}

TEST(Service, NothingIsSaidWhereNothingWasAskedOrWhereItIsRtu)
{
    const auto explains = [](const Seen &seen) { return judge(serviceExamination(), seen).explainsAll; };
    EXPECT_FALSE(explains(nothingYet()));
    Seen page = nothingYet();
    page.brought(AskResult::Noise, "HTTP/1.1 200 OK\r\n\r\n");
    EXPECT_TRUE(explains(page));
    Seen echo = page;
    echo.silent(Seen::read(1)).isEchoed = true;
    EXPECT_FALSE(explains(echo));
    Seen damaged = page;
    damaged.spoilt(hex("010302"));
    EXPECT_FALSE(explains(damaged));
    Seen other = page;
    other.brought(AskResult::OtherStation, hex("050302"));
    EXPECT_FALSE(explains(other));
}

TEST(Service, IsAskedAsLongAsThereIsTime)
{
    for (const auto &[longest, asked] :
         std::vector<std::pair<qint64, size_t>>{{0, 0}, {2500, 1}, {3500, 2}, {5000, 3}, {7000, 4}}) {
        PlantOptions options;
        options.slave.stations = {60};
        VirtualTime time;
        Plant plant(time, options);
        PlantLine line(time, plant);
        DoctorOptions doctor;
        doctor.longestTime = longest * Seen::Millisecond;
        Observations seen;
        Examiner examiner(line, doctor, seen);
        serviceExamination().observe(examiner);
        EXPECT_EQ(seen.askedFor(Purpose::Service).size(), asked) << longest;
        EXPECT_EQ(seen.isOutOfTime, asked < 4) << longest;
    }
}
