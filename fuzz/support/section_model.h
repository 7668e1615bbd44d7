#pragma once

#include <QByteArray>
#include <QList>

#include <limits>

namespace fuzz
{

/// A frame of sections as TxPackage describes it, by recursion instead of its walk.
struct SectionModel {
    QByteArray bytes;
    QList<int> sizes;

    void append(const QByteArray &section)
    {
        bytes += section;
        sizes += section.size();
    }

    int sum(int count) const
    {
        qint64 total = 0;
        for (int i = 0; i < count; ++i)
            total += sizes.at(i);
        return static_cast<int>(
            qBound<qint64>(std::numeric_limits<int>::min(), total, std::numeric_limits<int>::max()));
    }

    QByteArray section(int i, int depth = 0) const
    {
        if (i < 0 || i >= sizes.size())
            return QByteArray();
        // mid() takes what lies before the first byte off the length.
        return bytes.mid(sum(i), sizeOf(i, depth));
    }

    // A size that depends on itself, and one that is nowhere, is 0.
    int sizeOf(int i, int depth = 0) const
    {
        const int stored = sizes.at(i);
        if (depth > sizes.size() || stored <= -sizes.size())
            return 0;
        if (stored >= 0)
            return stored;
        const QByteArray source = section(-stored, depth + 1);
        return source.isEmpty() ? 0 : static_cast<unsigned char>(source.at(0));
    }

    int sumOfBytes() const
    {
        int sum = 0;
        for (const char byte : bytes)
            sum += static_cast<unsigned char>(byte);
        return sum & 0xFF;
    }

    int xorOfBytes(int count) const
    {
        int result = 0;
        for (int i = 0; i < count; ++i)
            result ^= static_cast<unsigned char>(bytes.at(i));
        return result;
    }
};

} // namespace fuzz
