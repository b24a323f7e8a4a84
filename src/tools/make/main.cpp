// tarnwick-make: writes sample models of any size, for looking at, for tests and for benchmarks.
#include "tools/make/command_line.h"

int main(int argc, char** argv) {
    return tarnwick::make::RunCommandLine(argc, argv);
}
