#pragma once

#include "desk/slave/slave_options.h"

#include <QModbusServer>

/// One station: QModbusServer without a transport of its own, with holes and limits.
class ModbusStation : public QModbusServer
{
    Q_OBJECT

public:
    ModbusStation(int station, const SlaveOptions &options, QObject *parent = nullptr);

    /// Executes a request (function and data, no station, no CRC).
    QModbusResponse answer(const QModbusRequest &request);

    quint16 valueAt(Area area, quint16 offset) const;
    void setValueAt(Area area, quint16 offset, quint16 value);

protected:
    bool open() override;
    void close() override;
    bool readData(QModbusDataUnit *unit) const override;
    bool writeData(const QModbusDataUnit &unit) override;

private:
    bool touchesHole(const QModbusDataUnit &unit) const;
    bool isAboveLimit(const QModbusRequest &request) const;

    SlaveMemory m_memory;
    SlaveLimits m_limits;
    QSet<int> m_functions;
};
