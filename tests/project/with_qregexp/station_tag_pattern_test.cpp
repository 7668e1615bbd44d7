#include "drivers/modbus_rtu_slave_over_tcp/project/station_tag.h"

#include <gtest/gtest.h>

#include <QRegExp>
#include <QStringList>

namespace
{

struct Parts {
    bool isTag;
    StationTag tag;
};

Parts partsByPattern(QRegExp &pattern, const QString &text)
{
    Parts parts = {pattern.indexIn(text) == 0, {0, false, 0}};
    if (parts.isTag) {
        parts.tag.station = pattern.cap(1).toUInt();
        parts.tag.isCoil = !pattern.cap(2).startsWith(QLatin1String("DI"), Qt::CaseInsensitive);
        parts.tag.number = pattern.cap(3).toUInt();
    }
    return parts;
}

Parts partsOf(const QString &text)
{
    Parts parts = {false, {0, false, 0}};
    parts.isTag = splitStationTag(text, parts.tag);
    return parts;
}

bool operator==(const Parts &left, const Parts &right)
{
    return left.isTag == right.isTag && left.tag.station == right.tag.station &&
           left.tag.isCoil == right.tag.isCoil && left.tag.number == right.tag.number;
}

} // namespace

// Every character in every place of every kind of tag, and put in between there.
TEST(StationTagPattern, EveryCharacterInEveryPlace)
{
    QRegExp pattern(QLatin1String("^(\\d+)-((?:FN5)?DO|DI)(\\d+)"), Qt::CaseInsensitive);
    const QStringList texts = QStringList() << QLatin1String("12-DI34") << QLatin1String("2-DO5")
                                            << QLatin1String("2-FN5DO5");
    int tags = 0;
    for (int i = 0; i < texts.size(); ++i) {
        const QString &text = texts.at(i);
        for (int place = 0; place <= text.size(); ++place) {
            for (uint code = 0; code <= 0xFFFF; ++code) {
                const QChar character(static_cast<ushort>(code));
                const QString inserted = text.left(place) + character + text.mid(place);
                ASSERT_TRUE(partsOf(inserted) == partsByPattern(pattern, inserted))
                    << i << ' ' << place << ' ' << code;
                QString replaced = text;
                if (place < text.size())
                    replaced[place] = character;
                ASSERT_TRUE(partsOf(replaced) == partsByPattern(pattern, replaced))
                    << i << ' ' << place << ' ' << code;
                tags += partsOf(replaced).isTag ? 1 : 0;
            }
        }
    }
    EXPECT_GT(tags, 3 * 0x10000) << "hardly any of the texts was a tag";
}

// Digits beyond the first plane are two characters, neither of which is a digit.
TEST(StationTagPattern, DigitsBeyondTheFirstPlane)
{
    QRegExp pattern(QLatin1String("^(\\d+)-((?:FN5)?DO|DI)(\\d+)"), Qt::CaseInsensitive);
    const char *const texts[] = {"\U0001D7D8-DI5", "2-DI\U0001D7D8", "2-DI5\U0001D7D8"};
    for (const char *const text : texts) {
        const QString tag = QString::fromUtf8(text);
        EXPECT_TRUE(partsOf(tag) == partsByPattern(pattern, tag)) << text;
    }
}
