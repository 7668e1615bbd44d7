#include "tests/driverdesk/support/x_screen.h"
#include "tests/peers/running_slave.h"
#include "tests/peers/text_printing.h"
#include "tests/peers/waiting.h"

#include <QElapsedTimer>
#include <QSet>

// The program as a person starts it, in an X server; QProcess is behind XScreen.

namespace
{

class XServerTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(screen.isReady()) << "Xvfb does not start"; }

    QStringList arguments(const QString &what) const
    {
        return QStringLiteral("rtutcp://127.0.0.1:%1/1 %2 --interval 0.1 --timeout 300 --retries 0")
            .arg(QString::number(slave.port()), what)
            .split(QLatin1Char(' '));
    }
    // Whether a text comes to be in the table of points.
    bool shows(const QString &text)
    {
        return waitUntil([&] {
            screen.press({QStringLiteral("ctrl+1")});
            shown = screen.copiedTable();
            return shown.contains(text, Qt::CaseInsensitive);
        });
    }
    void setFault(std::optional<Fault> fault)
    {
        FaultPlan plan;
        if (fault)
            plan.addEvery(*fault, 1);
        slave.setFaults(plan);
    }

    RunningSlave slave;
    XScreen screen{QStringLiteral("1280x800")};
    QString shown;
};

} // namespace

TEST_F(XServerTest, ShowsASlaveThatIsSilentRefusesResetsAndComesBack)
{
    slave.setValue(1, Area::HoldingRegisters, 9, 1234);
    ASSERT_TRUE(screen.start(arguments(QStringLiteral("HR10")))) << screen.output().toStdString();
    ASSERT_TRUE(shows(QStringLiteral("\t1234\t"))) << shown.toStdString();
    EXPECT_TRUE(shown.endsWith(QStringLiteral("\tlive"))) << shown.toStdString();
    const std::pair<Fault, const char *> faults[] = {
        {{Fault::Silence, -1}, "failed: PLC no response"},
        {{Fault::Exception, 4}, "failed: exception code:0x04"},
        {{Fault::Reset, -1}, "failed: "},
    };
    for (const auto &[fault, text] : faults) {
        setFault(fault);
        EXPECT_TRUE(shows(QLatin1String(text))) << shown.toStdString();
        EXPECT_TRUE(shown.contains(QStringLiteral("\twas 1234\t"))) << shown.toStdString();
        setFault(std::nullopt);
        screen.press({QStringLiteral("F5")});
        EXPECT_TRUE(shows(QStringLiteral("\tlive"))) << shown.toStdString();
    }
    slave.stop();
    EXPECT_TRUE(shows(QStringLiteral("failed: cannot connect to "))) << shown.toStdString();
    ASSERT_TRUE(slave.start());
    EXPECT_TRUE(shows(QStringLiteral("\tlive"))) << shown.toStdString();
}

TEST_F(XServerTest, IsWrittenToByKeysAloneAndOnlyWhenUnlocked)
{
    ASSERT_TRUE(screen.start(arguments(QStringLiteral("HR5"))));
    ASSERT_TRUE(shows(QStringLiteral("\tlive"))) << shown.toStdString();
    const auto type = [&](const char *value) {
        screen.press({QStringLiteral("ctrl+1"), QStringLiteral("Home"), QStringLiteral("ctrl+Return")});
        EXPECT_TRUE(screen.comesToFront(QStringLiteral("Write HR5")));
        screen.type(QLatin1String(value));
        screen.press({QStringLiteral("alt+w")});
    };
    const auto close = [&] {
        screen.press({QStringLiteral("Escape")});
        EXPECT_TRUE(screen.comesToFront(QStringLiteral("driverdesk")));
    };
    type("11");
    close();
    screen.press({QStringLiteral("ctrl+l")});
    type("22");
    EXPECT_TRUE(waitUntil([&] { return slave.value(1, Area::HoldingRegisters, 4) != 0; }));
    close();
    EXPECT_TRUE(shows(QStringLiteral("\t22\t"))) << shown.toStdString();
    EXPECT_EQ(slave.value(1, Area::HoldingRegisters, 4), 22);
}

TEST_F(XServerTest, EndsWithinASecondWhileTheSlaveIsSilent)
{
    setFault(Fault{Fault::Silence, -1});
    QStringList words = arguments(QStringLiteral("HR1"));
    words.replaceInStrings(QStringLiteral("300"), QStringLiteral("60000"));
    ASSERT_TRUE(screen.start(words));
    QElapsedTimer time;
    time.start();
    screen.press({QStringLiteral("ctrl+q")});
    EXPECT_TRUE(screen.ends(5000));
    // With what it takes to press a key.
    EXPECT_LT(time.elapsed(), 1500);
    EXPECT_EQ(screen.exitCode(), 0);
}

TEST_F(XServerTest, ShowsTheDemoWithNoPaneEmpty)
{
    ASSERT_TRUE(screen.start({QStringLiteral("--demo")})) << screen.output().toStdString();
    ASSERT_TRUE(shows(QStringLiteral("boiler temperature"))) << shown.toStdString();
    EXPECT_EQ(shown.count(QLatin1Char('\n')), 19) << shown.toStdString();
    const QImage picture = screen.picture();
    ASSERT_EQ(picture.size(), QSize(1280, 800));
    // Something is drawn in each quarter of the window.
    for (const QRect part : {QRect(0, 0, 640, 400), QRect(640, 0, 640, 400), QRect(0, 400, 640, 400),
                             QRect(640, 400, 640, 400)}) {
        QSet<QRgb> colors;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x)
                colors.insert(picture.pixel(x, y));
        }
        EXPECT_GT(colors.size(), 20);
    }
}

TEST_F(XServerTest, SaysWhatIsWrongWithItsArguments)
{
    EXPECT_FALSE(screen.start({QStringLiteral("XY1")}));
    ASSERT_TRUE(screen.ends(20000));
    EXPECT_EQ(screen.exitCode(), 2);
    EXPECT_TRUE(screen.output().contains("driverdesk: "));
}
