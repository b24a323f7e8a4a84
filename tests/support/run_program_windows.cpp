#include "support/run_program.h"

#include "support/temp_folder.h"

#include <windows.h>

#include <cstdlib>

namespace tarnwick::test {

namespace {

std::wstring Wide(const std::string& text) {
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    wide.pop_back();
    return wide;
}

// A word as programs take it out of their command line again.
std::wstring Quoted(const std::wstring& word) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        if (c == L'"') { quoted.append(backslashes + 1, L'\\'); }
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        quoted.push_back(c);
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

HANDLE OutputTo(const std::string& path) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE const file = CreateFileW(Wide(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) { std::abort(); }
    return file;
}

// Sets variables of the environment while this object lives.
class Variables {
public:
    explicit Variables(const std::vector<std::string>& environment) {
        for (const std::string& variable : environment) {
            const std::size_t equals = variable.find('=');
            names_.push_back(Wide(variable.substr(0, equals)));
            SetEnvironmentVariableW(names_.back().c_str(), Wide(variable.substr(equals + 1)).c_str());
        }
    }
    Variables(const Variables&) = delete;
    Variables& operator=(const Variables&) = delete;
    ~Variables() {
        for (const std::wstring& name : names_) { SetEnvironmentVariableW(name.c_str(), nullptr); }
    }

private:
    std::vector<std::wstring> names_;
};

} // namespace

ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment) {
    const TempFolder folder;
    const std::string outputPath = folder.Path("output");
    const std::string errorsPath = folder.Path("errors");
    std::wstring line = Quoted(Wide(program));
    for (const std::string& argument : arguments) { line += L" " + Quoted(Wide(argument)); }
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = OutputTo(outputPath);
    startup.hStdError = OutputTo(errorsPath);
    PROCESS_INFORMATION process{};
    {
        const Variables variables(environment);
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                           &process) == 0) {
            std::abort();
        }
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    for (HANDLE const handle : {process.hProcess, process.hThread, startup.hStdOutput, startup.hStdError}) {
        CloseHandle(handle);
    }
    const bool isException = status >= 0xC0000000; // what ends a program by force has such a status
    return {isException ? -1 : static_cast<int>(status), ReadWholeFile(outputPath),
            ReadWholeFile(errorsPath)};
}

} // namespace tarnwick::test
