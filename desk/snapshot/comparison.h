#pragma once

#include "desk/items/items.h"
#include "desk/snapshot/snapshot.h"

/// An address that holds something else than it did, or that has come or gone.
struct Difference {
    int station = 1;
    Area area = Area::HoldingRegisters;
    int offset = 0;
    std::optional<quint16> kept;
    std::optional<quint16> now;
};

/// What differs between two snapshots of the same ranges, in their order.
std::vector<Difference> differencesOf(const Snapshot &kept, const Snapshot &now);

/// "1-HR5: was 17, is 18".
QString differenceText(const Difference &difference);

/// The same of what is to be put back: "1-HR5: is 18, becomes 17".
QString restorationText(const Difference &difference);

/// Values that lie side by side and are written together.
struct WriteRun {
    Items items;
    std::vector<quint16> values;
};

/// How runs are written: by functions 16 and 15, or each value on its own by 6 and 5.
enum class WriteStyle { Together, OneByOne };

/// What one request carries, at most. Slaves with small buffers refuse requests of the protocol's maximum;
/// these pass nearly everywhere.
struct RunLimits {
    int registers = 64;
    int coils = 512;
};

/// The writes that put back what was kept, of what can be written: no inputs, and nothing that was not there
/// or is not there now.
std::vector<WriteRun> writesOf(const std::vector<Difference> &differences, WriteStyle style,
                               const RunLimits &limits = {});
/// Whether a difference can be put back.
bool canBeWritten(const Difference &difference);
