#include "platform/program_start.h"

#include "platform/system_path_windows.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>

namespace tarnwick {

ProgramStart::ProgramStart(int argc, char** argv) : count(argc), words(argv) {
    for (std::FILE* const stream : {stdin, stdout, stderr}) { _setmode(_fileno(stream), _O_BINARY); }
    // Some of this system's libraries buffer it until the program ends, even if that is by force.
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    SetConsoleOutputCP(CP_UTF8);
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (wide == nullptr) {
        count = argc;
        return;
    }
    for (int i = 0; i < count; ++i) { texts_.push_back(Utf8Of(wide[i])); }
    LocalFree(wide);
    for (std::string& text : texts_) { pointers_.push_back(text.data()); }
    pointers_.push_back(nullptr);
    words = pointers_.data();
}

} // namespace tarnwick
