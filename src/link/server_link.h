#pragma once

#include "link/link_port.h"
#include "link/selection.h"

#include <memory>

namespace tarnwick {

// The client side of the link with the service of the web viewer: one WebSocket connection, opened by the
// user and kept until the dialog closes. A process has one link. Call its functions on the dialog's thread;
// they wait for the network, with no time limit of their own.
class ServerLink {
public:
    // `dialog` must outlive the link.
    explicit ServerLink(LinkPort& dialog);
    ServerLink(const ServerLink&) = delete;
    ServerLink& operator=(const ServerLink&) = delete;
    // Waits until the current message is handled. `dialog` must already know that the dialog closes.
    ~ServerLink();

    // Connects to the service, unless that has succeeded before, and registers. A failure is only logged.
    void OnConnect();
    // Closes the connection without waiting for its end, also when there is none.
    void OnClose();
    // Opens the HTML viewer in a browser at the picked face.
    void OnAddPmi(const Selection& selection);
    // Asks the service for a material for the picked solid or shell. A failure is logged.
    void OnAddMaterial(const Selection& selection);

    // Set by the first successful connect and never cleared, so a connection that was lost stays lost.
    bool connected = false;

private:
    struct Session;
    std::unique_ptr<Session> session_;
    LinkPort& dialog_;
};

} // namespace tarnwick
