#pragma once

#include <string>
#include <string_view>

namespace tarnwick {

// UTF-16 of UTF-8 and back; what is neither becomes U+FFFD.
std::wstring Utf16Of(std::string_view text);
std::string Utf8Of(std::wstring_view text);

// A path as the calls of the system take it: UTF-16, from the root on, of any length. On the stack, since it
// must be had without memory of the heap, too.
class SystemPath {
public:
    // What the system can have no file for isn't usable: names that aren't UTF-8, a colon behind the drive's
    // (it would name a stream of a file, or a drive within a folder), and the devices that stand in every
    // folder, as "nul.stp".
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
