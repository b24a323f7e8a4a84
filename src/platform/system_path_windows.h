#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

// UTF-8 to UTF-16 and back; what isn't valid becomes U+FFFD.
std::wstring Utf16Of(std::string_view text);
std::string Utf8Of(std::wstring_view text);

// A path as the calls of the system take it: UTF-16, from the root on, of any length. Needs no memory of the
// heap.
class SystemPath {
public:
    // Not usable is what can't name a file: text that isn't UTF-8, a colon after the drive's (it would name a
    // stream of a file, or a drive within a folder), and the devices that every folder has, such as
    // "nul.stp".
    explicit SystemPath(const char* path);
    SystemPath(const SystemPath&) = delete;
    SystemPath& operator=(const SystemPath&) = delete;

    bool IsUsable() const { return text_[0] != L'\0'; }
    const wchar_t* Text() const { return text_; }

private:
    static constexpr unsigned kRoom = 32768; // characters, the most that the system takes
    wchar_t text_[kRoom];
};

// The errno that says the same as an error of the system.
int ErrnoOf(unsigned long systemError);

} // namespace tarnwick
