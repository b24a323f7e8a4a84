#include "platform/child_program.h"

#include "platform/console.h"
#include "platform/programs.h"
#include "platform/system_path_windows.h"

#include <windows.h>

#include <cstring>

namespace tarnwick {

namespace {

// Appends one word so that a program of this system finds it again in its command line: in quotes, with a
// backslash before each quote in it, and with all backslashes before a quote doubled.
void AppendWord(std::wstring* line, const std::wstring& word) {
    if (!line->empty()) { line->push_back(L' '); }
    line->push_back(L'"');
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        if (c == L'"') { line->append(backslashes + 1, L'\\'); }
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        line->push_back(c);
    }
    line->append(backslashes, L'\\');
    line->push_back(L'"');
}

std::wstring LineOf(const std::vector<std::string>& command) {
    std::wstring line;
    for (const std::string& word : command) { AppendWord(&line, Utf16Of(word)); }
    return line;
}

// Starts the program at `path`; null, with *error an errno, when that fails.
HANDLE Spawn(const std::string& path, const std::vector<std::string>& command, DWORD flags, int* error) {
    std::wstring line = LineOf(command);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(Utf16Of(path).c_str(), line.data(), nullptr, nullptr, FALSE, flags, nullptr, nullptr,
                       &startup, &process) == 0) {
        *error = ErrnoOf(GetLastError());
        return nullptr;
    }
    CloseHandle(process.hThread);
    return process.hProcess;
}

void TellNotStarted(const std::string& program, int error) {
    ConsolePrint("<E> %s can't be started: %s\n", program.c_str(), std::strerror(error));
}

HANDLE HandleOf(std::intptr_t process) {
    return reinterpret_cast<HANDLE>(process);
}

} // namespace

ChildProgram::ChildProgram(const std::vector<std::string>& command) {
    const bool hasFolder = command[0].find_first_of("/\\") != std::string::npos;
    const std::string path = hasFolder ? command[0] : FindProgram(command[0]);
    int error = path.empty() ? ENOENT : 0;
    HANDLE const process = error == 0 ? Spawn(path, command, CREATE_NO_WINDOW, &error) : nullptr;
    process_ = reinterpret_cast<std::intptr_t>(process);
    if (process == nullptr) { TellNotStarted(command[0], error); }
}

bool ChildProgram::IsRunning() {
    if (process_ == 0) { return false; }
    if (WaitForSingleObject(HandleOf(process_), 0) == WAIT_TIMEOUT) { return true; }
    DWORD status = 1;
    succeeded_ = GetExitCodeProcess(HandleOf(process_), &status) != 0 && status == 0;
    CloseHandle(HandleOf(process_));
    process_ = 0;
    return false;
}

void ChildProgram::Kill() {
    if (process_ == 0) { return; }
    TerminateProcess(HandleOf(process_), 1);
    WaitForSingleObject(HandleOf(process_), INFINITE);
    CloseHandle(HandleOf(process_));
    process_ = 0;
}

void StartDetached(const std::vector<std::string>& command) {
    int error = 0;
    HANDLE const process = Spawn(command[0], command, DETACHED_PROCESS, &error);
    if (process == nullptr) {
        TellNotStarted(command[0], error);
    } else {
        CloseHandle(process);
    }
}

} // namespace tarnwick
