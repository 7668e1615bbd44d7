#include "desk/points/point_check.h"
#include "desk/points/point_drafts.h"
#include "desk/points/point_file.h"
#include "desk/points/point_names.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace
{

std::vector<Point> pointsIn(const QByteArray &csv)
{
    const PointTable table = parsePoints(csv);
    EXPECT_EQ(table.problems.join(QLatin1Char('\n')), QString());
    return table.points;
}

Point pointAt(const QByteArray &cells)
{
    const std::vector<Point> points =
        pointsIn("name,address,type,order,scale,offset,unit,low,high,states\np," + cells + "\n");
    return points.empty() ? Point() : points.front();
}

QString problemOf(const QByteArray &csv)
{
    return parsePoints(csv).problems.join(QLatin1Char('\n'));
}

QString problemOfRow(const QByteArray &cells)
{
    return problemOf("name,address,type,order,scale,offset,unit,low,high,states,comment\n" + cells + "\n");
}

PointValue shown(const Point &point, const char *hex)
{
    return shownOf(point, QByteArray::fromHex(hex));
}

QStringList namesOf(const std::vector<Point> &points)
{
    QStringList names;
    for (const Point &point : points)
        names += point.name;
    return names;
}

} // namespace

TEST(PointFile, TakesColumnsInAnyOrder)
{
    const std::vector<Point> points = pointsIn("Comment,type,ADDRESS,Name,unit\n"
                                               "\"hot, wet\",f32,HR5,temp,°C\n"
                                               ",,DI3,door,\n"
                                               "\n"
                                               ",,2-HR7.3,fault,\n"
                                               ",,HRSW9,total,\n");
    ASSERT_EQ(points.size(), 4u);
    EXPECT_EQ(points[0].name, QStringLiteral("temp"));
    EXPECT_EQ(points[0].unit, QString::fromUtf8("°C"));
    EXPECT_EQ(points[0].comment, QStringLiteral("hot, wet"));
    EXPECT_EQ(nameOf(points[0].at.type), QStringLiteral("f32"));
    EXPECT_EQ(nameOf(points[1].at.type), QStringLiteral("bit"));
    EXPECT_EQ(points[2].at.address.station, 2);
    EXPECT_EQ(nameOf(points[2].at.type), QStringLiteral("bit"));
    EXPECT_EQ(nameOf(points[3].at.type), QStringLiteral("u32"));
    EXPECT_TRUE(points[3].at.order.isHighWordFirst);
    EXPECT_EQ(points[3].line, 6);
    EXPECT_EQ(pointsIn("name,,address,\na,,HR1,\n").size(), 1u) << "columns without a title";
}

TEST(PointFile, TakesWhatSpreadsheetsSave)
{
    const QByteArray plain = "name;address;scale;states\r\nspeed;HR1;0,1;\r\nmode;HR2;;\"0=off;1=on\"\r\n";
    const QByteArray tabs = "name\taddress\tscale\tstates\nspeed\tHR1\t0,1\t\nmode\tHR2\t\t0=off;1=on\n";
    const QByteArray utf16 =
        "\xFF\xFE" +
        QByteArray(reinterpret_cast<const char *>(QString::fromLatin1(tabs).utf16()), tabs.size() * 2);
    for (const QByteArray &csv : {plain, QByteArray("\xEF\xBB\xBF") + plain, tabs, utf16}) {
        const std::vector<Point> points = pointsIn(csv);
        ASSERT_EQ(points.size(), 2u);
        EXPECT_EQ(points[0].scaling.scale, 0.1);
        EXPECT_EQ(points[0].scaling.decimals, 1);
        EXPECT_EQ(points[1].states.names(), (QStringList{QStringLiteral("off"), QStringLiteral("on")}));
    }
    EXPECT_EQ(pointsIn("name,address,unit\nt,HR1,\xB0"
                       "C\n")
                  .front()
                  .unit,
              QString::fromUtf8("°C"));
}

TEST(PointFile, ErrorsNameLineAndColumnAndWhatWasExpected)
{
    const struct {
        const char *row;
        const char *problem;
    } cases[] = {
        {",HR1", "2: column 1 (name): expected a name"},
        {"a=b,HR1", "2: column 1 (name): \"a=b\": expected a name without ="},
        {"p*,HR1", "2: column 1 (name): \"p*\": expected a name without *"},
        {"p,XX1", "2: column 2 (address): address \"XX1\": unknown area \"XX\"; expected HR"},
        {"p,", "2: column 2 (address): address \"\": no area; expected HR"},
        {"p,HR1:f32x2", "2: column 2 (address): \"HR1:f32x2\": a point is one value; expected no count"},
        {"p,HR1:f99", "2: column 2 (address): address \"HR1:f99\": type \"f99\": expected bit"},
        {"p,HR1,f99", "2: column 3 (type): type \"f99\": expected bit"},
        {"p,HR1:u32,f32", "2: column 3 (type): type \"f32\": the address says u32"},
        {"p,DI1,u16", "2: column 3 (type): address \"DI1\": DI holds bits"},
        {"p,DI1:u16", "2: column 2 (address): address \"DI1\": DI holds bits"},
        {"p,HR65536,f32",
         "2: column 3 (type): address \"HR65536\": 1 item of kind dword would end beyond HR65536"},
        {"p,HR1,f32,ACBD", "2: column 4 (order): order \"ACBD\": expected ABCD"},
        {"p,HRSW1,f32,CDAB", "2: column 4 (order): address \"HRSW1\": SW in the address says the high word"},
        {"p,HRSW1:f32@CDAB",
         "2: column 2 (address): address \"HRSW1\": SW in the address says the high word"},
        {"p,HR1:f32@ABCD,,DCBA", "2: column 4 (order): order \"DCBA\": the address says ABCD"},
        {"p,HR1,,,x", "2: column 5 (scale): scale \"x\": expected a number such as 0.1"},
        {"p,HR1:f32,f32,cdab,inf", "2: column 5 (scale): scale \"inf\": expected a number such as 0.1"},
        {"p,HR1:f32@CDAB,f32,cdab,x", "2: column 5 (scale): scale \"x\": expected a number"},
        {"p,HR1,,,0", "2: column 5 (scale): scale \"0\": expected a number other than 0"},
        {"p,HR1,,,,x", "2: column 6 (offset): offset \"x\": expected a number"},
        {"p,HR1,hex,,2", "2: column 5 (scale): a hex is not scaled; expected a type such as u16"},
        {"p,HR1,str4,,,1", "2: column 6 (offset): a str4 is not scaled"},
        {"p,HR1,,,,,,low", "2: column 8 (low): \"low\": expected a number"},
        {"p,HR1,,,,,,9,1", "2: column 9 (high): \"1\": expected no less than low"},
        {"p,HR1,,,,,,,,on", "2: column 10 (states): \"on\": expected a value and its name such as 1=running"},
        {"p,HR1,,,,,,,,0=a;0=b", "2: column 10 (states): \"0=b\": 0 has a name already"},
        {"p,HR1,,,,,,,,16:a", "2: column 10 (states): \"16:a\": expected a bit from 0 to 15"},
        {"p,HR1,,,,,,,,0=a;1:b", "2: column 10 (states): \"1:b\": names of values (=) and names of bits (:)"},
        {"p,HR1,,,,,,,,-1:a", "2: column 10 (states): \"-1:a\": expected a bit from 0 to 15"},
        {"p,HR1,,,,,,,,x=a", "2: column 10 (states): \"x=a\": expected a value and its name"},
        {"p,HR1,,,,,,,,1=", "2: column 10 (states): \"1=\": expected a value and its name"},
        {"p,HR1,str4,,,,,,,0=a", "2: column 10 (states): a str4 has no states"},
        {"p,HR1,f32,,,,,,,0=a", "2: column 10 (states): a f32 has no states"},
        {"p,HR1,,,,,,,,,c,12", "2: column 12: \"12\" stands below no title"},
    };
    for (const auto &one : cases)
        EXPECT_TRUE(problemOfRow(one.row).startsWith(QLatin1String(one.problem)))
            << one.row << ": " << problemOfRow(one.row).toStdString();
    EXPECT_EQ(problemOf("name,address\na,HR1\nb,HR2\na,HR3\n"),
              QStringLiteral("4: column 1 (name): \"a\": expected a new name; it stands in line 2 already"));
    EXPECT_EQ(
        problemOf("name,addr\na,HR1\n").section(QLatin1Char('\n'), 0, 0),
        QStringLiteral("1: column 2: title \"addr\": expected one of name, address, type, order, scale, "
                       "offset, unit, low, high, states, comment"));
    EXPECT_EQ(problemOf("name\na\n"), QStringLiteral("1: expected a column address"));
    EXPECT_EQ(problemOf("name,address,name\n"),
              QStringLiteral("1: column 3: there is a column name already"));
    EXPECT_TRUE(problemOf("").startsWith(QLatin1String("1: expected a row of titles: name, address")));
    EXPECT_EQ(problemOf("name,address\n\"a,HR1\nb,HR2\n"),
              QStringLiteral("2: a quote is opened and never closed"));
    EXPECT_EQ(problemOf("name,address\n\"a\"b,HR1\n"),
              QStringLiteral("2: expected \",\" or the end of the line after the closing quote"));
    EXPECT_EQ(problemOf("name,address\na,XX1\nb,YY1\n").count(QLatin1Char('\n')), 1) << "all that is wrong";
}

TEST(PointFile, NamesItsPathWithEveryProblem)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("plant.csv"));
    EXPECT_TRUE(readPointFile(path).errorText().startsWith(path + QStringLiteral(": ")));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("name,address\na,XX1\nb,HR2\nc,YY1\n");
    file.close();
    const QStringList lines = readPointFile(path).errorText().split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines.at(0).startsWith(path + QStringLiteral(":2: column 2 (address)")));
    EXPECT_TRUE(lines.at(1).startsWith(path + QStringLiteral(":4: ")));
}

TEST(Point, ShowsItsValueAsPeopleReadIt)
{
    const Point temperature = pointAt("HR1,i16,,0.1,-40,°C,0,80");
    EXPECT_EQ(shown(temperature, "027B").withUnit(temperature.unit), QString::fromUtf8("23.5 °C"));
    EXPECT_EQ(shown(temperature, "027B").raw, QStringLiteral("635"));
    EXPECT_EQ(shown(temperature, "027B").number, QJsonValue(23.5));
    EXPECT_EQ(shown(temperature, "0001").text, QStringLiteral("-39.9"));
    EXPECT_EQ(shown(temperature, "0001").limit, QStringLiteral("below 0"));
    EXPECT_EQ(shown(temperature, "04B1").limit, QStringLiteral("above 80"));
    EXPECT_EQ(shown(temperature, "04B0").limit, QString());
    EXPECT_EQ(shown(pointAt("HR1,u16,,0.1"), "0003").text, QStringLiteral("0.3")) << "no binary rests";
    EXPECT_EQ(shown(pointAt("HR1,f32,,100"), "3DCCCCCD").text, QStringLiteral("10"));
    EXPECT_EQ(shown(pointAt("HR1,f64,,0.1"), "3FD5555555555555").text, QStringLiteral("0.0333333333333333"));
    EXPECT_EQ(scaledText(QByteArray::fromHex("0007"), {Meaning::Unsigned, 16}, Scaling()),
              QStringLiteral("7"));
    EXPECT_EQ(shown(pointAt("HR1,u64"), "FFFFFFFFFFFFFFFF").text, QStringLiteral("18446744073709551615"));

    const Point mode = pointAt("HR1,u16,,,,rpm,,,0=stopped;1=running");
    EXPECT_EQ(shown(mode, "0001").withUnit(mode.unit), QStringLiteral("running"));
    EXPECT_EQ(shown(mode, "0007").withUnit(mode.unit), QStringLiteral("7 rpm"));
    const Point signedMode = pointAt("HR1,i16,,,,,,,-1=fault;0=idle");
    EXPECT_EQ(shown(signedMode, "FFFF").state, QStringLiteral("fault"));

    const Point status = pointAt("HR1,hex,,,,,,,0:ready;3:fault;15:locked");
    EXPECT_EQ(shown(status, "8009").state, QStringLiteral("ready, fault, locked"));
    EXPECT_EQ(shown(status, "0002").state, QStringLiteral("-"));
    EXPECT_EQ(shown(pointAt("HR1,hex,,,,,,,0:a=b"), "0001").state, QStringLiteral("a=b"));
    EXPECT_EQ(shown(pointAt("HR1,u16,,,,,,,1=a:b"), "0001").state, QStringLiteral("a:b"));
    EXPECT_EQ(shown(status, "0009").raw, QStringLiteral("0x0009"));

    const Point text = pointAt("HR1,str4,,,,,1");
    EXPECT_EQ(shown(text, "41420000").text, QStringLiteral("AB"));
    EXPECT_EQ(shown(text, "41420000").limit, QString());
    EXPECT_TRUE(shown(pointAt("HR1,bcd16,,0.1"), "00FF").number.isNull());
}

TEST(Point, IsWrittenAsItIsShown)
{
    const auto written = [](const Point &point, const char *text, bool mayRound = false) {
        const Result<QByteArray> value = parsePointValue(point, QLatin1String(text), mayRound);
        return value ? QString::fromLatin1(value->toHex()) : value.errorText();
    };
    const Point temperature = pointAt("HR1,i16,,0.1,-40,C");
    EXPECT_EQ(written(temperature, "23.5"), QStringLiteral("027b"));
    EXPECT_EQ(written(temperature, "-40"), QStringLiteral("0000"));
    EXPECT_EQ(written(temperature, "23.54"),
              QStringLiteral("value \"23.54\" lies between two steps of 0.1; the nearest is 23.5"));
    EXPECT_EQ(written(temperature, "23.54", true), QStringLiteral("027b"));
    EXPECT_TRUE(written(temperature, "9000").contains(QLatin1String("is 90400 before scaling: value")));
    EXPECT_TRUE(written(temperature, "warm").contains(QLatin1String("expected a number")));
    EXPECT_EQ(written(pointAt("HR1,f32,,0.1"), "2.35"), QStringLiteral("41bc0000"));

    const Point mode = pointAt("HR1,u16,,,,,,,0=stopped;1=running");
    EXPECT_EQ(written(mode, "Running"), QStringLiteral("0001"));
    EXPECT_EQ(written(mode, "7"), QStringLiteral("0007"));
    EXPECT_TRUE(written(mode, "jumping").endsWith(QLatin1String(", or one of stopped, running")));
    EXPECT_EQ(written(pointAt("HR1,hex,,,,,,,0:ready"), "0009"), QStringLiteral("0009"));
    EXPECT_FALSE(written(pointAt("HR1,hex,,,,,,,0:ready"), "jumping").contains(QLatin1String("ready")));
    EXPECT_EQ(written(pointAt("DO1"), "on"), QStringLiteral("01"));
}

// What is shown of a whole number can be written, and is the same.
TEST(Point, EveryScaledValueComesBack)
{
    for (const char *scale : {"0.1", "0.01", "2.5", "-1", "0.125", "1000", "0.0305"}) {
        for (const char *offset : {"0", "-40", "0.5", "32"}) {
            const Point point = pointAt(QByteArray("HR1,i16,,") + scale + "," + offset);
            for (int raw = -0x8000; raw <= 0x7FFF; raw += 97) {
                const QByteArray value = parseValue(QString::number(raw), point.at.type).valueOr({});
                EXPECT_EQ(parsePointValue(point, shownOf(point, value).text, false).valueOr({}), value)
                    << raw << " * " << scale << " + " << offset;
            }
        }
    }
}

TEST(PointNames, AreFoundByNameAndPattern)
{
    const std::vector<Point> points = pointsIn(
        "name,address\npump1.speed,HR1\npump2.speed,HR2\npump1.on,DO1\nValve,DO2\nvalve2,DO3\nVALVE2,DO4\n");
    EXPECT_EQ(namesOf(pointsNamed(points, QStringLiteral("pump*"))).size(), 3);
    EXPECT_EQ(namesOf(pointsNamed(points, QStringLiteral("PUMP?.speed"))),
              (QStringList{QStringLiteral("pump1.speed"), QStringLiteral("pump2.speed")}));
    EXPECT_EQ(namesOf(pointsNamed(points, QStringLiteral("valve"))), QStringList{QStringLiteral("Valve")});
    EXPECT_EQ(namesOf(pointsNamed(points, QStringLiteral("VALVE2"))), QStringList{QStringLiteral("VALVE2")});
    EXPECT_TRUE(pointsNamed(points, QStringLiteral("Valve2")).empty()) << "which of the two?";
    EXPECT_TRUE(pointsNamed(points, QStringLiteral("pump")).empty());
    EXPECT_EQ(similarNames(points, QStringLiteral("pump1.sped")).value(0), QStringLiteral("pump1.speed"));
    EXPECT_EQ(similarNames(points, QStringLiteral("VALV")).size(), 3);
    EXPECT_EQ(
        similarNames(pointsIn("name,address\npa1,HR1\npa2,HR2\npa3,HR3\npa4,HR4\n"), QStringLiteral("pa")),
        (QStringList{QStringLiteral("pa1"), QStringLiteral("pa2"), QStringLiteral("pa3")}));
    EXPECT_TRUE(similarNames(points, QStringLiteral("x")).isEmpty());
}

TEST(PointCheck, FindsDoublesAndOverlaps)
{
    const auto odd = [](const QByteArray &rows) { return oddPoints(pointsIn("name,address,type\n" + rows)); };
    EXPECT_EQ(odd("a,HR1,f32\nb,HR1,f32\n"),
              QStringList{QStringLiteral("3: \"b\" (HR1) is at the address of \"a\" (HR1) in line 2")});
    EXPECT_EQ(odd("a,HR2,u16\nb,HR1,f32\n"),
              QStringList{QStringLiteral("3: \"b\" (HR1) overlaps \"a\" (HR2) in line 2")});
    EXPECT_EQ(odd("a,HR1,f64\nb,HR4,str3\nc,HR5,u16\n").size(), 2);
    EXPECT_EQ(odd("a,DO1,u8\nb,DO8,bit\nc,DO9,bit\n").size(), 0) << "a bit of a byte";
    EXPECT_EQ(odd("a,HR1,hex\nb,HR1.3,bit\nc,HR1.3,bit\n").size(), 1) << "a word and its bits";
    EXPECT_EQ(odd("a,HR1,u8\nb,HR1,u8\n").size(), 1);
    EXPECT_EQ(odd("a,HR1.3,bit\nb,HR1,hex\n").size(), 0) << "a bit and its word";
    EXPECT_EQ(odd("a,HR1,u16\nb,HR1,f32\n"),
              QStringList{QStringLiteral("3: \"b\" (HR1) overlaps \"a\" (HR1) in line 2")});
    EXPECT_EQ(odd("a,DO1,u8\nb,DO4,u8\n"),
              QStringList{QStringLiteral("3: \"b\" (DO4) overlaps \"a\" (DO1) in line 2")});
    EXPECT_EQ(oddPoints(pointsIn("name,address,type,order\na,HR1,u8,AB\nb,HR1,u8,BA\nc,HR1,u16,\n")).size(),
              0)
        << "both bytes of a register";
    EXPECT_EQ(odd("a,HR1,u16\nb,IR1,u16\nc,2-HR1,u16\nd,HR2,u16\n").size(), 0);
    EXPECT_EQ(odd("a,FN6HR1,u16\nb,HR1,u16\n").size(), 1) << "the same registers";
}

TEST(PointDrafts, AreTablesOfWhatIsThere)
{
    const QStringList ofTags =
        draftOfTags({QStringLiteral("HR5"), QStringLiteral("2-DO3"), QStringLiteral("HR5"),
                     QStringLiteral("HRSW7"), QStringLiteral("HR9:f32"), QStringLiteral("HR8.3"),
                     QStringLiteral("HR9:f99"), QStringLiteral("nonsense")});
    EXPECT_EQ(ofTags.mid(1),
              (QStringList{QStringLiteral("HR5,HR5,u16,,,,,,,,"), QStringLiteral("2-DO3,2-DO3,bit,,,,,,,,"),
                           QStringLiteral("HRSW7,HRSW7,u32,,,,,,,,"), QStringLiteral("HR9,HR9,f32,,,,,,,,"),
                           QStringLiteral("HR8.3,HR8.3,bit,,,,,,,,")}));
    EXPECT_EQ(pointsIn(ofTags.join(QLatin1Char('\n')).toUtf8()).size(), 5u);

    const Result<QStringList> ofScan =
        draftOfRanges({QStringLiteral("HR1..3"), QString(), QStringLiteral("DI65536  1 address")});
    ASSERT_TRUE(ofScan);
    EXPECT_EQ(ofScan->size(), 1 + 4);
    EXPECT_EQ(ofScan->last(), QStringLiteral("DI65536,DI65536,bit,,,,,,,,"));
    EXPECT_EQ(draftOfRanges({QStringLiteral("HR1"), QStringLiteral("HR1..x")}).errorText(),
              QStringLiteral("2: \"HR1..x\": expected addresses such as HR10 or 2-DO5..20"));
}
