#pragma once

#include "desk/items/area_range.h"
#include "desk/slave/fault_plan.h"
#include "desk/slave/slave_memory.h"
#include "desk/wire/trace.h"

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QMap>
#include <QSet>

/// Requests for more items than this get exception 3; the protocol's own limits hold in any case.
struct SlaveLimits {
    int registers = modbus::MaxReadRegisters;
    int bits = modbus::MaxReadBits;
};

/// What a gateway in front of the slave does of its own accord.
struct GatewayHabits {
    /// Sent on every new connection.
    QByteArray banner;
    /// Sent on every connection, so many milliseconds apart.
    QByteArray heartbeat;
    int heartbeatMs = 0;
    /// Takes one connection at a time, and none for so many milliseconds after it has ended; -1: any number.
    int slotHeldMs = -1;
    /// Closes connections on which nothing has come for so many milliseconds; 0: none.
    int idleCloseMs = 0;
};

struct SlaveOptions {
    QHostAddress address = QHostAddress::LocalHost;
    /// 0: one that is free.
    quint16 port = 0;
    /// Each has a memory of its own. Requests to others are not answered, those to station 0 are executed by
    /// all and not answered.
    QList<int> stations = {1};
    SlaveMemory memory;
    SlaveLimits limits;
    /// Requests for other functions get exception 1.
    QSet<int> functions = {
        modbus::ReadCoils,          modbus::ReadDiscreteInputs, modbus::ReadHoldingRegisters,
        modbus::ReadInputRegisters, modbus::WriteSingleCoil,    modbus::WriteSingleRegister,
        modbus::Diagnostics,        modbus::WriteMultipleCoils, modbus::WriteMultipleRegisters};
    /// How long the device takes for a reply.
    int latencyMs = 0;
    GatewayHabits gateway;
    FaultPlan faults;
    TraceSink trace;
};

/// What a slave did since it started.
struct SlaveCounts {
    quint64 connections = 0;
    int openConnections = 0;
    /// Ended at once, since the only slot was taken.
    quint64 rejected = 0;
    /// Whole requests to a station of this slave, broadcasts included.
    quint64 requests = 0;
    quint64 broadcasts = 0;
    /// Requests to other stations.
    quint64 foreign = 0;
    quint64 exceptions = 0;
    /// Bytes that belonged to no request.
    quint64 droppedBytes = 0;
    QMap<Fault::Kind, quint64> faults;
};
