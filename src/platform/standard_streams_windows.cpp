#include "platform/standard_streams.h"

#include <windows.h>

#include <cstring>

namespace tarnwick {

namespace {

// Whether a stream leads to a console that takes escape sequences; it is told to.
bool IsTerminal(DWORD stream) {
    HANDLE const handle = GetStdHandle(stream);
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0 &&
           SetConsoleMode(handle, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

} // namespace

bool IsErrorTerminal() {
    return IsTerminal(STD_ERROR_HANDLE);
}

bool IsColourTerminal() {
    return IsTerminal(STD_OUTPUT_HANDLE);
}

void WriteToError(const char* text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

} // namespace tarnwick
