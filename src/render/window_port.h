#pragma once

#include <cstdint>
#include <string>

namespace tarnwick {

// In device pixels.
struct WindowSize {
    int width = 0;
    int height = 0;
};

// What the drawing window needs from the window system.
class WindowPort {
public:
    virtual ~WindowPort() = default;
    // Creates the window's one context, double-buffered with at least 16 bits of depth, and makes it current
    // on this thread for good. False when that fails: the window then stays empty and draws nothing.
    virtual bool CreateContext() = 0;
    virtual void SwapBuffers() = 0;
    // The size of the area to draw in, which isn't always that of the last OnSize.
    virtual WindowSize DrawableSize() = 0;
    virtual bool IsControlKeyDown() = 0;
    // The address of a function that not every version of the graphics library has; null when there is none.
    // Called while the context is current.
    virtual void (*FindFunction(const char* /*name*/))() { return nullptr; }
};

// What the drawing window tells the dialog around it.
class DialogPort {
public:
    virtual ~DialogPort() = default;
    // The text beside the status text. `text` holds the bytes of the file, undecoded.
    virtual void SetPickText(const std::string& text) = 0;
    // How many of the files known so far a load has read. Must not handle window messages.
    virtual void ShowLoadProgress(std::int32_t filesRead, std::int32_t filesKnown) = 0;
};

} // namespace tarnwick
