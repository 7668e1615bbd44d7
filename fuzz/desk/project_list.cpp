// Lists of what a project holds, as people type them: one that is understood says the same once it is
// written.

#include "desk/project/project_list.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Result<Project> project = parseProjectList(QString::fromUtf8(fuzz::Input(data, size).rest()));
    if (!project) {
        FUZZ_CHECK(!project.errorText().isEmpty());
        return 0;
    }
    const QStringList list = projectListOf(*project);
    const Result<Project> again = parseProjectList(list.join(QLatin1Char('\n')));
    FUZZ_CHECK(again.isGood());
    FUZZ_CHECK(projectListOf(*again) == list);
    return 0;
}
