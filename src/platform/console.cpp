#include "platform/console.h"

#include "platform/within_memory.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

namespace tarnwick {

namespace {

struct Channels {
    std::mutex lock;
    ConsoleSink sink = nullptr;
    void* sinkContext = nullptr;
    bool outputEnabled = true;
    bool errorsOnly = false;
};

Channels& TheChannels() {
    static Channels channels;
    return channels;
}

// Formats the text and hands it to `write`. A text of the usual length needs no memory, since some texts say
// that there is none; a longer one is cut when memory runs out.
template <class Write>
void Format(const char* format, std::va_list arguments, Write write) {
    std::va_list again;
    va_copy(again, arguments);
    char small[1024];
    const int length = std::vsnprintf(small, sizeof small, format, arguments);
    std::size_t size = length > 0 ? static_cast<std::size_t>(length) : 0;
    const char* text = small;
    std::string large;
    if (size >= sizeof small) {
        if (WithinMemory([&] { large.resize(size + 1); })) {
            std::vsnprintf(large.data(), large.size(), format, again);
            text = large.data();
        } else {
            size = sizeof small - 1;
        }
    }
    va_end(again);
    write(text, size);
}

} // namespace

void ConsolePrint(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Format(format, arguments, [](const char* text, std::size_t size) {
        Channels& channels = TheChannels();
        const std::lock_guard guard(channels.lock);
        const bool isError = std::string_view(text, size).starts_with("<E>");
        if (isError || !channels.errorsOnly) { std::fwrite(text, 1, size, stderr); }
        if (channels.sink != nullptr) { channels.sink(channels.sinkContext, text, size); }
    });
    va_end(arguments);
}

void OutputPrint(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Format(format, arguments, [](const char* text, std::size_t size) {
        Channels& channels = TheChannels();
        const std::lock_guard guard(channels.lock);
        if (channels.outputEnabled) { std::fwrite(text, 1, size, stdout); }
    });
    va_end(arguments);
}

void SetConsoleSink(ConsoleSink sink, void* context) {
    Channels& channels = TheChannels();
    const std::lock_guard guard(channels.lock);
    channels.sink = sink;
    channels.sinkContext = context;
}

void ShowErrorsOnly(bool enabled) {
    Channels& channels = TheChannels();
    const std::lock_guard guard(channels.lock);
    channels.errorsOnly = enabled;
}

void EnableOutput(bool enabled) {
    Channels& channels = TheChannels();
    const std::lock_guard guard(channels.lock);
    channels.outputEnabled = enabled;
}

} // namespace tarnwick
