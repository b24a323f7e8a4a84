#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick {

// How a process ended.
struct ProcessEnd {
    enum class Kind : std::uint8_t { kExit, kSignal };
    Kind kind = Kind::kExit;
    int number = 0; // the exit status, or the signal
};

// A program that talks with us over its standard input and output; what it writes to standard error is lost.
// For one thread at a time.
class ServiceProcess {
public:
    ServiceProcess() = default;
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;
    ~ServiceProcess() { End(); }

    enum class Start : std::uint8_t { kRuns, kNoConnection, kNotStarted };
    // Starts the program that the first word names, with the others as its arguments; *why says in words why
    // it doesn't run. To be called while none runs.
    Start Run(const std::vector<std::string>& command, std::string* why);
    bool IsRunning() const { return process_ != 0; }

    // Waits for at most so many milliseconds until there is something to read or, with `forRoom`, room to
    // write. False when waiting fails for good.
    struct Ready {
        bool toRead = false;
        bool toWrite = false;
    };
    bool Wait(int milliseconds, bool forRoom, Ready* ready);

    // Sends as many bytes as there is room for now, and adds their number to *sent. False when the other side
    // takes no more; it then reads an end of file.
    bool Send(const char* bytes, std::size_t count, std::size_t* sent);
    // Takes up to `room` bytes, and sets *got to how many there were; false when there will be no more.
    bool Receive(char* bytes, std::size_t room, std::size_t* got);

    // Ends the process, if there is one, and waits for its end.
    ProcessEnd End();
    // The same for a process that has closed its side: it has so many seconds to end by itself. One must run.
    ProcessEnd EndAfter(double seconds);

private:
    int process_ = 0; // 0 when there is none
    int socket_ = -1; // its standard input and output
};

} // namespace tarnwick
