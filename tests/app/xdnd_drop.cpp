// xdnd_drop X Y URI...: drops files at a place of the screen by the protocol that file managers use, without
// a mouse. Exit status 0 when the drop was accepted to its end, 1 when not, 2 without a display.

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

class Source {
public:
    Source(Display* display, Window target)
        : display_(display), target_(target),
          window_(XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0)) {
        XSetSelectionOwner(display, Name("XdndSelection"), window_, CurrentTime);
    }

    // Runs the whole exchange.
    bool Drop(int x, int y, const std::string& uris) {
        Send("XdndEnter", 5L << 24, Name("text/uri-list"));
        Send("XdndPosition", 0, static_cast<Atom>(x) << 16 | static_cast<Atom>(y), CurrentTime,
             Name("XdndActionCopy"));
        const Atom status = Name("XdndStatus");
        const Atom finished = Name("XdndFinished");
        const auto end = Clock::now() + std::chrono::seconds(10);
        while (Clock::now() < end) {
            if (XPending(display_) == 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                continue;
            }
            XEvent event;
            XNextEvent(display_, &event);
            if (event.type == SelectionRequest) {
                Serve(event.xselectionrequest, uris);
            } else if (event.type == ClientMessage && event.xclient.message_type == finished) {
                return (event.xclient.data.l[1] & 1) != 0;
            } else if (event.type == ClientMessage && event.xclient.message_type == status) {
                if ((event.xclient.data.l[1] & 1) == 0) { return false; }
                if (!dropped_) { Send("XdndDrop", 0, CurrentTime); }
                dropped_ = true;
            }
        }
        return false;
    }

private:
    Atom Name(const char* name) const { return XInternAtom(display_, name, False); }

    void Send(const char* message, long a, Atom b, Atom c = 0, Atom d = 0) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.display = display_;
        event.xclient.window = target_;
        event.xclient.message_type = Name(message);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(window_);
        event.xclient.data.l[1] = a;
        event.xclient.data.l[2] = static_cast<long>(b);
        event.xclient.data.l[3] = static_cast<long>(c);
        event.xclient.data.l[4] = static_cast<long>(d);
        XSendEvent(display_, target_, False, 0, &event);
        XFlush(display_);
    }

    void Serve(const XSelectionRequestEvent& request, const std::string& uris) {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(uris.data());
        XChangeProperty(display_, request.requestor, request.property, request.target, 8, PropModeReplace,
                        bytes, static_cast<int>(uris.size()));
        XEvent answer{};
        answer.xselection.type = SelectionNotify;
        answer.xselection.requestor = request.requestor;
        answer.xselection.selection = request.selection;
        answer.xselection.target = request.target;
        answer.xselection.property = request.property;
        answer.xselection.time = request.time;
        XSendEvent(display_, request.requestor, False, 0, &answer);
        XFlush(display_);
    }

    Display* display_;
    Window target_;
    Window window_;
    bool dropped_ = false;
};

// The first window from the top at the place that takes drops; 0 for none.
Window TargetAt(Display* display, int x, int y) {
    const Window root = DefaultRootWindow(display);
    const Atom aware = XInternAtom(display, "XdndAware", False);
    for (Window window = root;;) {
        Window child = 0;
        int localX = 0;
        int localY = 0;
        if (XTranslateCoordinates(display, root, window, x, y, &localX, &localY, &child) == 0 || child == 0) {
            return 0;
        }
        window = child;
        Atom type = 0;
        int format = 0;
        unsigned long count = 0;
        unsigned long left = 0;
        unsigned char* value = nullptr;
        XGetWindowProperty(display, window, aware, 0, 1, False, AnyPropertyType, &type, &format, &count,
                           &left, &value);
        if (value != nullptr) { XFree(value); }
        if (count > 0) { return window; }
    }
}

} // namespace

int main(int argc, char** argv) {
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr || argc < 4) { return 2; }
    const int x = std::atoi(argv[1]);
    const int y = std::atoi(argv[2]);
    std::string uris;
    for (int i = 3; i < argc; ++i) {
        uris += argv[i];
        uris += "\r\n";
    }
    const Window target = TargetAt(display, x, y);
    const bool accepted = target != 0 && Source(display, target).Drop(x, y, uris);
    XCloseDisplay(display);
    return accepted ? 0 : 1;
}
