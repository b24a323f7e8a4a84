#include "tools/picture/options.h"
#include "tools/parse_command_line.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>
#include <utility>

namespace tarnwick::tools {

namespace {

// Sides of a picture, in pixels.
constexpr int kLargest = 16384;
constexpr int kMostFrames = 10000;

// The numbers of a text, separated by a character; empty for any other text.
template <class Number>
std::vector<Number> NumbersIn(std::string_view text, char separator) {
    std::vector<Number> numbers;
    const char* next = text.data();
    const char* const end = next + text.size();
    for (;;) {
        Number number{};
        const auto [stop, error] = std::from_chars(next, end, number);
        if (error != std::errc() || (stop != end && *stop != separator)) { return {}; }
        numbers.push_back(number);
        if (stop == end) { return numbers; }
        next = stop + 1;
    }
}

std::string ReadSize(const std::string& text, WindowSize* size) {
    const std::vector<int> sides = NumbersIn<int>(text, 'x');
    if (sides.empty() || sides.size() > 2) {
        return text + " is no size: WIDTHxHEIGHT, or one number for both";
    }
    *size = {sides.front(), sides.back()};
    for (const int side : sides) {
        if (side < 1 || side > kLargest) {
            return "a picture has 1 to " + std::to_string(kLargest) + " pixels to a side";
        }
    }
    return {};
}

std::string ReadRotation(const std::string& text, std::vector<NamedView>* views) {
    const std::vector<double> degrees = NumbersIn<double>(text, ',');
    if (degrees.size() != 3 || !std::isfinite(degrees[0] + degrees[1] + degrees[2])) {
        return text + " is no rotation: degrees about x, y and z, as in -90,0,30";
    }
    Rotation rotation = kNoRotation;
    for (int axis = 0; axis < 3; ++axis) {
        rotation = Combined(About(axis, degrees[static_cast<std::size_t>(axis)]), rotation);
    }
    views->push_back({"rotated", rotation});
    return {};
}

std::string ReadViews(const std::string& text, std::vector<NamedView>* views) {
    for (const std::string& name : CLI::detail::split(text, ',')) {
        const NamedView* const view = FindView(name);
        if (view == nullptr) { return name + " is no view: front, back, left, right, top, bottom or iso"; }
        views->push_back(*view);
    }
    return {};
}

std::string ReadColour(const std::string& text, std::array<float, 4>* colour) {
    if (text == "transparent") {
        *colour = {0, 0, 0, 0};
        return {};
    }
    std::string_view digits = text == "white"   ? "ffffff"
                              : text == "black" ? "000000"
                                                : std::string_view(text);
    if (digits.starts_with('#')) { digits.remove_prefix(1); }
    unsigned value = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    const bool isShort = digits.size() == 3;
    if (error != std::errc() || stop != digits.data() + digits.size() || (!isShort && digits.size() != 6)) {
        return text + " is no colour: transparent, white, black, or hexadecimal digits as in #e0e0ff";
    }
    const unsigned bits = isShort ? 4 : 8;
    const unsigned most = isShort ? 15 : 255;
    for (unsigned i = 0; i < 3; ++i) {
        (*colour)[i] = static_cast<float>((value >> (bits * (2 - i))) & most) / static_cast<float>(most);
    }
    return {};
}

std::string ReadPick(const std::string& text, std::optional<WindowPoint>* pick) {
    const std::vector<int> place = NumbersIn<int>(text, ',');
    if (place.size() != 2 || place[0] < 0 || place[1] < 0) {
        return text + " is no place in the picture: pixels from the left and from the top, as in 200,120";
    }
    *pick = WindowPoint{place[0], place[1]};
    return {};
}

void Replace(std::string* text, std::string_view what, std::string_view by) {
    for (std::size_t at = text->find(what); at != std::string::npos; at = text->find(what, at + by.size())) {
        text->replace(at, what.size(), by);
    }
}

// What is wrong with the name for so many pictures; empty when nothing is.
std::string WrongPattern(const PictureOptions& options) {
    const auto lacks = [&options](const char* what) {
        return options.output.find(what) == std::string::npos;
    };
    const bool isOne = options.views.size() == 1 && options.turntable == 0;
    if (options.output == "-") { return isOne ? "" : "standard output takes one picture"; }
    if (options.views.size() > 1 && lacks("%v")) {
        return "several views need %v in the name of the output, as in part-%v.png";
    }
    if (options.turntable > 0 && lacks("%n")) {
        return "a turntable needs %n in the name of the output, as in turn-%n.png";
    }
    return {};
}

} // namespace

std::string FileName(const PictureOptions& options, std::string_view view, int frame) {
    std::string name = options.output;
    if (options.views.size() > 1) { Replace(&name, "%v", view); }
    if (options.turntable > 0) {
        std::string number = std::to_string(frame);
        const std::size_t digits = std::to_string(options.turntable - 1).size();
        number.insert(0, digits - number.size(), '0');
        Replace(&name, "%n", number);
    }
    return name;
}

bool ReadOptions(int argc, char** argv, PictureOptions* options, int* status) {
    CLI::App app("Makes a PNG picture of what the viewer shows of a STEP file; no display is needed.",
                 "tarnwick-picture");
    app.set_version_flag("--version", std::string("tarnwick-picture ") + TARNWICK_VERSION);
    app.add_option("FILE", options->path, "the file to show")->required();
    app.add_option("PRODUCT", options->product, "name of the product to show (STEP XML and archives)");
    app.add_option(
           "-o,--output", options->output,
           "the picture (- for standard output); %v in its name is the view, where there are several, "
           "and %n the number of the frame")
        ->type_name("OUT.png")
        ->required();
    // A text of one option; `read` explains what is wrong with it, or returns an empty text.
    const auto add = [&app](const char* name, const char* type, const char* what, auto read) {
        return app
            .add_option_function<std::string>(
                name,
                [name, read](const std::string& text) {
                    const std::string wrong = read(text);
                    if (!wrong.empty()) { throw CLI::ValidationError(name, wrong); }
                },
                what)
            ->type_name(type);
    };
    add("--size", "WxH", "pixels across and down, or one number for both (default: 512x512)",
        [options](const std::string& text) { return ReadSize(text, &options->size); });
    auto* const view =
        add("--view", "NAME",
            "front, back, left, right, top, bottom or iso; several with commas between (default: iso)",
            [options](const std::string& text) { return ReadViews(text, &options->views); });
    add("--rotate", "X,Y,Z",
        "instead of a view: degrees about the axes of the picture, one after the other, from the top view on",
        [options](const std::string& text) { return ReadRotation(text, &options->views); })
        ->excludes(view);
    app.add_option("--turntable", options->turntable, "N pictures around the model's z axis")
        ->type_name("N")
        ->check(CLI::Range(1, kMostFrames));
    app.add_flag("--wireframe", options->wireframe, "draw lines");
    app.add_option("--depth", options->depth, "set the Depth slider to N after the load (summary files)")
        ->type_name("N")
        ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()));
    add("--background", "COLOUR", "transparent, white, black or as in #e0e0ff (default: the viewer's grey)",
        [options](const std::string& text) { return ReadColour(text, &options->background); });
    app.add_option("--samples", options->samples,
                   "samples for each pixel, for smooth edges: 1, 4, 9 or 16 (default: 4)")
        ->type_name("N")
        ->check(CLI::IsMember({1, 4, 9, 16}));
    app.add_flag("--fit,!--no-fit", options->fit,
                 "fill the picture with what is drawn; --no-fit: as the viewer frames it");
    add("--pick", "X,Y", "click there first, in pixels from the left and from the top, and tell what is hit",
        [options](const std::string& text) { return ReadPick(text, &options->pick); });
    app.add_flag("--prepare", options->prepare,
                 "any STEP file: what the viewer shows nothing of is prepared by tarnwick-open first");
    app.add_option("--time-limit", options->timeLimit, "give up after that time")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.01, 1e6));
    app.add_option("--size-limit", options->sizeLimit, "give up when the file is larger")
        ->type_name("MB")
        ->check(CLI::Range(0.0, 1e9));
    if (!ParseCommandLine(app, argc, argv, status)) { return false; }
    if (options->views.empty()) { options->views.push_back(*FindView("iso")); }
    if (const std::string wrong = WrongPattern(*options); !wrong.empty()) {
        std::fprintf(stderr, "tarnwick-picture: %s\n", wrong.c_str());
        *status = 2;
        return false;
    }
    return true;
}

} // namespace tarnwick::tools
