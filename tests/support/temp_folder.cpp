#include "support/temp_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace tarnwick::test {

TempFolder::TempFolder() {
    // Tests write thousands of small files; a file system in memory takes them faster.
    std::error_code ignored;
    const bool inMemory = std::filesystem::is_directory("/dev/shm", ignored);
    const std::filesystem::path above = inMemory ? "/dev/shm" : std::filesystem::temp_directory_path();
    std::random_device random;
    do {
        path_ = (above / ("tarnwick-test-" + std::to_string(random()))).generic_string();
    } while (!std::filesystem::create_directory(path_));
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TempFolder::Write(std::string_view name, std::string_view bytes) const {
    const std::string path = Path(name);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) { std::abort(); }
    return path;
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace tarnwick::test
