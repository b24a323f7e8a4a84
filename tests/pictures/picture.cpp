#include "pictures/picture.h"

#include "support/temp_folder.h"

#include <png.h>

#include <algorithm>
#include <cstdlib>

namespace tarnwick::test {

Picture PictureOfBytes(const std::string& png) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, png.data(), png.size()) == 0) { return {}; }
    image.format = PNG_FORMAT_RGBA;
    Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    picture.pixels.resize(static_cast<std::size_t>(image.width) * image.height);
    if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) == 0) { return {}; }
    return picture;
}

Picture ReadPicture(const std::string& path) {
    return PictureOfBytes(ReadWholeFile(path));
}

ProgramRun RunPicture(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment) {
    // The search for leaks at the end of a process breaks down now and then on the driver's threads. The
    // tests of the window that is drawn search in the same code.
    std::vector<std::string> all{"LIBGL_ALWAYS_SOFTWARE=true", "GALLIUM_DRIVER=llvmpipe",
                                 "LSAN_OPTIONS=detect_leaks=0"};
    all.insert(all.end(), environment.begin(), environment.end());
    return RunProgram(TARNWICK_PICTURE, arguments, all);
}

int DifferentPixels(const Picture& a, const Picture& b, int tolerance) {
    if (a.width != b.width || a.height != b.height) {
        return static_cast<int>(std::max(a.pixels.size(), b.pixels.size()));
    }
    int different = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        int most = 0;
        for (std::size_t c = 0; c < 4; ++c) {
            most = std::max(most, std::abs(a.pixels[i][c] - b.pixels[i][c]));
        }
        different += most > tolerance ? 1 : 0;
    }
    return different;
}

bool Alike(const Picture& a, const Picture& b) {
    return a.width > 0 && DifferentPixels(a, b) <= kMostDifferent * static_cast<double>(a.pixels.size());
}

} // namespace tarnwick::test
