#include "desk/slave/modbus_station.h"

namespace
{

const QModbusDataUnit::RegisterType tables[] = {QModbusDataUnit::DiscreteInputs, QModbusDataUnit::Coils,
                                                QModbusDataUnit::InputRegisters,
                                                QModbusDataUnit::HoldingRegisters};

QModbusDataUnit::RegisterType tableOf(Area area)
{
    return tables[static_cast<int>(area)];
}

Area areaOf(QModbusDataUnit::RegisterType table)
{
    return static_cast<Area>(static_cast<int>(table) - static_cast<int>(tables[0]));
}

// A unit of a count cannot have 65536 entries, which takes address 65535; one of values can.
QModbusDataUnitMap wholeMap()
{
    QModbusDataUnitMap map;
    for (const QModbusDataUnit::RegisterType table : tables)
        map.insert(table, QModbusDataUnit(table, 0, QVector<quint16>(modbus::AddressSpace)));
    return map;
}

} // namespace

ModbusStation::ModbusStation(int station, const SlaveOptions &options, QObject *parent)
    : QModbusServer(parent),
      m_memory(options.memory),
      m_limits(options.limits),
      m_functions(options.functions)
{
    setMap(wholeMap());
    setServerAddress(station);
    for (const SlaveMemory::Value &value : options.memory.values()) {
        if (value.station == 0 || value.station == station)
            setValueAt(value.area, value.offset, value.value);
    }
    connectDevice();
}

bool ModbusStation::open()
{
    setState(ConnectedState);
    return true;
}

void ModbusStation::close()
{
    setState(UnconnectedState);
}

QModbusResponse ModbusStation::answer(const QModbusRequest &request)
{
    if (!m_functions.contains(request.functionCode()))
        return QModbusExceptionResponse(request.functionCode(), QModbusPdu::IllegalFunction);
    if (isAboveLimit(request))
        return QModbusExceptionResponse(request.functionCode(), QModbusPdu::IllegalDataValue);
    return processRequest(request);
}

bool ModbusStation::isAboveLimit(const QModbusRequest &request) const
{
    quint16 address = 0;
    quint16 quantity = 0;
    request.decodeData(&address, &quantity);
    switch (request.functionCode()) {
    case QModbusPdu::ReadCoils:
    case QModbusPdu::ReadDiscreteInputs:
    case QModbusPdu::WriteMultipleCoils: return quantity > m_limits.bits;
    case QModbusPdu::ReadHoldingRegisters:
    case QModbusPdu::ReadInputRegisters:
    case QModbusPdu::WriteMultipleRegisters: return quantity > m_limits.registers;
    default: return false;
    }
}

bool ModbusStation::touchesHole(const QModbusDataUnit &unit) const
{
    const int first = unit.startAddress();
    const int last = first + static_cast<int>(unit.valueCount()) - 1;
    return m_memory.isHole(serverAddress(), areaOf(unit.registerType()), first, last);
}

bool ModbusStation::readData(QModbusDataUnit *unit) const
{
    return !touchesHole(*unit) && QModbusServer::readData(unit);
}

bool ModbusStation::writeData(const QModbusDataUnit &unit)
{
    return !touchesHole(unit) && QModbusServer::writeData(unit);
}

// A coil that a request has set holds what the request said.
quint16 ModbusStation::valueAt(Area area, quint16 offset) const
{
    QModbusDataUnit unit(tableOf(area), offset, quint16(1));
    QModbusServer::readData(&unit);
    const bool isBit = area == Area::Coils || area == Area::DiscreteInputs;
    return isBit ? quint16(unit.value(0) != 0) : unit.value(0);
}

void ModbusStation::setValueAt(Area area, quint16 offset, quint16 value)
{
    QModbusServer::writeData(QModbusDataUnit(tableOf(area), offset, QVector<quint16>{value}));
}
