#pragma once

namespace tarnwick {

// What the dialog asks of the link with a service. The dialog doesn't own the link; without one the Connect
// button is disabled.
class ServerPort {
public:
    virtual ~ServerPort() = default;
    // The Connect button. Each press connects if need be, and registers.
    virtual void OnConnect() = 0;
    virtual void OnAddPmi() = 0;
    virtual void OnAddMaterial() = 0;
    // The dialog closes.
    virtual void OnClose() = 0;
};

} // namespace tarnwick
