#include "tests/driverhost/support/host_program.h"

#include <gtest/gtest.h>

#include <QSet>

// Types and orders against registers that pymodbus has laid out, and takes apart again.

namespace
{

const char Python[] = "/usr/bin/python3";
const int Patience = 60000;

class TypedSlave
{
public:
    TypedSlave()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(Python, {sourceFile("tests/driverhost/on_site/pymodbus_typed_slave.py")});
        m_port = readLine();
        for (QString line = readLine(); line != "end" && !line.isEmpty(); line = readLine())
            m_items += line;
    }
    ~TypedSlave()
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(Patience))
            m_process.kill();
        m_process.waitForFinished(Patience);
    }
    TypedSlave(const TypedSlave &) = delete;
    TypedSlave &operator=(const TypedSlave &) = delete;

    QString target() const { return QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(m_port); }
    // "HR1:u16@ABCD 4660".
    const QStringList &items() const { return m_items; }
    // What it takes for the value in its registers.
    QString valueOf(const QString &type, const QString &order, int number)
    {
        m_process.write(QStringLiteral("%1 %2 %3\n").arg(type, order).arg(number).toLatin1());
        return readLine();
    }

private:
    QString readLine()
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(Patience))
            continue;
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }

    QProcess m_process;
    QString m_port;
    QStringList m_items;
};

} // namespace

TEST(TypedInterop, ReadsWhatPymodbusHasLaidOut)
{
    TypedSlave slave;
    ASSERT_GT(slave.items().size(), 70) << "wants python3-pymodbus and python3-serial-asyncio for " << Python;
    QStringList words{"read", slave.target(), "--format", "csv"};
    for (const QString &item : slave.items())
        words += item.section(' ', 0, 0);
    const HostRun run = runHost(words);
    EXPECT_EQ(run.code, 0) << run.err.toStdString();
    const QStringList lines = run.out.split('\n', Qt::SkipEmptyParts).mid(1);
    ASSERT_EQ(lines.size(), slave.items().size());
    QSet<QString> kinds;
    for (int i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines.at(i).section(',', 4, 4), slave.items().at(i).section(' ', 1))
            << slave.items().at(i).toStdString();
        kinds += slave.items().at(i).section(':', 1).section(' ', 0, 0);
    }
    EXPECT_EQ(kinds.size(), 8 * 4 + 16) << "types and orders";
}

TEST(TypedInterop, WritesWhatPymodbusTakesForTheSame)
{
    TypedSlave slave;
    const struct {
        const char *type;
        const char *value;
    } cases[] = {{"u16", "51966"},
                 {"i16", "-12345"},
                 {"u32", "3735928559"},
                 {"i32", "-123456789"},
                 {"f32", "-123.25"},
                 {"u64", "16045690984503098046"},
                 {"i64", "-81985529216486895"},
                 {"f64", "123.456"}};
    QStringList words{"write", slave.target()};
    int number = 1001;
    for (const auto &one : cases) {
        for (const char *order : {"ABCD", "CDAB", "BADC", "DCBA"}) {
            words += QStringLiteral("HR%1:%2@%3=%4").arg(number).arg(one.type, order, one.value);
            number += 4;
        }
    }
    const HostRun run = runHost(words);
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    number = 1001;
    for (const auto &one : cases) {
        for (const char *order : {"ABCD", "CDAB", "BADC", "DCBA"}) {
            EXPECT_EQ(slave.valueOf(one.type, order, number), one.value) << one.type << order;
            number += 4;
        }
    }
}
