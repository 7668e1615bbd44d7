#pragma once

#include "kit/subject/sample.h"

namespace kit
{

/// The command that a driver has at present, kept where another process finds it when the driver crashed.
class CommandAtWork
{
public:
    /// Makes the place, which processes forked from this one share with it. Once, before the first note.
    static void share();
    /// There is none any more.
    static void clear();
    static void note(const Sample &sample, const QString &trouble);
    /// The one that was noted last, as people read it; empty without one.
    static QString text();
};

} // namespace kit
