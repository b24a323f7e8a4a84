#pragma once

#include "platform/within_memory.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace tarnwick {

// A name with its control characters as "?": names come from files, and a line feed in one would break a
// message in two.
inline std::string OnOneLine(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
    return name;
}

// The same for a message, which may say that there is no memory: it needs none for a name of the usual
// length, and cuts a longer one when memory runs out.
class OneLine {
public:
    explicit OneLine(std::string_view name) {
        if (name.size() >= sizeof small_) {
            if (WithinMemory([&] { large_ = OnOneLine(std::string(name)); })) {
                text_ = large_.c_str();
                return;
            }
            name = name.substr(0, sizeof small_ - 1);
        }
        *std::transform(name.begin(), name.end(), small_,
                        [](char c) { return static_cast<unsigned char>(c) < ' ' ? '?' : c; }) = '\0';
    }
    OneLine(const OneLine&) = delete;
    OneLine& operator=(const OneLine&) = delete;

    const char* Text() const { return text_; }

private:
    char small_[512];
    std::string large_;
    const char* text_ = small_;
};

} // namespace tarnwick
