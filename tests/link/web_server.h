// A service for the link to talk to: a WebSocket server on a free port of the loopback address, which serves
// files by HTTP as well. Its library wants an older C++ than ours, so this header is all that tests see of
// it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick::test {

class WebServer {
public:
    // What is sent back for a message; nothing for an empty text.
    using Answer = std::function<std::string(const std::string&)>;

    static std::unique_ptr<WebServer> Plain(Answer answer = {});
    // With the certificate and the key of two PEM files.
    static std::unique_ptr<WebServer> Tls(const std::string& certificate, const std::string& key,
                                          Answer answer = {});
    virtual ~WebServer() = default;

    virtual int Port() const = 0;
    // To every open connection; when there has been none, they wait for the first.
    virtual void SendText(const std::string& text) = 0;
    virtual void SendBinary(const std::string& bytes) = 0;
    // Closes every connection.
    virtual void Drop() = 0;
    // What is answered to HTTP requests for `path`; others get status 404.
    virtual void Serve(const std::string& path, const std::string& body) = 0;

    // These wait for up to a minute until that many have come, and tell whether they have.
    virtual bool WaitForMessages(std::size_t count) = 0;
    virtual bool WaitForConnections(int count) = 0;
    virtual bool WaitForCloses(int count) = 0;
    virtual std::vector<std::string> Messages() = 0;
    virtual int Connections() = 0;
    // The paths of the HTTP requests, as they came.
    virtual std::vector<std::string> Requests() = 0;
};

} // namespace tarnwick::test
