#pragma once

#include "kit/subject/subject.h"

namespace kit
{

/// The program that takes \a subject's driver through the checks; what main() returns. `--help` says how it
/// is called.
int conformanceMain(int argc, char **argv, Subject &subject);

} // namespace kit

/// Makes the source file a conformance program for the driver that \a SubjectClass describes.
#define DRIVER_CONFORMANCE_SUBJECT(SubjectClass)                                                             \
    int main(int argc, char **argv)                                                                          \
    {                                                                                                        \
        SubjectClass subject;                                                                                \
        return kit::conformanceMain(argc, argv, subject);                                                    \
    }
