#include "desk/items/item_data.h"

#include "drivers/qt/qt_lines.h"
#include "drivers/tools/bit_array.h"

quint32 valueAt(const QByteArray &data, ItemKind kind, int position)
{
    if (isBitKind(kind))
        return getBit(data, position) ? 1 : 0;
    const int size = GetSafeDataLen(CommunicatorCommand{kind, 1, QString()});
    quint32 value = 0;
    for (int byte = size - 1; byte >= 0; --byte)
        value = value << modbus::ByteBits | static_cast<unsigned char>(data.at(position * size + byte));
    return value;
}

std::vector<quint32> valuesIn(const QByteArray &data, const Items &items)
{
    std::vector<quint32> values;
    values.reserve(static_cast<size_t>(qMax(items.count, 0)));
    for (int i = 0; i < items.count; ++i)
        values.push_back(valueAt(data, items.kind, i));
    return values;
}

QByteArray dataOf(const std::vector<quint32> &values, ItemKind kind)
{
    const CommunicatorCommand command{kind, static_cast<int>(values.size()), QString()};
    QByteArray data(GetSafeDataLen(command), '\0');
    const int size = values.empty() ? 0 : sizeOf(data) / static_cast<int>(values.size());
    for (int i = 0; i < command.count; ++i) {
        const quint32 value = values[static_cast<size_t>(i)];
        if (isBitKind(kind)) {
            setBit(data, i, value != 0);
            continue;
        }
        for (int byte = 0; byte < size; ++byte)
            data[i * size + byte] = static_cast<char>(value >> (modbus::ByteBits * byte));
    }
    return data;
}
