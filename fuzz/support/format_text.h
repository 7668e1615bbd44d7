#pragma once

#include <QByteArray>
#include <QVector>

namespace fuzz
{

/// Formats of the packers, read without any of their code.
struct Item {
    char letter;
    bool counted;
    int start;
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
