// tarnwick_link_service CERTIFICATE KEY: a service over TLS for a viewer that a script drives. Prints its
// port, then each message as it comes. Each line of its standard input goes to the viewer; it ends with its
// input.

#include "web_server.h"

#include <iostream>
#include <mutex>
#include <string>

int main(int argc, char** argv) {
    if (argc != 3) { return 2; }
    std::mutex lock; // of standard output
    const auto say = [&lock](const std::string& line) {
        const std::lock_guard guard(lock);
        std::cout << line << std::endl;
    };
    const auto server = tarnwick::test::WebServer::Tls(argv[1], argv[2], [&say](const std::string& text) {
        say("message " + text);
        const bool registers = text.find("\"register\"") != std::string::npos;
        return registers ? std::string(R"({"action":"registered","uuid":"9f2c"})") : std::string();
    });
    say("port " + std::to_string(server->Port()));
    for (std::string line; std::getline(std::cin, line);) { server->SendText(line); }
}
