#pragma once

#include "link/link_port.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

enum class ServerMessage { Unknown, Load, Check, Registered };

// Tells the messages apart by their first characters.
ServerMessage KindOf(std::string_view text);

// Carries out a message of the service, whatever it holds. The text ends at its
// first NUL. Called on the link's own thread, for one message at a time.
void OnServerMessage(LinkPort& dialog, std::string_view text);

// A quoted key and its quoted value. No escape sequences are known.
struct KeyValue {
    std::string_view key;
    std::string_view value;
};

// Reads the first pair after `position`, which is moved to the quote at its end; nothing when the text ends
// before.
std::optional<KeyValue> ReadKeyValue(std::string_view text, std::size_t& position);

// The file name that a download of `url` gets: what follows its last "/" or "\", or without either of them
// the URL less its first character. Nothing when the download would not become a file of that name in the
// folder of downloads.
std::optional<std::string> DownloadName(const std::string& url);

} // namespace tarnwick
