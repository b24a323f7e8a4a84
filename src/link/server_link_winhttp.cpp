// The link by the system's own client, which trusts the system's certificate authorities.

#include "link/message_queue.h"
#include "link/server_link.h"
#include "link/server_messages.h"
#include "link/server_requests.h"
#include "platform/console.h"
#include "platform/paths.h"
#include "platform/programs.h"
#include "platform/system_path_windows.h"

#include <windows.h>

#include <winhttp.h>

#include <algorithm>
#include <exception>
#include <mutex>
#include <new>
#include <string>
#include <system_error>
#include <thread>

namespace tarnwick {

namespace {

constexpr std::size_t kPiece = 64 << 10;
constexpr int kConnectTimeout = 60000; // milliseconds

// Owns a handle of the client.
class Handle {
public:
    Handle() = default;
    explicit Handle(HINTERNET handle) : handle_(handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { Close(); }

    HINTERNET Get() const { return handle_; }
    void Take(HINTERNET handle) {
        Close();
        handle_ = handle;
    }
    void Close() {
        if (handle_ != nullptr) { WinHttpCloseHandle(handle_); }
        handle_ = nullptr;
    }

private:
    HINTERNET handle_ = nullptr;
};

// What the system says about an error of its own or of its client.
std::string WordsOf(DWORD error) {
    wchar_t text[512];
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS,
        GetModuleHandleW(L"winhttp.dll"), error, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
    std::string words = Utf8Of({text, length});
    while (!words.empty() && static_cast<unsigned char>(words.back()) <= ' ') { words.pop_back(); }
    const std::string number = "error " + std::to_string(error);
    return words.empty() ? number : words + " (" + number + ")";
}

void TellFailure(DWORD error) {
    ConsolePrint("No server available\n");
    ConsolePrint("%s\n", WordsOf(error).c_str());
}

// The parts of "wss://host:port/path".
struct ServiceAddress {
    bool isSecure = false;
    std::wstring host;
    INTERNET_PORT port = 0;
    std::wstring path = L"/";
};

bool ReadAddress(const std::string& uri, ServiceAddress* address) {
    address->isSecure = uri.starts_with("wss://");
    if (!address->isSecure && !uri.starts_with("ws://")) { return false; }
    // The system knows only the schemes of HTTP.
    const std::wstring url = Utf16Of("http" + uri.substr(2));
    URL_COMPONENTS parts{};
    parts.dwStructSize = sizeof parts;
    parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = static_cast<DWORD>(-1);
    if (WinHttpCrackUrl(url.c_str(), 0, 0, &parts) == 0) { return false; }
    address->host.assign(parts.lpszHostName, parts.dwHostNameLength);
    address->port = parts.nPort;
    if (parts.dwUrlPathLength > 0) { address->path.assign(parts.lpszUrlPath, parts.dwUrlPathLength); }
    if (parts.dwExtraInfoLength > 0) { address->path.append(parts.lpszExtraInfo, parts.dwExtraInfoLength); }
    return true;
}

} // namespace

struct ServerLink::Session {
    explicit Session(LinkPort& dialog)
        : queue([&dialog](const std::string& text) { OnServerMessage(dialog, text); }) {}

    // Returns 0, or an error of the system.
    DWORD Connect(const std::string& uri) {
        ServiceAddress address;
        if (!ReadAddress(uri, &address)) { return ERROR_WINHTTP_INVALID_URL; }
        client.Take(WinHttpOpen(L"Tarnwick", WINHTTP_ACCESS_TYPE_NO_PROXY, WINHTTP_NO_PROXY_NAME,
                                WINHTTP_NO_PROXY_BYPASS, 0));
        if (client.Get() == nullptr) { return GetLastError(); }
        // No limit for the last one: a service may be silent for ever.
        WinHttpSetTimeouts(client.Get(), kConnectTimeout, kConnectTimeout, kConnectTimeout, 0);
        connection.Take(WinHttpConnect(client.Get(), address.host.c_str(), address.port, 0));
        if (connection.Get() == nullptr) { return GetLastError(); }
        const Handle request(WinHttpOpenRequest(connection.Get(), L"GET", address.path.c_str(), nullptr,
                                                WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
                                                address.isSecure ? WINHTTP_FLAG_SECURE : 0));
        if (request.Get() == nullptr ||
            WinHttpSetOption(request.Get(), WINHTTP_OPTION_UPGRADE_TO_WEB_SOCKET, nullptr, 0) == 0 ||
            WinHttpSendRequest(request.Get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, nullptr, 0, 0, 0) == 0 ||
            WinHttpReceiveResponse(request.Get(), nullptr) == 0) {
            return GetLastError();
        }
        HINTERNET const upgraded = WinHttpWebSocketCompleteUpgrade(request.Get(), 0);
        if (upgraded == nullptr) { return GetLastError(); }
        socket.Take(upgraded);
        return Listen();
    }

    // Returns 0, or an error of the system.
    DWORD Listen() {
        try {
            listener = std::thread([this] { TakeAll(); });
        } catch (const std::exception&) { // no thread, or no memory for one
            socket.Close();
            return ERROR_NOT_ENOUGH_MEMORY;
        }
        return 0;
    }

    DWORD Send(const std::string& text) {
        const std::lock_guard guard(sendLock);
        if (socket.Get() == nullptr || isClosed) { return ERROR_WINHTTP_CONNECTION_ERROR; }
        return WinHttpWebSocketSend(socket.Get(), WINHTTP_WEB_SOCKET_UTF8_MESSAGE_BUFFER_TYPE,
                                    const_cast<char*>(text.data()), static_cast<DWORD>(text.size()));
    }

    // Runs on the listener until the connection ends.
    void TakeAll() {
        std::string text;
        std::string piece(kPiece, '\0');
        for (;;) {
            DWORD got = 0;
            WINHTTP_WEB_SOCKET_BUFFER_TYPE type{};
            if (WinHttpWebSocketReceive(socket.Get(), piece.data(), static_cast<DWORD>(piece.size()), &got,
                                        &type) != 0 ||
                type == WINHTTP_WEB_SOCKET_CLOSE_BUFFER_TYPE) {
                return;
            }
            const bool isText = type == WINHTTP_WEB_SOCKET_UTF8_MESSAGE_BUFFER_TYPE ||
                                type == WINHTTP_WEB_SOCKET_UTF8_FRAGMENT_BUFFER_TYPE;
            if (!isText) { continue; }
            if (!Keep(std::string_view(piece).substr(0, got), &text)) {
                text.clear();
                continue;
            }
            if (type == WINHTTP_WEB_SOCKET_UTF8_MESSAGE_BUFFER_TYPE) {
                Take(std::move(text));
                text.clear();
            }
        }
    }

    static bool Keep(std::string_view piece, std::string* text) {
        try {
            text->append(piece);
        } catch (const std::bad_alloc&) {
            ConsolePrint("<E> Message of the server: it needs more memory than there is\n");
            return false;
        }
        return true;
    }

    void Take(std::string text) {
        try {
            if (KindOf(text) == ServerMessage::Unknown) { return; }
            if (!queue.Push(std::move(text))) { ConsolePrint("<E> Message of the server: too many wait\n"); }
        } catch (const std::bad_alloc&) {
            ConsolePrint("<E> Message of the server: it needs more memory than there is\n");
        } catch (const std::system_error& failure) {
            ConsolePrint("<E> Message of the server: no thread for it, %s\n", failure.what());
        }
    }

    void SayClosed() {
        const std::lock_guard guard(sendLock);
        if (socket.Get() != nullptr && !isClosed) {
            WinHttpWebSocketShutdown(socket.Get(), WINHTTP_WEB_SOCKET_SUCCESS_CLOSE_STATUS, nullptr, 0);
        }
        isClosed = true;
    }

    // Ends the listener, whose wait ends with the handle of the connection.
    void End() {
        if (!listener.joinable()) { return; }
        SayClosed();
        socket.Close();
        listener.join();
    }

    MessageQueue queue; // outlives the listener, which fills it
    std::mutex sendLock;
    bool isClosed = false; // by us
    Handle client;
    Handle connection;
    Handle socket;
    std::thread listener;
};

ServerLink::ServerLink(LinkPort& dialog) : session_(std::make_unique<Session>(dialog)), dialog_(dialog) {}

ServerLink::~ServerLink() {
    session_->End();
}

void ServerLink::OnConnect() {
    DWORD error = 0;
    if (!connected) {
        error = session_->Connect(ServiceUri(TARNWICK_SERVICE_URI));
        if (error == 0) {
            dialog_.SetLinkText("Connected");
            connected = true;
        }
    }
    if (error == 0) { error = session_->Send(CheckRequest()); }
    if (error == 0) { error = session_->Send(RegisterRequest()); }
    if (error != 0) { TellFailure(error); }
}

void ServerLink::OnClose() {
    session_->SayClosed();
}

void ServerLink::OnAddPmi(const Selection& selection) {
    // The HTML viewer is beside the program.
    std::string folder = FolderOf(OwnProgram()) + "Velquist/viewer";
    std::replace(folder.begin(), folder.end(), '\\', '/');
    EditPmi(dialog_, {"chromium", "chrome", "msedge"}, folder, selection);
}

void ServerLink::OnAddMaterial(const Selection& selection) {
    const DWORD error = session_->Send(MaterialRequest(selection));
    if (error != 0) { TellFailure(error); }
}

} // namespace tarnwick
