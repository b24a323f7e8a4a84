#include "tools/prepare/progress.h"

#include "platform/standard_streams.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace tarnwick::tools {

namespace {

constexpr double kBarPause = 0.1; // seconds between two states of the bar
constexpr double kLinePause = 10; // seconds between two lines
constexpr int kBarWidth = 24;

} // namespace

std::string Duration(double seconds) {
    const auto whole = static_cast<long>(seconds + 0.5);
    char text[32];
    if (whole >= 3600) {
        std::snprintf(text, sizeof text, "%ld:%02ld h", whole / 3600, whole / 60 % 60);
    } else if (whole >= 60) {
        std::snprintf(text, sizeof text, "%ld:%02ld min", whole / 60, whole % 60);
    } else {
        std::snprintf(text, sizeof text, "%ld s", whole);
    }
    return text;
}

Progress::Progress(std::string name)
    : name_(std::move(name)), isTerminal_(IsErrorTerminal()), begin_(std::chrono::steady_clock::now()),
      lastTold_(isTerminal_ ? -kBarPause : 0) {}

double Progress::Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
}

void Progress::Clear() {
    if (isShown_) { std::fputs("\r\033[K", stderr); }
    isShown_ = false;
}

void Progress::Tell(std::size_t done, std::size_t parts) {
    const double now = Seconds();
    if (parts == 0 || now - lastTold_ < (isTerminal_ ? kBarPause : kLinePause)) { return; }
    lastTold_ = now;
    std::string left;
    if (done > 0) {
        left = ", " + Duration(now / static_cast<double>(done) * static_cast<double>(parts - done)) + " left";
    }
    if (!isTerminal_) {
        std::fprintf(stderr, "%s: %zu of %zu parts%s\n", name_.c_str(), done, parts, left.c_str());
        return;
    }
    const auto filled = static_cast<int>(static_cast<std::size_t>(kBarWidth) * done / parts);
    const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                            std::string(static_cast<std::size_t>(kBarWidth - filled), '.');
    std::fprintf(stderr, "\r\033[K[%s] %zu of %zu parts%s", bar.c_str(), done, parts, left.c_str());
    std::fflush(stderr);
    isShown_ = true;
}

} // namespace tarnwick::tools
