#include "platform/standard_streams.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace tarnwick {

bool IsErrorTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

bool IsColourTerminal() {
    const char* const terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

void WriteToError(const char* text) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, std::strlen(text));
}

} // namespace tarnwick
