// Files of what was learnt of stations: one that is understood says the same once it is written.

#include "desk/learning/learnt_file.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Result<Learnt> learnt = parseLearnt(QString::fromUtf8(fuzz::Input(data, size).rest()));
    if (!learnt)
        return 0;
    const QString text = textOf(*learnt);
    Result<Learnt> again = parseLearnt(text);
    FUZZ_CHECK(again.isGood());
    FUZZ_CHECK(textOf(*again) == text);
    return 0;
}
