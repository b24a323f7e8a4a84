#pragma once

#include "render/window_port.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tarnwick {

// A drawing window without a window system: the frame stays in a buffer of a fixed size, in memory. No
// display is needed; a graphics card is used where there is one that does without, and else the software
// driver.
class OffscreenWindow final : public WindowPort {
public:
    // `samples` are taken for each pixel, or as many as the driver can.
    OffscreenWindow(WindowSize size, int samples);
    OffscreenWindow(const OffscreenWindow&) = delete;
    OffscreenWindow& operator=(const OffscreenWindow&) = delete;
    ~OffscreenWindow() override;

    // False, with `failure` telling why, when there is no driver or no room for the buffer.
    bool CreateContext() override;
    void SwapBuffers() override {}
    WindowSize DrawableSize() override { return size_; }
    bool IsControlKeyDown() override { return false; }

    // What CreateContext misses, as a sentence without a full stop; null while nothing is missing.
    const char* failure = nullptr;

    // Has frames over a background with alpha 0 tell how much of them covers it.
    void KeepCoverage();

    // The frame, rows from the bottom up, `channels` bytes a pixel: 3 for red, green, blue; 4 with how much
    // of the pixel is covered, by which the colours are multiplied then. Empty when the library fails or
    // memory is short.
    std::vector<std::uint8_t> Pixels(int channels) const;

private:
    struct Library;

    bool Fail(const char* why);

    const WindowSize size_;
    const int samples_;
    std::unique_ptr<Library> library_;
};

} // namespace tarnwick
