// Replaces the functions of platform/ that end or stop the process, print, or ask the system for memory. A
// target links it ahead of the libraries, whose own versions then stay out.

#include "harness.h"
#include "platform/console.h"
#include "platform/fail_fast.h"
#include "platform/pages.h"
#include "platform/stall.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace tarnwick {

namespace {

// An input may ask for a small multiple of its size at once; each reader has some room to start with.
constexpr std::size_t kFreeRoom = std::size_t{80} << 20;
constexpr std::size_t kMultiple = 64;
std::size_t inputSize = 0;

// Formats as the channel would, so that a text without an end or a wrong argument is found, and prints
// nothing.
void Format(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    if (length < 0) { fuzz::Finding("a message that can't be formatted"); }
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
}

} // namespace

namespace fuzz {

void SetInputSize(std::size_t size) {
    inputSize = size;
}

} // namespace fuzz

void FailFast() {
    throw fuzz::ProgramEnd{};
}

void Stall(const char* name, const char* reason) {
    ConsolePrint("<E> %s: reading stands still, %s\n", name, reason);
    throw fuzz::ProgramEnd{};
}

void ConsolePrint(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Format(format, arguments);
    va_end(arguments);
}

void OutputPrint(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Format(format, arguments);
    va_end(arguments);
}

void SetConsoleSink(ConsoleSink, void*) {}

void EnableOutput(bool) {}

void* AllocatePages(std::size_t bytes) {
    if (bytes > kFreeRoom + kMultiple * inputSize) { fuzz::Finding("an input asks for too much memory"); }
    return std::calloc(bytes, 1);
}

bool IsMemoryLeft(std::size_t) {
    return true;
}

void FreePages(void* pages, std::size_t) {
    std::free(pages);
}

} // namespace tarnwick
