// Files of snapshots: one that is understood says the same once it is written, since it is what gets put
// back.

#include "desk/snapshot/snapshot_file.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Result<Snapshot> snapshot = parseSnapshot(QString::fromUtf8(fuzz::Input(data, size).rest()));
    if (!snapshot)
        return 0;
    const QString text = snapshotText(*snapshot);
    const Result<Snapshot> again = parseSnapshot(text);
    FUZZ_CHECK(again.isGood());
    FUZZ_CHECK(snapshotText(*again) == text);
    return 0;
}
