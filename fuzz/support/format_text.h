#pragma once

#include <QByteArray>
#include <QVector>

namespace fuzz
{

/// Formats of the packers, taken apart anew.
struct Item {
    char letter;
    bool counted;
    int begin;
    int size;
    int width;

    bool isGap() const { return letter == 'x' || letter == 'X'; }
};

struct Format {
    QVector<Item> items;
    int size = 0;
    bool countedError = false;
    bool letterError = false;
    bool isTooLarge = false;

    bool hasError() const { return countedError || letterError; }
};

Format parseFormat(const QByteArray &text);

} // namespace fuzz
