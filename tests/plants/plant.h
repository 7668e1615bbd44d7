#pragma once

#include "desk/slave/modbus_station.h"
#include "desk/slave/rtu_deframer.h"
#include "tests/simulation/virtual_time.h"

#include <map>
#include <memory>
#include <random>

/// One connection, as a plant sees it.
class PlantWire
{
public:
    virtual ~PlantWire() = default;
    virtual void deliver(const QByteArray &bytes) = 0;
    virtual void end(bool isReset) = 0;
};

/// What a plant is made of, and what is wrong with it. Times are microseconds.
struct PlantOptions {
    enum class Port { Listens, UnknownHost, Refuses, Unreachable, ClosesAtOnce };
    enum class Protocol {
        Rtu,
        ModbusTcp,
        ModbusAscii,
        Http,
        Tls,
        Ssh,
        Banner,
        Hangs,
        EndsAfterRequest,
        EchoOnly
    };
    enum class Damage { None, Beginning, End, Anywhere, Garbled };

    quint32 seed = 1;
    Port port = Port::Listens;
    qint64 heldFor = 0; ///< since the first connection: new ones are ended at once
    Protocol protocol = Protocol::Rtu;
    QByteArray greeting; ///< of services
    SlaveOptions slave;  ///< stations, memory, limits, functions, latency and faults
    qint64 jitter = 0;   ///< that a reply may take longer than the latency
    QByteArray registration;
    QByteArray heartbeat;
    qint64 heartbeatPeriod = 0;
    int otherStation = -1; ///< that another master asks
    qint64 otherPeriod = 0;
    qint64 pauseNeeded = 0; ///< after a reply requests are ignored for so long
    int absentCode = 0;     ///< exception for stations that are not there; 0: silence
    qint64 absentAfter = 0;
    qint64 idleTime = 0; ///< after which a connection is ended; 0: never
    Damage damage = Damage::None;
    double damagedShare = 0;
};

/// A gateway and what is behind it: the stations of the embedded slave, on any clock, with the faults of its
/// plan and those of gateways and lines.
class Plant
{
public:
    Plant(VirtualTime &time, const PlantOptions &options);

    const PlantOptions &options() const { return m_options; }
    /// A master connects; the one before is forgotten. False when it is not taken.
    bool accept(PlantWire &wire);
    void closed();
    void receive(const QByteArray &bytes);
    ModbusStation &station(int number) { return *m_stations.at(number); }
    /// Requests of functions that write.
    int writes() const { return m_writes; }

private:
    void after(qint64 delay, const std::function<void(Plant &)> &event);
    void send(const QByteArray &bytes);
    void end(bool isReset);
    void noteTraffic();
    void beat();
    void letOtherAsk();
    void receiveRtu(const QByteArray &bytes);
    void takeRequests();
    void answer(const QByteArray &request);
    void sendReply(const QByteArray &request, const QByteArray &reply);
    void serve(const QByteArray &bytes);
    QByteArray execute(int station, const QByteArray &pdu);
    QByteArray damaged(QByteArray bytes);
    int draw(int low, int high);

    VirtualTime &m_time;
    PlantOptions m_options;
    std::mt19937 m_random;
    std::map<int, std::unique_ptr<ModbusStation>> m_stations;
    PlantWire *m_wire = nullptr;
    std::shared_ptr<int> m_connection = std::make_shared<int>(0); // its number
    RtuDeframer m_deframer;
    QByteArray m_received; // by a service
    QByteArray m_previousReply;
    qint64 m_firstConnectedAt = -1;
    qint64 m_ignoresUntil = -1;
    qint64 m_busyUntil = 0;
    quint64 m_traffic = 0;
    quint64 m_requests = 0; // segments of them
    int m_writes = 0;
};
