#include "desk/output/output_form.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

namespace
{

// A register that was read, or that failed.
ValueRow rowAt(int number, bool isFailed = false)
{
    ValueRow row;
    row.address = QStringLiteral("HR%1").arg(number);
    row.offset = number - 1;
    row.kind = row.type = QStringLiteral("u16");
    row.value.text = row.value.raw = QString::number(number * 10);
    if (isFailed)
        row.failure = RowFailure{QStringLiteral("no-reply"), QStringLiteral("PLC no response")};
    return row;
}

ValueRow ofType(ValueRow row, const char *type)
{
    row.type = QLatin1String(type);
    return row;
}

ValueRow named(ValueRow row, const char *name)
{
    row.name = QLatin1String(name);
    return row;
}

} // namespace

TEST(OutputForm, LeavesOutOfTablesWhatHasFailed)
{
    EXPECT_EQ(linesOf({rowAt(1), rowAt(2, true), rowAt(3)}, OutputFormat::Text),
              (QStringList{"address  offset  value", "HR1           0     10", "HR3           2     30"}));
    EXPECT_EQ(linesOf({rowAt(1), ofType(rowAt(1), "i16"), ofType(rowAt(2, true), "i16")}, OutputFormat::Text),
              (QStringList{"address  offset  type  value", "HR1           0  u16      10",
                           "HR1           0  i16      10"}));
    EXPECT_EQ(linesOf({named(rowAt(1), "level"), named(rowAt(2, true), "mode")}, OutputFormat::Text),
              (QStringList{"name   value  raw  address", "level  10     10   HR1"}));
    EXPECT_TRUE(linesOf({rowAt(2, true)}, OutputFormat::Text).isEmpty());
}
