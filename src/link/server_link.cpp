#include "link/server_link.h"
#include "link/message_queue.h"
#include "link/server_messages.h"
#include "link/server_requests.h"
#include "platform/console.h"

#include <cpprest/ws_client.h>

#include <exception>
#include <new>
#include <string>
#include <system_error>

namespace tarnwick {

namespace {

using web::websockets::client::websocket_callback_client;
using web::websockets::client::websocket_client_config;
using web::websockets::client::websocket_incoming_message;
using web::websockets::client::websocket_outgoing_message;

constexpr const char* kViewerFolder = TARNWICK_BASE_FOLDER "/Velquist/viewer";

void TellFailure(const std::exception& failure) {
    ConsolePrint("No server available\n");
    ConsolePrint("%s\n", failure.what());
}

void Send(websocket_callback_client& client, const std::string& text) {
    websocket_outgoing_message message;
    message.set_utf8_message(text);
    client.send(message).wait();
}

} // namespace

struct ServerLink::Session {
    explicit Session(LinkPort& dialog)
        : queue([&dialog](const std::string& text) { OnServerMessage(dialog, text); }) {}

    // A client object connects once in its life: the library ends the process at a second try. It has its
    // handler before it connects, or else it would miss what the service says at once, and keeps it, since
    // the library reads it without a lock.
    void MakeClient() {
        client = websocket_callback_client(websocket_client_config());
        client.set_message_handler([this](const websocket_incoming_message& message) { Take(message); });
    }

    // On the library's thread, which must neither wait nor see an exception.
    void Take(const websocket_incoming_message& message) {
        try {
            std::string text = message.extract_string().get();
            if (KindOf(text) == ServerMessage::Unknown) { return; }
            if (!queue.Push(std::move(text))) { ConsolePrint("<E> Message of the server: too many wait\n"); }
        } catch (const std::bad_alloc&) {
            ConsolePrint("<E> Message of the server: it needs more memory than there is\n");
        } catch (const std::system_error& failure) {
            ConsolePrint("<E> Message of the server: no thread for it, %s\n", failure.what());
        } catch (const std::exception&) {
            // A message that isn't text isn't ours.
        }
    }

    MessageQueue queue; // outlives the client, whose handler fills it
    websocket_callback_client client;
};

ServerLink::ServerLink(LinkPort& dialog) : session_(std::make_unique<Session>(dialog)), dialog_(dialog) {
    session_->MakeClient();
}

// The library keeps the client for a moment after each message, so the last reference to it may end on one
// of its threads, where its destructor would wait for a close that needs this very thread. After the close
// here it has nothing to wait for, and no message comes once the queue is gone.
ServerLink::~ServerLink() {
    if (!connected) { return; }
    try {
        session_->client.close().wait();
    } catch (const std::exception&) {
        // Then there is nothing left to close.
    }
}

void ServerLink::OnConnect() {
    try {
        if (!connected) {
            session_->MakeClient();
            session_->client.connect(web::uri(ServiceUri(TARNWICK_SERVICE_URI))).wait();
            dialog_.SetLinkText("Connected");
            connected = true;
        }
        Send(session_->client, CheckRequest());
        Send(session_->client, RegisterRequest());
    } catch (const std::exception& failure) { TellFailure(failure); }
}

void ServerLink::OnClose() {
    try {
        session_->client.close();
    } catch (const std::exception&) {
        // Then there is nothing left to close.
    }
}

void ServerLink::OnAddPmi(const Selection& selection) {
    EditPmi(dialog_, {"chromium", "google-chrome"}, kViewerFolder, selection);
}

void ServerLink::OnAddMaterial(const Selection& selection) {
    try {
        Send(session_->client, MaterialRequest(selection));
    } catch (const std::exception& failure) { TellFailure(failure); }
}

} // namespace tarnwick
