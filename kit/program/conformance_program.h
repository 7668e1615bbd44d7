#pragma once

namespace kit
{

class Subject;

/// What every conformance program does. Null: without a subject, a transcript has to be given.
int conformanceMain(int argc, char **argv, Subject *subject);

} // namespace kit
