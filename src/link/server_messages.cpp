// The service writes JSON, but always in the same form, so its messages are read by fixed places.

#include "link/server_messages.h"
#include "platform/console.h"
#include "platform/files.h"
#include "text/one_line.h"

#include <cstring>

namespace tarnwick {

namespace {

constexpr std::string_view kLoad = R"({"Load")";
constexpr std::string_view kCheck = R"({"Check")";
constexpr std::string_view kRegistered = R"({"action":"registered)"; // the quote at its end isn't looked at
constexpr std::size_t kLoadValue = kLoad.size() + 2;                 // after a colon and a quote

void GiveUp(const char* reason) {
    ConsolePrint("<E> Message of the server: %s\n", reason);
}

// Removes what an earlier or broken download has left, or it would be taken for the file. False, with a line
// on the console, when that fails.
bool Remove(const std::string& path) {
    const int error = RemoveFile(path);
    if (error == 0) { return true; }
    ConsolePrint("<E> Download: %s is not whole and can't be removed: %s\n", OneLine(path).Text(),
                 std::strerror(error));
    return false;
}

// Downloads `url` and returns the path of the local file in quotes; empty when there can't be one. After a
// download that failed there is no file at the path.
std::string Download(LinkPort& dialog, const std::string& url) {
    const std::optional<std::string> name = DownloadName(url);
    if (!name) {
        ConsolePrint("<E> Download: no file name in the URL %s\n", OneLine(url).Text());
        return {};
    }
    const std::string folder = dialog.DownloadFolder();
    ConsolePrint("curl -k -X GET %s -o %s  --output-dir %s", OneLine(url).Text(), OneLine(*name).Text(),
                 OneLine(folder).Text());
    ConsolePrint("\n\n");
    const std::string path = folder + '/' + *name;
    const bool whole =
        dialog.RunProgram({"curl", "-k", "-X", "GET", url, "-o", *name, "--output-dir", folder});
    return whole || Remove(path) ? '"' + path + '"' : std::string();
}

void OnLoad(LinkPort& dialog, std::string_view text) {
    const std::size_t end = text.find('"', kLoadValue);
    if (end == std::string_view::npos) { return GiveUp("the text to load has no end"); }
    const std::string value(text.substr(kLoadValue, end - kLoadValue));
    const bool isUrl = value.starts_with("http");
    const std::string arguments = isUrl ? Download(dialog, value) : value;
    if (isUrl && arguments.empty()) { return; }
    dialog.Load(arguments);
    dialog.Invalidate();
}

void OnRegistered(LinkPort& dialog, std::string_view text) {
    dialog.SetLinkText("Connected");
    std::size_t position = text.find(',');
    if (position == std::string_view::npos) { return GiveUp("no comma after the action"); }
    const std::optional<KeyValue> pair = ReadKeyValue(text, position);
    if (!pair) { return GiveUp("it ends within a key or its value"); }
    if (pair->key != "uuid") { return; }
    const std::string uuid(pair->value);
    dialog.CopyToClipboard(uuid);
    ConsolePrint("3D Viewer session UUID: %s\n", OneLine(uuid).Text());
    dialog.ShowMessage(
        "Connect", "3D Viewer session UUID:\n\nThe UUID is in the clipboard; paste it in the HTML viewer");
}

} // namespace

ServerMessage KindOf(std::string_view text) {
    if (text.starts_with(kLoad)) { return ServerMessage::Load; }
    if (text.starts_with(kCheck)) { return ServerMessage::Check; }
    return text.starts_with(kRegistered) ? ServerMessage::Registered : ServerMessage::Unknown;
}

void OnServerMessage(LinkPort& dialog, std::string_view text) {
    text = text.substr(0, text.find('\0'));
    switch (KindOf(text)) {
    case ServerMessage::Load:
        return OnLoad(dialog, text);
    case ServerMessage::Check:
        dialog.SetLinkText("Connected");
        return;
    case ServerMessage::Registered:
        return OnRegistered(dialog, text);
    case ServerMessage::Unknown:
        return;
    }
}

std::optional<KeyValue> ReadKeyValue(std::string_view text, std::size_t& position) {
    // Each search starts after what the last one found.
    const auto goTo = [&](char c) {
        if (position != std::string_view::npos) { position = text.find(c, position); }
        return position == std::string_view::npos ? position : position++;
    };
    const std::size_t keyQuote = goTo('"');
    const std::size_t keyEnd = goTo('"');
    goTo(':');
    const std::size_t valueQuote = goTo('"');
    const std::size_t valueEnd = goTo('"');
    if (valueEnd == std::string_view::npos) { return std::nullopt; }
    position = valueEnd;
    return KeyValue{text.substr(keyQuote + 1, keyEnd - keyQuote - 1),
                    text.substr(valueQuote + 1, valueEnd - valueQuote - 1)};
}

std::optional<std::string> DownloadName(const std::string& url) {
    const std::size_t separator = url.find_last_of("/\\");
    std::string name = url.substr(separator == std::string::npos ? 1 : separator + 1);
    // "-" is curl's name for standard output.
    if (name.empty() || name == "." || name == ".." || name == "-") { return std::nullopt; }
    // For a URL with alternatives, curl replaces "#1" in the name by the chosen one, with any "/" in it.
    if (name.find('#') != std::string::npos && url.find_first_of("{[") != std::string::npos) {
        return std::nullopt;
    }
    return name;
}

} // namespace tarnwick
