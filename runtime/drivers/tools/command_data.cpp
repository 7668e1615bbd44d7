#include "drivers/tools/command_data.h"

#include "drivers/qt/qt_lines.h"
#include "drivers/tools/bit_array.h"

#include <limits>

namespace
{

// Rounds up, without adding before the division: that could wrap.
unsigned int dividedUp(unsigned int value, unsigned int divisor)
{
    return value / divisor + (value % divisor != 0 ? 1 : 0);
}

int times(int itemSize, int count)
{
    return boundedInt(qint64(itemSize) * count);
}

} // namespace

bool isBitCommand(const CommunicatorCommand &command)
{
    return command.dataType == BitItem;
}

bool isByteCommand(const CommunicatorCommand &command)
{
    return command.dataType == ByteItem;
}

bool isWordCommand(const CommunicatorCommand &command)
{
    return command.dataType == WordItem;
}

bool isDoubleWordCommand(const CommunicatorCommand &command)
{
    return command.dataType == DoubleWordItem;
}

bool isBlockCommand(const CommunicatorCommand &command)
{
    return command.dataType == BlockItem;
}

bool getBitData(const QByteArray &data)
{
    return getBit(data, 0);
}

int GetSafeDataLen(const CommunicatorCommand &command)
{
    switch (command.dataType) {
    case BitItem:
    case SecondBitItem: return static_cast<int>(dividedUp(static_cast<unsigned int>(command.count), 8));
    case ByteItem:
    case BlockItem: return command.count;
    case WordItem: return times(2, command.count);
    case DoubleWordItem: return times(4, command.count);
    case EightByteItem: return times(8, command.count);
    default: return 0;
    }
}

QByteArray ToSafeData(const CommunicatorCommand &command, const QByteArray &data)
{
    const int length = GetSafeDataLen(command);
    if (length <= data.size())
        return data.left(length);
    return data + QByteArray(length - data.size(), '\0');
}

unsigned int NumOfBitsToNumOfBytes(unsigned int startBit, unsigned int numBits)
{
    return dividedUp(startBit + numBits, 8);
}

unsigned int NumOfBitsToNumOfWords(unsigned int startBit, unsigned int numBits)
{
    return dividedUp(startBit + numBits, 16);
}

unsigned int NumOfBitsToNumOfDWords(unsigned int startBit, unsigned int numBits)
{
    return dividedUp(startBit + numBits, 32);
}

unsigned int NumOfBytesToNumOfWords(unsigned int numBytes)
{
    return dividedUp(numBytes, 2);
}

unsigned int NumOfBytesToNumOfDWords(unsigned int numBytes)
{
    return dividedUp(numBytes, 4);
}

unsigned int NumOfBytesToNumOfQuadWords(unsigned int numBytes)
{
    return dividedUp(numBytes, 8);
}
