#include "tests/plants/plant_set.h"

#include "tests/plants/plant_drawing.h"

namespace
{

using Port = PlantOptions::Port;
using Protocol = PlantOptions::Protocol;
using Damage = PlantOptions::Damage;

// What is wrong with a plant: each kind changes a good one.
struct Kind {
    const char *faults; ///< with commas between them
    void (*make)(PlantDrawing &plant);
};

void giveHeartbeat(PlantDrawing &plant)
{
    plant->heartbeat = plant.letters(2, 6);
    plant->heartbeatPeriod = plant.draw(1500, 6000) * Millisecond;
}

void moveStation(PlantDrawing &plant)
{
    const int station = plant.draw(0, 3) == 0 ? 247 : plant.draw(2, 10);
    plant.moveTo(station);
}

void makeLate(PlantDrawing &plant)
{
    plant->slave.latencyMs = plant.draw(3200, 4200);
}

void makeLateNow(PlantDrawing &plant)
{
    plant.of().doctor.exchange.timeout = plant.draw(100, 300);
    plant->slave.latencyMs = plant.draw(400, 700);
    plant->jitter = 50 * Millisecond;
}

void needPause(PlantDrawing &plant)
{
    plant->pauseNeeded = plant.draw(40, 500) * Millisecond;
}

void damage(PlantDrawing &plant, Damage damage)
{
    plant->damage = damage;
    plant->damagedShare = plant.draw(20, 45) / 100.0;
}

void askAsOther(PlantDrawing &plant)
{
    plant->otherStation = plant.draw(11, 40);
    plant->otherPeriod = plant.draw(300, 1500) * Millisecond;
}

void absent(PlantDrawing &plant, int atLeast, int atMost)
{
    plant->absentCode = plant.draw(10, 11);
    plant->absentAfter = plant.draw(atLeast, atMost) * Millisecond;
    plant->slave.stations = {60};
}

const Kind Kinds[] = {
    {"unknown-host", [](PlantDrawing &plant) { plant->port = Port::UnknownHost; }},
    {"nobody-listens", [](PlantDrawing &plant) { plant->port = Port::Refuses; }},
    {"unreachable", [](PlantDrawing &plant) { plant->port = Port::Unreachable; }},
    {"closed-at-once", [](PlantDrawing &plant) { plant->port = Port::ClosesAtOnce; }},
    {"slot-held", [](PlantDrawing &plant) { plant->heldFor = plant.draw(500, 5000) * Millisecond; }},
    {"modbus-tcp", [](PlantDrawing &plant) { plant->protocol = Protocol::ModbusTcp; }},
    {"modbus-ascii", [](PlantDrawing &plant) { plant->protocol = Protocol::ModbusAscii; }},
    {"tls", [](PlantDrawing &plant) { plant->protocol = Protocol::Tls; }},
    {"http", [](PlantDrawing &plant) { plant->protocol = Protocol::Http; }},
    {"ssh",
     [](PlantDrawing &plant) {
         plant->protocol = Protocol::Ssh;
         plant->greeting = "SSH-2.0-" + plant.letters(3, 9) + "\r\n";
     }},
    {"text-banner",
     [](PlantDrawing &plant) {
         plant->protocol = Protocol::Banner;
         plant->greeting = plant.draw(0, 1) == 0 ? "Console of " + plant.letters(4, 9) + "\r\nlogin: "
                                                 : QByteArray::fromHex("fffd18fffb01");
     }},
    {"connection-ends", [](PlantDrawing &plant) { plant->protocol = Protocol::EndsAfterRequest; }},
    {"registration", [](PlantDrawing &plant) { plant->registration = plant.letters(4, 24); }},
    {"heartbeat", giveHeartbeat},
    {"other-master", askAsOther},
    {"echo", [](PlantDrawing &plant) { plant.everyReply("echo"); }},
    {"echo", [](PlantDrawing &plant) { plant->protocol = Protocol::EchoOnly; }},
    {"stray-bytes", [](PlantDrawing &plant) { plant.everyReply("junk-before:3"); }},
    {"idle-close", [](PlantDrawing &plant) { plant->idleTime = plant.draw(1500, 6000) * Millisecond; }},
    {"wrong-station", moveStation},
    {"wrong-station",
     [](PlantDrawing &plant) {
         absent(plant, 50, 900);
         moveStation(plant);
     }},
    {"station-absent", [](PlantDrawing &plant) { absent(plant, 50, 1500); }},
    {"station-absent", [](PlantDrawing &plant) { absent(plant, 3200, 4500); }},
    {"answers-as-other",
     [](PlantDrawing &plant) {
         plant->slave.stations = {1, 7};
         plant.everyReply("wrong-station:7");
     }},
    {"silent", [](PlantDrawing &plant) { plant->slave.stations = {plant.draw(11, 246)}; }},
    {"late-answers", makeLate},
    {"late-answers", makeLateNow},
    {"needs-pause", needPause},
    {"lost-replies", [](PlantDrawing &plant) { plant.share("silence", plant.draw(20, 35)); }},
    {"gaps", [](PlantDrawing &plant) { plant.everyReply("split:70"); }},
    {"beginning-damaged", [](PlantDrawing &plant) { damage(plant, Damage::Beginning); }},
    {"end-damaged", [](PlantDrawing &plant) { damage(plant, Damage::End); }},
    {"anywhere-damaged", [](PlantDrawing &plant) { damage(plant, Damage::Anywhere); }},
    {"garbled", [](PlantDrawing &plant) { plant->damage = Damage::Garbled; }},
    {"function-unknown",
     [](PlantDrawing &plant) {
         plant.wantWords(2);
         plant->slave.functions = {modbus::ReadCoils, modbus::ReadDiscreteInputs, modbus::ReadInputRegisters};
     }},
    {"area-empty",
     [](PlantDrawing &plant) {
         plant.wantWords(1);
         plant.addHole(1, modbus::AddressSpace);
     }},
    {"address-missing",
     [](PlantDrawing &plant) {
         plant.wantWords(2);
         plant.addHole(plant.firstWanted(), plant.firstWanted());
     }},
    {"device-refuses", [](PlantDrawing &plant) { plant.everyReply("exception:6"); }},
    {"off-by-one",
     [](PlantDrawing &plant) {
         plant.wantWords(2);
         plant.shiftWanted(plant.draw(0, 1) == 0 ? 1 : -1);
     }},
    {"off-by-one",
     [](PlantDrawing &plant) {
         plant.wantWithin(4);
         plant.shiftWanted(plant.draw(0, 1) == 0 ? 1 : -1);
     }},
    {"word-order", [](PlantDrawing &plant) { plant.wantFloats(2, plant.otherOrder()); }},
    {"other-area",
     [](PlantDrawing &plant) {
         plant.wantWords(2);
         plant.moveToInputs();
     }},
    {"scaled", [](PlantDrawing &plant) { plant.wantTenths(2); }},
    {"ambiguous-values", [](PlantDrawing &plant) { plant.wantBetweenZeros(); }},
    {"word-order", [](PlantDrawing &plant) { plant.wantFloatsWithin(3, plant.otherOrder()); }},
    {"other-values", [](PlantDrawing &plant) { plant.wantNonsense(); }},
    {"other-master", [](PlantDrawing &plant) { plant.share("other-master:9", plant.draw(30, 70)); }},
    {"connection-drops", [](PlantDrawing &plant) { plant.share("close", plant.draw(15, 30)); }},
    {"connection-drops", [](PlantDrawing &plant) { plant.share("reset", plant.draw(15, 30)); }},
    {"device-refuses", [](PlantDrawing &plant) { plant.share("exception:4", plant.draw(15, 30)); }},
    {"end-damaged", [](PlantDrawing &plant) { plant.everyReply("truncate:4"); }},
    {"wrong-station,heartbeat",
     [](PlantDrawing &plant) {
         moveStation(plant);
         giveHeartbeat(plant);
     }},
    {"echo,late-answers",
     [](PlantDrawing &plant) {
         plant.everyReply("echo");
         makeLateNow(plant);
     }},
    {"registration,off-by-one",
     [](PlantDrawing &plant) {
         plant->registration = plant.letters(4, 12);
         plant.wantWords(3);
         plant.shiftWanted(1);
     }},
    {"wrong-station,other-master",
     [](PlantDrawing &plant) {
         moveStation(plant);
         askAsOther(plant);
     }},
    {"wrong-station,anywhere-damaged",
     [](PlantDrawing &plant) {
         moveStation(plant);
         damage(plant, Damage::Anywhere);
     }},
    {"registration,heartbeat",
     [](PlantDrawing &plant) {
         plant->registration = plant.letters(4, 12);
         giveHeartbeat(plant);
     }},
    {"needs-pause,word-order",
     [](PlantDrawing &plant) {
         needPause(plant);
         plant.wantFloats(2, plant.otherOrder());
     }},
    {"off-by-one,word-order",
     [](PlantDrawing &plant) {
         plant.wantFloats(2, plant.otherOrder());
         plant.shiftWanted(1);
     }},
    {"slot-held,wrong-station",
     [](PlantDrawing &plant) {
         plant->heldFor = plant.draw(500, 5000) * Millisecond;
         moveStation(plant);
     }},
};

const Kind Healthy[] = {
    {"fast", [](PlantDrawing & /*plant*/) {}},
    {"slow",
     [](PlantDrawing &plant) {
         plant->slave.latencyMs = plant.draw(200, 500);
         plant->jitter = 300 * Millisecond;
     }},
    {"small limits",
     [](PlantDrawing &plant) {
         plant->slave.limits.registers = plant.draw(4, 60);
         plant->slave.limits.bits = plant.draw(8, 200);
     }},
    {"holes",
     [](PlantDrawing &plant) {
         plant.addHole(1, plant.draw(1, 9));
         plant.addHole(plant.draw(20, 30), plant.draw(40, 90));
         plant->slave.functions.remove(modbus::Diagnostics);
     }},
    {"several stations",
     [](PlantDrawing &plant) {
         plant->slave.stations = {1, 2, 5, 9};
     }},
    {"inputs only",
     [](PlantDrawing &plant) {
         plant->slave.functions = {modbus::ReadInputRegisters, modbus::ReadDiscreteInputs};
     }},
    {"coils only",
     [](PlantDrawing &plant) {
         plant->slave.functions = {modbus::ReadCoils, modbus::WriteMultipleCoils};
     }},
    {"expected words", [](PlantDrawing &plant) { plant.wantWords(3); }},
    {"expected floats", [](PlantDrawing &plant) { plant.wantFloats(3, QString()); }},
    {"points within limits", [](PlantDrawing &plant) { plant.wantWithin(5); }},
    {"a gateway that knows who is there",
     [](PlantDrawing &plant) {
         plant->absentCode = 11;
         plant->absentAfter = 300 * Millisecond;
     }},
};

template <size_t Count>
std::vector<PlantCase> drawn(const Kind (&kinds)[Count], quint32 seed, bool areFaulty)
{
    std::vector<PlantCase> cases;
    for (size_t i = 0; i < Count; ++i) {
        PlantDrawing plant(seed * 1000 + static_cast<quint32>(i));
        const QString names = QLatin1String(kinds[i].faults);
        plant.of().name = names;
        if (areFaulty)
            plant.of().faults = names.split(QLatin1Char(','));
        kinds[i].make(plant);
        cases.push_back(plant.of());
    }
    return cases;
}

} // namespace

std::vector<PlantCase> faultyPlants(quint32 seed)
{
    return drawn(Kinds, seed, true);
}

std::vector<PlantCase> healthyPlants(quint32 seed)
{
    return drawn(Healthy, seed, false);
}
