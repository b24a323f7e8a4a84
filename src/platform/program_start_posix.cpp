#include "platform/program_start.h"

namespace tarnwick {

ProgramStart::ProgramStart(int argc, char** argv) : count(argc), words(argv) {}

} // namespace tarnwick
