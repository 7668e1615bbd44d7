#include "desk/doctor/diagnosis.h"
#include "tests/peers/text_printing.h"
#include "tests/plants/plant_line.h"

#include <gtest/gtest.h>

// What --probe-writes sends, and what it tells.

namespace
{

struct Probed {
    QString functions; ///< the remark
    int announced = 0;
    int writes = 0;
    quint16 holdingRegister = 0;
    quint16 coil = 0;
};

Probed probe(const QSet<int> &functions, bool probesWrites)
{
    PlantOptions options;
    options.slave.functions = functions;
    options.slave.memory.setValue(0, Area::HoldingRegisters, 0, 4711);
    options.slave.memory.setValue(0, Area::Coils, 0, 1);
    VirtualTime time;
    Plant plant(time, options);
    PlantLine line(time, plant);
    DoctorOptions doctor;
    doctor.probesWrites = probesWrites;
    Observations seen;
    Examiner examiner(line, doctor, seen);
    Probed probed;
    examiner.setAnnouncement([&](const QString &) { ++probed.announced; });
    for (const Finding &remark : diagnose(examiner).remarks) {
        if (remark.kind == FindingKind::Functions)
            probed.functions = remark.sentence;
    }
    probed.writes = plant.writes();
    probed.holdingRegister = plant.station(1).valueAt(Area::HoldingRegisters, 0);
    probed.coil = plant.station(1).valueAt(Area::Coils, 0);
    return probed;
}

} // namespace

TEST(WriteProbe, SaysEveryFunctionThatIsKnownAndChangesNothing)
{
    const Probed all = probe({1, 2, 3, 4, 5, 6, 8, 15, 16}, true);
    EXPECT_EQ(all.functions,
              QStringLiteral("function 8 is known; function 6 is known; function 16 is known; function 5 is "
                             "known; function 15 is known"));
    EXPECT_EQ(all.writes, 4);
    EXPECT_EQ(all.announced, 4);
    EXPECT_EQ(all.holdingRegister, 4711);
    EXPECT_EQ(all.coil, 1);
}

TEST(WriteProbe, SaysWhichAreNot)
{
    const Probed some = probe({1, 3, 5, 6}, true);
    EXPECT_EQ(
        some.functions,
        QStringLiteral("function 8 is not known; function 6 is known; function 16 is not known; function "
                       "5 is known; function 15 is not known"));
}

TEST(WriteProbe, AsksNothingThatWritesUnlessItIsAllowed)
{
    const Probed none = probe({4, 8}, false);
    EXPECT_EQ(none.writes, 0);
    EXPECT_EQ(none.announced, 0);
    EXPECT_EQ(
        none.functions,
        QStringLiteral(
            "function 8 is known; functions 15 and 16 write and were not tried (--probe-writes); 15 and 16 "
            "would surprise, since its area cannot be read"));
}
