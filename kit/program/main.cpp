#include "kit/program/conformance_program.h"

int main(int argc, char **argv)
{
    return kit::conformanceMain(argc, argv, nullptr);
}
