#include "desk/types/byte_order.h"
#include "desk/types/value_parse.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <modbus/modbus.h>

// Values in registers, judged by the helpers of libmodbus.

namespace
{

std::vector<quint16> laid(const char *text, const char *typeName, const char *orderName)
{
    const ValueType type = parseType(QLatin1String(typeName)).valueOr(ValueType());
    const Result<QByteArray> value = parseValue(QLatin1String(text), type);
    const Result<ByteOrder> order = parseOrder(QLatin1String(orderName), type);
    EXPECT_TRUE(value && order) << text << typeName << orderName;
    return registersOf({value.valueOr({})}, type, order.valueOr(ByteOrder()));
}

} // namespace

// Only its readers judge: its writers swap the bytes of every word on little-endian processors, and
// from 3.1.8 on its readers do so too.
TEST(LibmodbusValues, FloatsInEveryOrder)
{
    if (LIBMODBUS_VERSION_CHECK(3, 1, 8))
        GTEST_SKIP() << "libmodbus " << LIBMODBUS_VERSION_STRING
                     << " reads other orders than their names say";
    const struct {
        const char *order;
        float (*get)(const uint16_t *);
    } cases[] = {{"ABCD", modbus_get_float_abcd},
                 {"CDAB", modbus_get_float_cdab},
                 {"BADC", modbus_get_float_badc},
                 {"DCBA", modbus_get_float_dcba}};
    for (const auto &one : cases) {
        for (const char *text : {"1", "-0.1", "21.5", "1e-30", "3.4028235e+38"})
            EXPECT_EQ(one.get(laid(text, "f32", one.order).data()), std::strtof(text, nullptr))
                << text << one.order;
    }
}

TEST(LibmodbusValues, ItsOwnFloatsAreTheDriversOrder)
{
    std::vector<quint16> theirs(2);
    modbus_set_float(21.5F, theirs.data());
    EXPECT_EQ(theirs, laid("21.5", "f32", "CDAB"));
}

TEST(LibmodbusValues, WholeNumbersWithTheHighWordFirst)
{
    const std::vector<quint16> two = laid("0x12345678", "u32", "ABCD");
    EXPECT_EQ(MODBUS_GET_INT32_FROM_INT16(two.data(), 0), 0x12345678);
    const std::vector<quint16> four = laid("0x0123456789ABCDEF", "i64", "ABCD");
    EXPECT_EQ(MODBUS_GET_INT64_FROM_INT16(four.data(), 0), 0x0123456789ABCDEF);
}
