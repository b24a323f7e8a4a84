#pragma once

#include <string>
#include <string_view>

namespace tarnwick::test {

// A new, empty folder; this object's destructor removes it with all that is in it.
class TempFolder {
public:
    TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    // The path of a name in the folder.
    std::string Path(std::string_view name) const { return path_ + "/" + std::string(name); }
    // Writes a file of that name; returns its path.
    std::string Write(std::string_view name, std::string_view bytes) const;

private:
    std::string path_;
};

std::string ReadWholeFile(const std::string& path);

} // namespace tarnwick::test
