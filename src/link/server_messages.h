#pragma once

#include "link/link_port.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

enum class ServerMessage { Unknown, Load, Check, Registered };

// Tells the messages apart by their first characters.
ServerMessage KindOf(std::string_view text);

// Carries out a message of the service, whatever it holds, up to its first NUL. Called on the link's own
// thread, for one message at a time.
void OnServerMessage(LinkPort& dialog, std::string_view text);

// A quoted key and its quoted value, without regard to escape sequences.
struct KeyValue {
    std::string_view key;
    std::string_view value;
};

// Reads the first pair at or after `position`, which is moved to the quote at its end. Nothing, with
// `position` npos, when the text ends before that.
std::optional<KeyValue> ReadKeyValue(std::string_view text, std::size_t& position);

// The file name that a download of `url` gets: what follows its last "/" or "\", or without either of them
// the URL without its first character. Nothing when the download wouldn't become a file of that name in the
// folder of downloads.
std::optional<std::string> DownloadName(const std::string& url);

} // namespace tarnwick
