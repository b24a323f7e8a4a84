#pragma once

#include "offscreen/framing.h"
#include "render/opengl_control.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick::tools {

struct PictureOptions {
    std::string path;
    std::optional<std::string> product; // a product may well have an empty name
    std::string output;                 // "-" for standard output; see FileName for its patterns
    WindowSize size{512, 512};
    std::vector<NamedView> views; // one at least
    int turntable = 0;            // frames around the model in each view; 0 for a single picture
    bool wireframe = false;
    std::optional<std::int32_t> depth;                       // of the Depth slider after the load
    std::array<float, 4> background{0.8f, 0.8f, 0.8f, 1.0f}; // red, green, blue, alpha
    int samples = 4;                                         // for each pixel, a square number
    bool fit = true;
    std::optional<WindowPoint> pick; // what is clicked at before the picture is taken
    bool prepare = false;            // what the viewer shows nothing of goes through tarnwick-open first
    double timeLimit = 0;            // seconds; 0 for none
    double sizeLimit = 0;            // of the file, in megabytes; 0 for none
};

// Reads the command line. Returns false when the program is to end at once, with *status as its exit status:
// 0 after --help and --version, 2 after a wrong command line, which it has explained on standard error.
bool ReadOptions(int argc, char** argv, PictureOptions* options, int* status);

// The file of one picture: where there are several, "%v" of the pattern is the view's name, "%n" the number
// of the frame, from 0 on in as many digits as the last one has.
std::string FileName(const PictureOptions& options, std::string_view view, int frame);

} // namespace tarnwick::tools
