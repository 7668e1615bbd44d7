#include "desk/slave/slave_thread.h"
#include "tests/driverhost/support/host_program.h"
#include "tests/peers/serial_bridge.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

// mbpoll, a master on libmodbus, against the embedded slave. It speaks RTU on serial lines only.

namespace
{

struct Polled {
    int code = -1;
    QString output;
};

class Mbpoll : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(slave.start()) << slave.errorString().toStdString();
        line = std::make_unique<SerialBridge>(slave.port());
        ASSERT_FALSE(line->device().isEmpty());
    }

    Polled poll(const QStringList &options, const QStringList &values = QStringList())
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start("mbpoll", QStringList{"-m", "rtu", "-b", "115200", "-P", "none", "-1", "-q"} + options +
                                    QStringList{line->device()} + values);
        Polled polled;
        if (process.waitForFinished(60000))
            polled.code = process.exitCode();
        polled.output = process.readAll() + process.errorString();
        return polled;
    }

    // "[1]: 5 [2]: 6" of the lines that it prints.
    std::string read(const QStringList &options)
    {
        const Polled polled = poll(options);
        EXPECT_EQ(0, polled.code) << polled.output.toStdString();
        QStringList values;
        const QRegularExpression pattern("\\[(\\d+)\\]:\\s+(-?\\d+)");
        auto matches = pattern.globalMatch(polled.output);
        while (matches.hasNext()) {
            const QRegularExpressionMatch match = matches.next();
            values << match.captured(1) + '=' + match.captured(2);
        }
        return values.join(' ').toStdString();
    }

    void write(const QStringList &options, const QStringList &values)
    {
        const Polled polled = poll(options, values);
        EXPECT_EQ(0, polled.code) << polled.output.toStdString();
    }

    SlaveThread slave;
    std::unique_ptr<SerialBridge> line;
};

TEST_F(Mbpoll, ReadsEveryArea)
{
    slave.setValue(1, Area::HoldingRegisters, 0, 11);
    slave.setValue(1, Area::HoldingRegisters, 2, 13);
    slave.setValue(1, Area::InputRegisters, 65535, 99);
    slave.setValue(1, Area::Coils, 4, 1);
    slave.setValue(1, Area::DiscreteInputs, 5, 1);
    EXPECT_EQ("1=11 2=0 3=13", read({"-t", "4", "-r", "1", "-c", "3"}));
    EXPECT_EQ("65536=99", read({"-t", "3", "-r", "65536"}));
    EXPECT_EQ("4=0 5=1 6=0", read({"-t", "0", "-r", "4", "-c", "3"}));
    EXPECT_EQ("5=0 6=1", read({"-t", "1", "-r", "5", "-c", "2"}));
}

TEST_F(Mbpoll, WritesSinglesAndRuns)
{
    write({"-t", "4", "-r", "7"}, {"1234"});
    EXPECT_EQ(1234, slave.value(1, Area::HoldingRegisters, 6));
    write({"-t", "4", "-r", "8"}, {"21", "22", "23"});
    EXPECT_EQ("7=1234 8=21 9=22 10=23", read({"-t", "4", "-r", "7", "-c", "4"}));
    write({"-t", "0", "-r", "3"}, {"1"});
    write({"-t", "0", "-r", "5"}, {"1", "0", "1"});
    EXPECT_EQ("3=1 4=0 5=1 6=0 7=1", read({"-t", "0", "-r", "3", "-c", "5"}));
}

TEST_F(Mbpoll, SeesExceptionsAndSilence)
{
    SlaveThread &faulty = slave;
    faulty.inject({Fault::Exception, 2});
    const Polled refused = poll({"-t", "4", "-r", "1"});
    EXPECT_TRUE(refused.output.contains("Illegal data address")) << refused.output.toStdString();
    const Polled silent = poll({"-a", "9", "-o", "0.1", "-t", "4", "-r", "1"});
    EXPECT_TRUE(silent.output.contains("timed out")) << silent.output.toStdString();
    faulty.inject({Fault::WrongCrc, -1});
    const Polled spoilt = poll({"-t", "4", "-r", "1"});
    EXPECT_TRUE(spoilt.output.contains("Invalid CRC")) << spoilt.output.toStdString();
    EXPECT_EQ("1=0", read({"-t", "4", "-r", "1"}));
}

} // namespace
