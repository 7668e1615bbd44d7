#pragma once

#include "desk/items/area_range.h"

#include <QList>

/// What a slave's memory holds when it starts, and which addresses do not exist. Where nothing is said an
/// address exists and holds 0.
class SlaveMemory
{
public:
    struct Value {
        int station;
        Area area;
        quint16 offset;
        quint16 value;
    };

    /// \a station 0 means every station. Bits are 0 or 1.
    void setValue(int station, Area area, quint16 offset, quint16 value);
    /// Requests that touch one of these addresses get exception 2.
    void addHole(const AreaRange &range);

    /// Takes values and holes from a text file; the error names the line and what is wrong with it.
    ///
    ///     # addresses as people write them, from 1 on; a station in front where not all are meant
    ///     HR100 = 1 -2 0x1F
    ///     2-DO1 = 1 0 1
    ///     hole IR200..299
    Result<> loadFile(const QString &path);

    const QList<Value> &values() const { return m_values; }
    bool isHole(int station, Area area, int first, int last) const;

private:
    Result<> loadLine(const QString &line);

    QList<Value> m_values;
    QList<AreaRange> m_holes;
};
