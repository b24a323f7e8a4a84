// There is no program of this kind for this system yet.

#include "platform/service_process.h"

namespace tarnwick {

ServiceProcess::Start ServiceProcess::Run(const std::vector<std::string>&, std::string* why) {
    *why = "there is none for Windows";
    return Start::kNotStarted;
}

bool ServiceProcess::Wait(int, bool, Ready*) {
    return false;
}

bool ServiceProcess::Send(const char*, std::size_t, std::size_t*) {
    return false;
}

bool ServiceProcess::Receive(char*, std::size_t, std::size_t* got) {
    *got = 0;
    return false;
}

ProcessEnd ServiceProcess::End() {
    return {};
}

ProcessEnd ServiceProcess::EndAfter(double) {
    return {};
}

} // namespace tarnwick
