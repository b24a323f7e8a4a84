#pragma once

#include "render/opengl_control.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tarnwick {

// A drawing window without a window system: the frame stays in a buffer of a fixed size, in memory. No
// display is needed; a graphics card is used where there is one that does without, and else the software
// driver.
//
// Edges are smoothed by drawing several times as large. Samples of the driver's own would do as well for
// cards, but not every software driver has them, and the usual one compiles what draws them anew each time it
// starts.
class OffscreenWindow final : public WindowPort {
public:
    // A picture of `size`, drawn `times` as wide and high, or less where it would be too large for that.
    OffscreenWindow(WindowSize size, int times);
    OffscreenWindow(const OffscreenWindow&) = delete;
    OffscreenWindow& operator=(const OffscreenWindow&) = delete;
    ~OffscreenWindow() override;

    // False, with `failure` telling why, when there is no driver or no room for the buffer.
    bool CreateContext() override;
    void SwapBuffers() override {}
    WindowSize DrawableSize() override { return {size_.width * times_, size_.height * times_}; }
    bool IsControlKeyDown() override { return false; }

    // The place in what is drawn of one in the picture.
    WindowPoint PointOf(WindowPoint place) const;

    // What CreateContext misses, as a sentence without a full stop; null while nothing is missing.
    const char* failure = nullptr;

    // Has frames over a background with alpha 0 tell how much of them covers it.
    void KeepCoverage();

    // The picture, rows from the bottom up, `channels` bytes a pixel: 3 for red, green, blue; 4 with how much
    // of the pixel is covered, by which the colours are multiplied then. Empty when the library fails.
    std::vector<std::uint8_t> Pixels(int channels) const;

private:
    struct Library;

    bool Fail(const char* why);

    const WindowSize size_;
    int times_;
    std::unique_ptr<Library> library_;
};

} // namespace tarnwick
