#include "apps/driverdesk/opening/window_options.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

namespace
{

QStringList optionsIn(const QString &text, const char *pattern)
{
    QStringList options;
    const QRegularExpression option(QLatin1String(pattern), QRegularExpression::MultilineOption);
    for (auto match = option.globalMatch(text); match.hasNext();)
        options += match.next().captured(1);
    options.removeDuplicates();
    options.removeAll(QStringLiteral("help"));
    options.sort();
    return options;
}

} // namespace

TEST(WindowManualPage, DescribesEveryOptionAndNoOther)
{
    QFile page(sourceFile(QStringLiteral("apps/driverdesk/driverdesk.1")));
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QStringList described = optionsIn(QString::fromUtf8(page.readAll()), "^\\.It Fl -([a-z-]+)");
    const QStringList known = optionsIn(windowHelp(), "^ +(?:-[a-z], )?--([a-z-]+)");
    EXPECT_GT(known.size(), 15);
    EXPECT_EQ(described, known);
}
