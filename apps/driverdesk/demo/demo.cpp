#include "apps/driverdesk/demo/demo.h"

namespace
{

const int FaultEvery = 60; // replies

struct DemoValue {
    Area area;
    quint16 number;
    quint16 value;
    Movement movement;
};

const DemoValue DemoValues[] = {
    {Area::InputRegisters, 1, 720, {Movement::Sine, 640, 830, 23000}},
    {Area::InputRegisters, 2, 510, {Movement::Sine, 470, 590, 31000}},
    {Area::InputRegisters, 3, 520, {Movement::Sine, 495, 540, 67000}},
    {Area::InputRegisters, 4, 180, {Movement::Random, 172, 189, 700}},
    {Area::InputRegisters, 5, 85, {Movement::Ramp, 60, 110, 14000}},
    {Area::InputRegisters, 6, 1800, {Movement::Ramp, 1200, 2300, 19000}},
    {Area::InputRegisters, 7, 4711, {Movement::Counter, 4711, 9999, 5000}},
    {Area::HoldingRegisters, 1, 700, {}},
    {Area::HoldingRegisters, 2, 1450, {}},
    {Area::HoldingRegisters, 3, 1, {}},
    {Area::HoldingRegisters, 4, 0, {Movement::Counter, 0, 3, 9000}},
    {Area::HoldingRegisters, 5, 425, {}},
    {Area::HoldingRegisters, 11, 500, {Movement::Ramp, 200, 880, 29000}},
    {Area::HoldingRegisters, 12, 300, {Movement::Sine, 250, 610, 41000}},
    {Area::HoldingRegisters, 20, 640, {Movement::Random, 630, 655, 1500}},
    {Area::HoldingRegisters, 101, 1200, {Movement::Counter, 1200, 65000, 300}},
    {Area::HoldingRegisters, 102, 3, {}},
    {Area::DiscreteInputs, 1, 1, {Movement::Random, 0, 1, 4000}},
    {Area::DiscreteInputs, 2, 1, {}},
    {Area::Coils, 1, 1, {}},
    {Area::Coils, 2, 0, {}},
};

} // namespace

void loadBuiltInFiles()
{
    Q_INIT_RESOURCE(driverdesk);
}

void furnishDemo(MovingSlave &slave, quint32 seed)
{
    std::vector<SlaveValue> values;
    for (const DemoValue &value : DemoValues)
        values.push_back(
            {1, value.area, static_cast<quint16>(value.number - 1), value.value, value.movement});
    slave.setSeed(seed);
    slave.values().setValues(values);
    slave.faults().setOneOf(FaultEvery);
    for (const char *fault : {"silence", "exception", "wrong-crc"})
        slave.faults().setOn(QLatin1String(fault), true);
}

QStringList demoArguments(quint16 port)
{
    return {QStringLiteral("rtutcp://127.0.0.1:%1/1").arg(port),
            QStringLiteral("--points"),
            QStringLiteral(":/demo/points.csv"),
            QStringLiteral("--interval"),
            QStringLiteral("0.2"),
            QStringLiteral("--timeout"),
            QStringLiteral("400"),
            QStringLiteral("--retries"),
            QStringLiteral("0")};
}

QStringList demoTrends()
{
    return {QStringLiteral("boiler temperature"), QStringLiteral("return temperature"),
            QStringLiteral("tank level 1"), QStringLiteral("tank level 2")};
}
