#include "desk/types/byte_order.h"
#include "desk/types/value_parse.h"
#include "tests/peers/test_files.h"
#include "tests/peers/text_printing.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QSet>

// Values in registers, judged by a library that nobody here wrote.

namespace
{

const int MaxRunMs = 60000;

QStringList judgedLines()
{
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"), {sourceFile("tests/desk/types/pymodbus_values.py")});
    python.waitForFinished(MaxRunMs);
    EXPECT_EQ(python.readAllStandardError().toStdString(), "");
    return QString::fromUtf8(python.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

std::vector<quint16> registersIn(const QStringList &words)
{
    std::vector<quint16> registers;
    for (const QString &word : words)
        registers.push_back(static_cast<quint16>(word.toUInt(nullptr, 16)));
    return registers;
}

// Values with commas between them; "_" stands for a blank.
std::vector<QByteArray> valuesOf(QString texts, const ValueType &type)
{
    std::vector<QByteArray> values;
    for (const QString &text : texts.replace(QLatin1Char('_'), QLatin1Char(' ')).split(QLatin1Char(','))) {
        const Result<QByteArray> value = parseValue(text, type, {TextEncoding::Latin1, true});
        EXPECT_TRUE(value) << value.errorText().toStdString();
        values.push_back(value.valueOr({}));
    }
    return values;
}

} // namespace

TEST(ValueJudges, PymodbusLaysValuesIntoTheSameRegisters)
{
    QSet<QString> judged;
    for (const QString &line : judgedLines()) {
        const QStringList words = line.split(QLatin1Char(' '));
        const ValueType type = parseType(words.at(0)).valueOr(ValueType());
        const Result<ByteOrder> order = parseOrder(words.at(1), type);
        ASSERT_TRUE(order) << line.toStdString();
        const std::vector<QByteArray> values = valuesOf(words.at(2), type);
        const std::vector<quint16> registers = registersIn(words.mid(3));
        EXPECT_EQ(registersOf(values, type, *order), registers) << line.toStdString();
        EXPECT_EQ(valuesIn(registers, type, *order, static_cast<int>(values.size())), values)
            << line.toStdString();
        judged += words.at(0) + words.at(1);
    }
    EXPECT_EQ(judged.size(), 17 * 4 + 2 + 3);
}
