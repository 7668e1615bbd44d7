#include "desk/learning/station_facts.h"

void StationFacts::compareCosts()
{
    CostLearner &registers = requests(Area::HoldingRegisters).cost;
    CostLearner &bits = requests(Area::Coils).cost;
    const double byteOfRegister = 1.0 / modbus::RegisterBytes;
    if (registers.isKnown())
        bits.setStart({registers.cost().perRequest, registers.cost().perUnit * byteOfRegister});
    else if (bits.isKnown())
        registers.setStart({bits.cost().perRequest, bits.cost().perUnit / byteOfRegister});
}

void StationFacts::forgetRefusals()
{
    for (Refusals &refusals : m_refusals)
        refusals.clear();
}
