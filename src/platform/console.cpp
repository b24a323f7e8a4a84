#include "platform/console.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>

namespace tarnwick {

namespace {

struct Channels {
    std::mutex lock;
    ConsoleSink sink = nullptr;
    void* sinkContext = nullptr;
    bool outputEnabled = true;
};

Channels& TheChannels() {
    static Channels channels;
    return channels;
}

std::string Formatted(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    char small[512];
    const int length = std::vsnprintf(small, sizeof small, format, arguments);
    std::string text;
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof small) {
        text.assign(small, static_cast<std::size_t>(length));
    } else if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    }
    va_end(again);
    return text;
}

} // namespace

void ConsolePrint(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = Formatted(format, arguments);
    va_end(arguments);
    Channels& channels = TheChannels();
    const std::lock_guard guard(channels.lock);
    std::fwrite(text.data(), 1, text.size(), stderr);
    if (channels.sink != nullptr) { channels.sink(channels.sinkContext, text.data(), text.size()); }
}

void OutputPrint(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = Formatted(format, arguments);
    va_end(arguments);
    Channels& channels = TheChannels();
    const std::lock_guard guard(channels.lock);
    if (channels.outputEnabled) { std::fwrite(text.data(), 1, text.size(), stdout); }
}

void SetConsoleSink(ConsoleSink sink, void* context) {
    Channels& channels = TheChannels();
    const std::lock_guard guard(channels.lock);
    channels.sink = sink;
    channels.sinkContext = context;
}

void EnableOutput(bool enabled) {
    Channels& channels = TheChannels();
    const std::lock_guard guard(channels.lock);
    channels.outputEnabled = enabled;
}

} // namespace tarnwick
