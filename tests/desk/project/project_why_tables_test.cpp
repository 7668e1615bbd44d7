#include "tests/desk/support/dry_driver.h"
#include "tests/desk/support/project_why_test.h"
#include "tests/peers/text_printing.h"

#include <QRegularExpression>

// Every state that the tables of a project database may be in.

using ProjectWhyTablesTest = ProjectWhyTest;

namespace
{

struct Damage {
    const char *name;
    std::vector<const char *> statements;
    const char *table; // at fault; nullptr when the project loads all the same
};

const Damage Damages[] = {
    {"no LINK", {"DROP TABLE LINK"}, "LINK"},
    {"no NODE", {"DROP TABLE NODE"}, "NODE"},
    {"no custom_tag_table", {"DROP TABLE custom_tag_table"}, "custom_tag_table"},
    {"no table at all", {"DROP TABLE LINK", "DROP TABLE NODE", "DROP TABLE custom_tag_table"}, "LINK"},
    {"LINK renamed", {"ALTER TABLE LINK RENAME TO LINKS"}, "LINK"},
    {"NODE renamed", {"ALTER TABLE NODE RENAME TO NODES"}, "NODE"},
    {"custom_tag_table renamed", {"ALTER TABLE custom_tag_table RENAME TO tags"}, "custom_tag_table"},
    {"LINK in small letters", {"ALTER TABLE LINK RENAME TO x", "ALTER TABLE x RENAME TO link"}, nullptr},

    {"LINK without LINKID", {"ALTER TABLE LINK RENAME COLUMN LINKID TO x"}, "LINK"},
    {"LINK without HMIPORT", {"ALTER TABLE LINK RENAME COLUMN HMIPORT TO x"}, "LINK"},
    {"NODE without LINKID", {"ALTER TABLE NODE RENAME COLUMN LINKID TO x"}, "NODE"},
    {"NODE without STATIONID", {"ALTER TABLE NODE RENAME COLUMN STATIONID TO x"}, "NODE"},
    {"NODE without ISDEFAULT", {"ALTER TABLE NODE RENAME COLUMN ISDEFAULT TO x"}, "NODE"},
    {"NODE without IP and PORT",
     {"ALTER TABLE NODE RENAME COLUMN IP TO x", "ALTER TABLE NODE RENAME COLUMN PORT TO y"},
     nullptr},
    {"tags without address", {"ALTER TABLE custom_tag_table RENAME COLUMN address TO x"}, "custom_tag_table"},
    {"tags without connector_id",
     {"ALTER TABLE custom_tag_table RENAME COLUMN connector_id TO x"},
     "custom_tag_table"},
    {"LINK and NODE damaged", {"DROP TABLE LINK", "DROP TABLE NODE"}, "LINK"},
    {"NODE and tags damaged", {"DROP TABLE custom_tag_table", "DROP TABLE NODE"}, "NODE"},

    {"LINK empty", {"DELETE FROM LINK"}, "LINK"},
    {"NODE empty", {"DELETE FROM NODE"}, "NODE"},
    {"no tags", {"DELETE FROM custom_tag_table"}, nullptr},
    {"tags of other links alone", {"UPDATE custom_tag_table SET connector_id = 7"}, nullptr},
    {"no default node", {"UPDATE NODE SET ISDEFAULT = 0"}, "NODE"},
    {"default node of another link", {"UPDATE NODE SET LINKID = 2"}, "NODE"},
    {"two default nodes", {"INSERT INTO NODE VALUES (1, 9, 1, '', 0)"}, nullptr},
    {"two links with the port", {"INSERT INTO LINK VALUES (2, 2000)"}, nullptr},
    {"two links with the port, the second with the node",
     {"INSERT INTO LINK VALUES (2, 2000)", "UPDATE NODE SET LINKID = 2"},
     nullptr},
    {"two links with the port and default nodes",
     {"DELETE FROM LINK", "INSERT INTO LINK VALUES (2, 2000), (1, 2000)",
      "INSERT INTO NODE VALUES (2, 5, 1, '', 0)"},
     nullptr},
    {"the second first by its key",
     {"DROP TABLE LINK", "CREATE TABLE LINK (LINKID INTEGER PRIMARY KEY, HMIPORT)",
      "INSERT INTO LINK VALUES (2, 2000), (1, 2000)", "INSERT INTO NODE VALUES (2, 5, 1, '', 0)"},
     nullptr},
    {"the second first by an index",
     {"CREATE INDEX ports ON LINK (HMIPORT, LINKID DESC)", "INSERT INTO LINK VALUES (2, 2000)",
      "INSERT INTO NODE VALUES (2, 5, 1, '', 0)"},
     nullptr},

    {"LINKID NULL", {"UPDATE LINK SET LINKID = NULL", "UPDATE NODE SET LINKID = NULL"}, "NODE"},
    {"HMIPORT NULL", {"UPDATE LINK SET HMIPORT = NULL"}, "LINK"},
    {"HMIPORT a text", {"UPDATE LINK SET HMIPORT = '2000'"}, "LINK"},
    {"HMIPORT a fraction", {"UPDATE LINK SET HMIPORT = 2000.0"}, nullptr},
    {"HMIPORT bytes", {"UPDATE LINK SET HMIPORT = x'32303030'"}, "LINK"},
    {"HMIPORT a text in a column of numbers",
     {"DROP TABLE LINK", "CREATE TABLE LINK (LINKID INTEGER, HMIPORT INTEGER)",
      "INSERT INTO LINK VALUES ('1', '2000')"},
     nullptr},
    {"LINKID of NODE a text", {"UPDATE NODE SET LINKID = '1'"}, "NODE"},
    {"LINKID a text in both", {"UPDATE LINK SET LINKID = 'x'", "UPDATE NODE SET LINKID = 'x'"}, nullptr},
    {"LINKID above 32 bits",
     {"UPDATE LINK SET LINKID = 4294967297", "UPDATE NODE SET LINKID = 4294967297"},
     nullptr},
    {"ISDEFAULT NULL", {"UPDATE NODE SET ISDEFAULT = NULL"}, "NODE"},
    {"ISDEFAULT 2", {"UPDATE NODE SET ISDEFAULT = 2"}, "NODE"},
    {"ISDEFAULT a text", {"UPDATE NODE SET ISDEFAULT = '1'"}, "NODE"},
    {"ISDEFAULT a fraction", {"UPDATE NODE SET ISDEFAULT = 1.0"}, nullptr},
    {"STATIONID a text", {"UPDATE NODE SET STATIONID = '1'"}, nullptr},
    {"STATIONID no number", {"UPDATE NODE SET STATIONID = 'one'"}, nullptr},
    {"STATIONID above 255", {"UPDATE NODE SET STATIONID = 261"}, nullptr},
    {"STATIONID negative", {"UPDATE NODE SET STATIONID = -1"}, nullptr},
    {"connector_id a text", {"UPDATE custom_tag_table SET connector_id = '1'"}, nullptr},
    {"tags NULL, numbers and bytes",
     {"INSERT INTO custom_tag_table VALUES (NULL, 1), (5, 1), (x'00FF', 1), (1.5, NULL)"},
     nullptr},

    {"views in place of tables",
     {"ALTER TABLE LINK RENAME TO a", "CREATE VIEW LINK AS SELECT * FROM a", "ALTER TABLE NODE RENAME TO b",
      "CREATE VIEW NODE AS SELECT * FROM b"},
     nullptr},
    {"a view of what is not there", {"DROP TABLE NODE", "CREATE VIEW NODE AS SELECT * FROM b"}, "NODE"},
    {"a view of tags that fails on a row",
     {"ALTER TABLE custom_tag_table RENAME TO c",
      "CREATE VIEW custom_tag_table AS SELECT abs(-9223372036854775807 - 1) AS address, connector_id FROM c"},
     "custom_tag_table"},
};

// Whether DI1 is a tag of this station.
bool isDefaultStation(int station)
{
    return DryDriver(QStringLiteral("ETHERNET"), station).read(ByteItem, "DI1").isEmpty();
}

} // namespace

TEST_F(ProjectWhyTablesTest, Tables)
{
    for (const Damage &damage : Damages) {
        makeProject();
        QStringList statements;
        for (const char *const statement : damage.statements)
            statements += QLatin1String(statement);
        run(statements);
        const LoadReport report = comparedReport(damage.name);
        EXPECT_EQ(report.isLoaded(), damage.table == nullptr) << damage.name;
        EXPECT_EQ(report.table, QString::fromLatin1(damage.table)) << damage.name;
    }
}

// Which of several default nodes is taken is SQLite's to say.
TEST_F(ProjectWhyTablesTest, DefaultStations)
{
    const QRegularExpression station(QStringLiteral("default station (\\d+)"));
    for (const Damage &damage : Damages) {
        if (damage.table != nullptr)
            continue;
        makeProject();
        for (const char *const statement : damage.statements)
            run({QLatin1String(statement)});
        run({QStringLiteral("INSERT INTO custom_tag_table VALUES ('DI1', 0), ('DI1', 1), ('DI1', 2)")});
        const QString steps = comparedReport(damage.name).steps.join(QLatin1Char('\n'));
        const QRegularExpressionMatch match = station.match(steps);
        ASSERT_TRUE(match.hasMatch()) << damage.name << '\n' << steps.toStdString();
        EXPECT_TRUE(isDefaultStation(match.captured(1).toInt())) << damage.name << '\n'
                                                                 << steps.toStdString();
    }
}

TEST_F(ProjectWhyTablesTest, ShowsRowsThatDoNotFit)
{
    run({"UPDATE LINK SET HMIPORT = '2000'", "INSERT INTO LINK VALUES (2, NULL)"});
    const QStringList steps = comparedReport("LINK").steps;
    const auto line = steps.indexOf(QStringLiteral("table LINK: 2 rows, 0 of them with HMIPORT = 2000"));
    ASSERT_GE(line, 0) << steps.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(steps.value(line + 1), QStringLiteral("  LINKID 1, HMIPORT '2000'"));
    EXPECT_EQ(steps.value(line + 2), QStringLiteral("  LINKID 2, HMIPORT NULL"));
}
