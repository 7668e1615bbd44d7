#include "tests/peers/exercise.h"

#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{

QByteArray packed(int count, const std::function<bool(int)> &bitAt)
{
    QByteArray bytes((count + 7) / 8, '\0');
    for (int i = 0; i < count; ++i) {
        if (bitAt(i))
            bytes[i / 8] = static_cast<char>(bytes.at(i / 8) | 1 << i % 8);
    }
    return bytes;
}

class Exercise
{
public:
    explicit Exercise(DriverLink &driverLink) : link(driverLink) {}

    void readInputs();
    void writeBits();
    void writeRegisters();

private:
    void expectRead(int dataType, int count, const QString &address, const QByteArray &expected)
    {
        EXPECT_EQ(expected, link.read(dataType, count, address))
            << address.toStdString() << ": " << link.error().toStdString();
    }

    void expectWritten(int dataType, int count, const QString &address, const QByteArray &data)
    {
        EXPECT_TRUE(link.write(dataType, count, address, data))
            << address.toStdString() << ": " << link.error().toStdString();
    }

    void expectWrittenAndReadBack(int dataType, int count, const QString &target, const QString &source,
                                  const QByteArray &data)
    {
        expectWritten(dataType, count, target, data);
        expectRead(dataType, count, source, data);
    }

    DriverLink &link;
};

// Functions 2 and 4, to their limits and to the last address.
void Exercise::readInputs()
{
    for (const int count : {1, 7, 8, 9, 2000}) {
        expectRead(Bits, count, "DI11", packed(count, [](int i) { return exerciseInput(10 + i); }));
        expectRead(Bits, count, QStringLiteral("DI%1").arg(65537 - count),
                   packed(count, [count](int i) { return exerciseInput(65536 - count + i); }));
    }
    expectRead(Bytes, 8, "DI101", packed(64, [](int i) { return exerciseInput(100 + i); }));
    for (const int count : {1, 2, 125}) {
        QByteArray words;
        for (int i = 65536 - count; i < 65536; ++i) {
            words.append(static_cast<char>(exerciseInputRegister(i, 1) & 0xFF));
            words.append(static_cast<char>(exerciseInputRegister(i, 1) >> 8));
        }
        expectRead(Words, count, QStringLiteral("IR%1").arg(65537 - count), words);
        expectRead(Bytes, 2 * count, QStringLiteral("IR%1").arg(65537 - count), words);
    }
}

// Functions 1, 5 and 15.
void Exercise::writeBits()
{
    for (const int count : {1, 7, 8, 9, 1968}) {
        const QByteArray ones = packed(count, [](int i) { return i % 2 == 0 || i % 5 == 0; });
        expectWrittenAndReadBack(Bits, count, "DO21", "DO21", ones);
        expectWrittenAndReadBack(Bits, count, QStringLiteral("DO%1").arg(65537 - count),
                                 QStringLiteral("FN5DO%1").arg(65537 - count), ones);
    }
    const QByteArray twelve = QByteArray::fromHex("A50C");
    expectWrittenAndReadBack(Bits, 12, "FN5DO4001", "DO4001", twelve);
    expectWrittenAndReadBack(Bits, 64, "DO101", "DO101", "12345678");
    expectRead(Bytes, 8, "DO101", "12345678");
}

// Functions 3, 6 and 16, in every layout.
void Exercise::writeRegisters()
{
    for (const int count : {1, 2, 61, 123}) {
        QByteArray words;
        for (int i = 0; i < 2 * count; ++i)
            words.append(static_cast<char>(i * 31 + count));
        expectWrittenAndReadBack(Words, count, "HR1", "HR1", words);
        expectWrittenAndReadBack(Words, count, QStringLiteral("HR%1").arg(65537 - count),
                                 QStringLiteral("FN6HR%1").arg(65537 - count), words);
        expectWrittenAndReadBack(Bytes, 2 * count, "HR1001", "HR1001", words);
    }
    const QByteArray eight = QByteArray::fromHex("0123456789ABCDEF");
    expectWrittenAndReadBack(Words, 4, "FN6HR2001", "HR2001", eight);
    expectWrittenAndReadBack(DoubleWords, 2, "HR2011", "HR2011", eight);
    expectWrittenAndReadBack(DoubleWords, 2, "FN6HR2021", "HR2021", eight);
    expectWrittenAndReadBack(DoubleWords, 2, "HR2031SW", "HR2031SW", eight);
    expectRead(DoubleWords, 2, "HR2031", QByteArray::fromHex("45670123CDEF89AB"));
    expectWrittenAndReadBack(Bytes, 5, "HR2041", "HR2041", "hello");
    expectRead(Bytes, 6, "HR2041", QByteArray("hello\0", 6));
    expectWritten(Words, 1, "HR2051", QByteArray::fromHex("0FF0"));
    expectWrittenAndReadBack(Bits, 6, "HR2051.2", "HR2051.2", QByteArray::fromHex("2A"));
    expectRead(Words, 1, "HR2051", QByteArray::fromHex("ABF0"));
    expectWrittenAndReadBack(Bits, 3, "FN6HR2051.15", "HR2051.15", QByteArray::fromHex("04"));
    expectRead(Words, 2, "HR2051", QByteArray::fromHex("AB700200"));
}

} // namespace

bool exerciseInput(int offset)
{
    return offset % 3 == 0;
}

int exerciseInputRegister(int offset, int station)
{
    return (offset * 7 + station) & 0xFFFF;
}

QStringList exerciseTags()
{
    QStringList tags;
    for (int i = 101; i <= 164; ++i)
        tags << QStringLiteral("DO%1").arg(i) << QStringLiteral("DI%1").arg(i);
    return tags;
}

void exerciseEveryFunction(DriverLink &link)
{
    Exercise exercise(link);
    exercise.readInputs();
    exercise.writeBits();
    exercise.writeRegisters();
}
