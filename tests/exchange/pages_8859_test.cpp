// The pages of ISO 8859, against the C library's own.

#include "exchange/string_text.h"

#include <gtest/gtest.h>

#include <iconv.h>

#include <string>

namespace tarnwick::test {
namespace {

// The character as UTF-8; what the page hasn't is taken as one of ISO 8859-1.
std::string ByTheLibrary(int part, unsigned char c) {
    for (const int tried : {part, 1}) {
        const iconv_t converter = iconv_open("UTF-8", ("ISO-8859-" + std::to_string(tried)).c_str());
        char byte = static_cast<char>(c);
        char* source = &byte;
        std::size_t sourceLeft = 1;
        std::string out(8, '\0');
        char* target = out.data();
        std::size_t targetLeft = out.size();
        const std::size_t result = iconv(converter, &source, &sourceLeft, &target, &targetLeft);
        iconv_close(converter);
        out.resize(out.size() - targetLeft);
        if (result != static_cast<std::size_t>(-1)) { return out; }
    }
    return {};
}

TEST(Pages8859, AreThoseOfTheLibrary) {
    for (int part = 1; part <= 9; ++part) {
        for (int c = 0x80; c < 0x100; ++c) {
            std::string argument = "'\\P";
            argument += static_cast<char>('A' + part - 1);
            argument += "\\\\S\\";
            argument += static_cast<char>(c & 0x7F);
            argument += "'";
            EXPECT_EQ(StringOf(argument), ByTheLibrary(part, static_cast<unsigned char>(c)))
                << part << ": " << c;
        }
    }
}

} // namespace
} // namespace tarnwick::test
