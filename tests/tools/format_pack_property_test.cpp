#include "drivers/tools/format_pack.h"
#include "tests/doubles/frames.h"
#include "tests/support/gtest_qt.h"
#include "tests/support/random_data.h"

#include <algorithm>
#include <string>
#include <vector>

/// Random formats, with the bytes that they stand for worked out item by item.

namespace
{

const int MaxItems = 6;
const std::string SingleLetters("cCsSvniIlLVNxX");
const std::string CountedLetters("cCvnVNxX");

bool isOneOf(const char *letters, char letter)
{
    return std::string(letters).find(letter) != std::string::npos;
}

bool isGap(char letter)
{
    return isOneOf("xX", letter);
}

int widthOf(char letter)
{
    return isOneOf("cCxX", letter) ? 1 : isOneOf("sSvn", letter) ? 2 : 4;
}

// What stands on the wire for items that lie in memory, and the other way round.
QByteArray swapped(char letter, const QByteArray &items)
{
    QByteArray result = items;
    if (isOneOf("nN", letter))
        for (int i = 0; i < items.size(); i += widthOf(letter))
            std::reverse(result.begin() + i, result.begin() + i + widthOf(letter));
    return result;
}

QByteArray lowBytes(int value, int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes.append(static_cast<char>((static_cast<unsigned int>(value) >> (8 * i)) & 0xFFu));
    return bytes;
}

// A format with what goes in and comes out.
struct Layout {
    std::string format;
    QByteArray wire;
    std::vector<int> values;
    std::vector<QByteArray> arrays;
};

class FormatPackProperty : public testing::Test
{
protected:
    FormatPackProperty() : trace(__FILE__, __LINE__, random.trace()) {}

    char anyOf(const std::string &letters)
    {
        return letters[static_cast<size_t>(random.between(0, static_cast<int>(letters.size()) - 1))];
    }

    Layout singleItems()
    {
        Layout layout;
        for (int i = random.between(0, MaxItems); i > 0; --i) {
            const char letter = anyOf(SingleLetters);
            const auto value = static_cast<int>(random.number());
            layout.format += letter;
            layout.wire +=
                isGap(letter) ? QByteArray(1, '\0') : swapped(letter, lowBytes(value, widthOf(letter)));
            if (!isGap(letter))
                layout.values.push_back(value);
        }
        layout.values.resize(MaxItems);
        return layout;
    }

    void addCounted(Layout &layout, char letter, int count)
    {
        layout.format +=
            std::string(static_cast<size_t>(random.between(0, 3)), '0') + std::to_string(count) + letter;
        const QByteArray items = random.bytes(count * widthOf(letter));
        layout.wire += isGap(letter) ? QByteArray(count, '\0') : swapped(letter, items);
        if (!isGap(letter))
            layout.arrays.push_back(items);
    }

    Layout countedItems(const std::string &letters)
    {
        Layout layout;
        for (int i = random.between(1, MaxItems); i > 0; --i)
            addCounted(layout, anyOf(letters), random.between(1, 40));
        layout.arrays.resize(MaxItems);
        return layout;
    }

    RandomData random;
    testing::ScopedTrace trace;
};

// Packs over zero bytes, which gaps leave.
QByteArray packed(const Layout &layout)
{
    QByteArray out(layout.wire.size() + 1, '\0');
    auto *bytes = reinterpret_cast<unsigned char *>(out.data());
    const char *format = layout.format.c_str();
    const std::vector<int> &v = layout.values;
    const std::vector<QByteArray> &a = layout.arrays;
    const int size = a.empty() ? DataPack(bytes, format, v[0], v[1], v[2], v[3], v[4], v[5])
                               : DataPack(bytes, format, a[0].constData(), a[1].constData(), a[2].constData(),
                                          a[3].constData(), a[4].constData(), a[5].constData());
    EXPECT_EQ(size, layout.wire.size());
    EXPECT_EQ(out.at(layout.wire.size()), '\0');
    return out.left(layout.wire.size());
}

QByteArray packedAsArray(const Layout &layout)
{
    const char *format = layout.format.c_str();
    const std::vector<int> &v = layout.values;
    const std::vector<QByteArray> &a = layout.arrays;
    return a.empty() ? ByteArrayPack(format, v[0], v[1], v[2], v[3], v[4], v[5])
                     : ByteArrayPack(format, a[0].constData(), a[1].constData(), a[2].constData(),
                                     a[3].constData(), a[4].constData(), a[5].constData());
}

// What comes out of the wire of a layout, each item in memory of its own with one byte after it.
std::vector<QByteArray> unpacked(const Layout &layout)
{
    std::vector<QByteArray> out(MaxItems, QByteArray(layout.wire.size() + 1, '\x77'));
    const auto *in = reinterpret_cast<const unsigned char *>(layout.wire.constData());
    EXPECT_EQ(DataUnpack(in, layout.format.c_str(), out[0].data(), out[1].data(), out[2].data(),
                         out[3].data(), out[4].data(), out[5].data()),
              layout.wire.size());
    return out;
}

void expectItem(const QByteArray &memory, const QByteArray &item)
{
    EXPECT_EQ(memory.left(item.size()), item);
    EXPECT_EQ(memory.at(item.size()), '\x77');
}

} // namespace

TEST_F(FormatPackProperty, SingleItemsThereAndBack)
{
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        const Layout layout = singleItems();
        SCOPED_TRACE(layout.format);
        EXPECT_EQ(packed(layout), layout.wire);
        EXPECT_EQ(packedAsArray(layout), layout.wire);
        const std::vector<QByteArray> out = unpacked(layout);
        size_t next = 0;
        for (const char letter : layout.format) {
            if (isGap(letter))
                continue;
            expectItem(out[next], lowBytes(layout.values[next], widthOf(letter)));
            ++next;
        }
    }
}

TEST_F(FormatPackProperty, CountedItemsThereAndBack)
{
    for (int round = 0; round < 1000 && !HasFailure(); ++round) {
        const Layout layout = countedItems(CountedLetters);
        SCOPED_TRACE(layout.format);
        EXPECT_EQ(packed(layout), layout.wire);
        const std::vector<QByteArray> out = unpacked(layout);
        for (size_t i = 0; i < layout.arrays.size() && !layout.arrays[i].isEmpty(); ++i)
            expectItem(out[i], layout.arrays[i]);
    }
}

TEST_F(FormatPackProperty, CountedItemsIntoANewArray)
{
    for (int round = 0; round < 1000 && !HasFailure(); ++round) {
        const Layout layout = countedItems("cCvnVN");
        SCOPED_TRACE(layout.format);
        EXPECT_EQ(packedAsArray(layout), layout.wire);
    }
}

TEST_F(FormatPackProperty, EveryLetterWithEveryCount)
{
    for (const char letter : CountedLetters) {
        for (int count = 1; count <= 300 && !HasFailure(); ++count) {
            Layout layout;
            addCounted(layout, letter, count);
            layout.arrays.resize(MaxItems);
            SCOPED_TRACE(layout.format);
            EXPECT_EQ(packed(layout), layout.wire);
            EXPECT_EQ(packedAsArray(layout), isGap(letter) ? QByteArray() : layout.wire);
            const std::vector<QByteArray> out = unpacked(layout);
            if (!isGap(letter))
                expectItem(out[0], layout.arrays[0]);
        }
    }
}
