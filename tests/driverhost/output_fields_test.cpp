#include "desk/link/failure.h"
#include "tests/driverhost/support/slave_test.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

// The manual page names every field of the output for programs, and no other.

namespace
{

using Names = QSet<QString>;

const Names OfPoints{"name", "raw", "unit", "state", "limit"};
const Names OfJson{"text"};

SlaveOptions withHole()
{
    SlaveOptions options;
    options.memory.addHole({0, Area::HoldingRegisters, 9, 9});
    return options;
}

QString outputSection()
{
    QFile file(sourceFile("apps/driverhost/driverhost.1"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QString page = QString::fromUtf8(file.readAll());
    return page.section(".Sh OUTPUT FOR PROGRAMS\n", 1).section("\n.Sh ", 0, 0);
}

Names wordsAfter(const QString &macro, const QString &text)
{
    Names names;
    const QRegularExpression line("^\\." + macro + " (.*)$", QRegularExpression::MultilineOption);
    for (auto match = line.globalMatch(text); match.hasNext();) {
        for (const QString &word : match.next().captured(1).split(' ')) {
            if (word.size() > 1)
                names += word;
        }
    }
    return names;
}

// The fields that the page gives an entry of its list.
Names documented(const QString &entry)
{
    const QString text = outputSection().section("\n.It Cm " + entry + '\n', 1).section("\n.It ", 0, 0);
    EXPECT_FALSE(text.isEmpty()) << entry.toStdString();
    return wordsAfter("Va", text);
}

Names keysOf(const QJsonObject &object)
{
    const QStringList keys = object.keys();
    return Names(keys.begin(), keys.end());
}

std::string shown(const Names &names)
{
    QStringList all(names.begin(), names.end());
    all.sort();
    return all.join(' ').toStdString();
}

} // namespace

class OutputFieldsTest : public SlaveTest
{
protected:
    OutputFieldsTest() : SlaveTest(withHole()) {}

    QString file(const char *name, const QByteArray &content)
    {
        QFile made(folder.filePath(name));
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        made.write(content);
        return made.fileName();
    }
    QString points()
    {
        return file("points.csv", "name,address,unit,scale,high,states\nlevel,HR1,m,0.1,1,\n"
                                  "mode,HR2,,,,0=off;1=on\n");
    }
    QString project()
    {
        const QString path = folder.filePath("project");
        const QString list = file("list", "link 1 ETHERNET\nnode 1 1 default\ntag 1 HR1\ntag 1 HR10\n");
        EXPECT_EQ(runHost({"project", "--force", "--make", list, path}).code, 0);
        return path;
    }
    // Of a slave whose value has changed since.
    QString snapshot()
    {
        const QString path = folder.filePath("snapshot");
        QFile::remove(path);
        setHoldingRegister(0, 1);
        EXPECT_EQ(host("snapshot TARGET HR1..2 --output " + path).code, 0);
        setHoldingRegister(0, 2);
        return path;
    }
    QStringList lines(const QString &arguments, const char *format)
    {
        QString all = arguments + " --retries 0 --timeout 200 --format " + format;
        if (all.contains("POINTS"))
            all.replace("POINTS", points());
        if (all.contains("SNAPSHOT"))
            all.replace("SNAPSHOT", snapshot());
        if (all.contains("PROJECT"))
            all.replace("PROJECT", project());
        return host(all).out.split('\n', Qt::SkipEmptyParts);
    }
    // Of all objects but the summary.
    Names fields(const QString &arguments)
    {
        Names names;
        for (const QString &line : lines(arguments, "json"))
            names += keysOf(QJsonDocument::fromJson(line.toUtf8()).object());
        return names -= "summary";
    }
    QJsonObject summary(const QString &arguments)
    {
        const QStringList all = lines(arguments, "json");
        const QString last = all.isEmpty() ? QString() : all.last();
        return QJsonDocument::fromJson(last.toUtf8()).object().value("summary").toObject();
    }
    Names columns(const QString &arguments)
    {
        const QStringList titles = lines(arguments, "csv").value(0).split(',');
        return Names(titles.begin(), titles.end());
    }

    QTemporaryDir folder;
};

TEST_F(OutputFieldsTest, AreThoseOfThePage)
{
    const Names ofRead = documented("read , tags");
    const Names ofWatch = ofRead + documented("watch , tags --watch");
    EXPECT_EQ(shown(fields("read TARGET --points POINTS level mode HR10")), shown(ofRead));
    EXPECT_EQ(shown(fields("read TARGET HR1 HR10") + OfPoints), shown(ofRead));
    EXPECT_EQ(shown(fields("tags TARGET --project PROJECT") + OfPoints), shown(ofRead));
    EXPECT_EQ(shown(fields("write TARGET --points POINTS level=1 HR10=1")), shown(documented("write")));
    slave.inject(Fault{Fault::WrongCrc, -1}, 1);
    EXPECT_EQ(shown(fields("scan TARGET stations --to 1 --passes 1")), shown(documented("scan stations")));
    EXPECT_EQ(shown(fields("scan TARGET HR --to 20")), shown(documented("scan No of an area")));
    EXPECT_EQ(shown(fields("write TARGET HR1 1 --dry-run")), shown(documented("write --dry-run")));
    EXPECT_EQ(shown(fields("watch TARGET HR1 --wide --count 1")), shown(documented("watch --wide")));
    EXPECT_EQ(shown(fields("compare SNAPSHOT")), shown(documented("compare")));
    EXPECT_EQ(shown(fields("restore SNAPSHOT --yes")), shown(documented("compare") + documented("restore")));
    // The last of three rounds fails.
    SlaveOptions options;
    ASSERT_TRUE(options.faults.add("exception:4=1/3"));
    SlaveThread other(options);
    ASSERT_TRUE(other.start());
    EXPECT_EQ(shown(fields(QStringLiteral("watch rtutcp://127.0.0.1:%1/1 --points POINTS level --interval 0 "
                                          "--count 3")
                               .arg(other.port()))),
              shown(ofWatch));
}

TEST_F(OutputFieldsTest, OfADiagnosisAreThoseOfThePage)
{
    EXPECT_EQ(shown(fields("doctor TARGET --listen 0.2")), shown(documented("doctor")));
}

TEST_F(OutputFieldsTest, AreTheColumnsOfThePage)
{
    const Names ofRead = documented("read , tags") - OfJson;
    const Names ofWatch = ofRead + documented("watch , tags --watch");
    EXPECT_EQ(shown(columns("read TARGET --points POINTS level")), shown(ofRead));
    EXPECT_EQ(shown(columns("read TARGET HR1")), shown(ofRead - OfPoints));
    EXPECT_EQ(shown(columns("tags TARGET --project PROJECT")), shown(ofRead - OfPoints));
    EXPECT_EQ(shown(columns("watch TARGET --points POINTS level --count 1")), shown(ofWatch));
    EXPECT_EQ(shown(columns("watch TARGET HR1 --count 1")), shown(ofWatch - OfPoints));
    EXPECT_EQ(shown(columns("tags TARGET --watch --count 1 --project PROJECT")), shown(ofWatch - OfPoints));
    EXPECT_EQ(shown(columns("write TARGET --points POINTS level=1")), shown(documented("write") - OfJson));
    EXPECT_EQ(shown(columns("write TARGET HR1 1")), shown(documented("write") - OfJson - OfPoints));
    EXPECT_EQ(shown(columns("write TARGET HR1 1 --dry-run")), shown(documented("write --dry-run")));
    EXPECT_EQ(shown(columns("scan TARGET stations --to 1")), shown(documented("scan stations")));
    EXPECT_EQ(shown(columns("scan TARGET HR --to 1")), shown(documented("scan No of an area")));
    EXPECT_EQ(shown(columns("compare SNAPSHOT")), shown(documented("compare")));
    EXPECT_EQ(shown(columns("restore SNAPSHOT --yes")), shown(documented("compare") + documented("restore")));
}

TEST_F(OutputFieldsTest, OfTheSummaryAreThoseOfThePage)
{
    const Names all = documented("summary");
    const struct {
        const char *arguments;
        const char *entry;
    } cases[] = {
        {"read TARGET HR1", "read , tags"},
        {"tags TARGET --project PROJECT", "read , tags"},
        {"watch TARGET HR1 --count 1", "watch , tags --watch"},
        {"tags TARGET --watch --count 1 --project PROJECT", "watch , tags --watch"},
        {"write TARGET HR1 1", "write"},
        {"scan TARGET stations --to 1", "scan"},
        {"scan TARGET HR --to 1", "scan"},
        {"compare SNAPSHOT", "compare"},
    };
    for (const auto &c : cases) {
        const QJsonObject summary = this->summary(c.arguments);
        EXPECT_EQ(shown(keysOf(summary)),
                  shown(all + documented(QStringLiteral("summary No of Cm ") + c.entry)))
            << c.arguments;
        EXPECT_EQ(shown(keysOf(summary.value("stations").toObject().value("1").toObject())),
                  shown(all - Names{"version", "stations"}))
            << c.arguments;
    }
    EXPECT_EQ(shown(keysOf(summary("restore SNAPSHOT --yes"))),
              shown(all + documented("summary No of Cm compare") + documented("summary No of Cm restore")));
}

TEST_F(OutputFieldsTest, TellFailuresInTheWordsOfThePage)
{
    Names words;
    for (int kind = 0; !nameOf(static_cast<FailureKind>(kind)).isEmpty(); ++kind)
        words += nameOf(static_cast<FailureKind>(kind));
    EXPECT_EQ(shown(words),
              shown(wordsAfter("Cm", outputSection().section("The words for failures are\n", 1))));
}
