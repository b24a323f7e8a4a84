#pragma once

#include "render/opengl_control.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tarnwick {

// A drawing window without a window system: the frame stays in a buffer of a fixed size, in memory. It needs
// no display; it uses a graphics card that does without one, or else the software driver.
//
// Edges are smoothed by drawing several times as large. The driver's own multisampling would do as well on
// cards, but not every software driver has it, and the usual one compiles its code for it at each start.
class OffscreenWindow final : public WindowPort {
public:
    // A picture of `size`, drawn `times` times as wide and high, or fewer where that would be too large.
    OffscreenWindow(WindowSize size, int times);
    OffscreenWindow(const OffscreenWindow&) = delete;
    OffscreenWindow& operator=(const OffscreenWindow&) = delete;
    ~OffscreenWindow() override;

    // False, with the reason in `failure`, when there is no driver or no room for the buffer.
    bool CreateContext() override;
    void SwapBuffers() override {}
    WindowSize DrawableSize() override { return {size_.width * times_, size_.height * times_}; }
    bool IsControlKeyDown() override { return false; }

    // The pixel of the drawn frame for one of the picture.
    WindowPoint PointOf(WindowPoint place) const;

    // Why CreateContext failed, as a sentence without a full stop; null while it hasn't.
    const char* failure = nullptr;

    // Lets the alpha of frames over a background with alpha 0 tell how much of each pixel is covered.
    void KeepCoverage();

    // The picture, rows from the bottom up, `channels` bytes a pixel: 3 for red, green, blue; 4 also for how
    // much of the pixel is covered, by which the colours are then multiplied. Empty when the library fails.
    std::vector<std::uint8_t> Pixels(int channels) const;

private:
    struct Library;

    bool Fail(const char* why);

    const WindowSize size_;
    int times_;
    std::unique_ptr<Library> library_;
};

} // namespace tarnwick
