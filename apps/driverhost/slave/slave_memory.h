#pragma once

#include "slave/slave_area.h"

#include <QList>
#include <QString>

/// What a slave's memory holds when it starts, and which addresses do not exist. Where nothing is said an
/// address exists and holds 0.
class SlaveMemory
{
public:
    struct Value {
        int station;
        SlaveArea area;
        quint16 offset;
        quint16 value;
    };

    /// \a station 0 means every station. Bits are 0 or 1.
    void setValue(int station, SlaveArea area, quint16 offset, quint16 value);
    /// Requests that touch one of these addresses get exception 2.
    void addHole(const AreaRange &range);

    /// Takes values and holes from a text file; on failure false, with the line and what is wrong in \a
    /// error.
    ///
    ///     # addresses as people write them, one-based; a station in front where not all are meant
    ///     HR100 = 1 -2 0x1F
    ///     2-DO1 = 1 0 1
    ///     hole IR200..299
    bool loadFile(const QString &path, QString *error);

    const QList<Value> &values() const { return initialValues; }
    bool isHole(int station, SlaveArea area, int first, int last) const;

private:
    bool loadLine(const QString &line, QString *error);

    QList<Value> initialValues;
    QList<AreaRange> holes;
};
