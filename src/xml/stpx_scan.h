#pragma once

#include <cstddef>
#include <string_view>

// The flat scanner of STEP XML: tags with up to three attributes, and element texts, read forward through one
// text without nesting. What it takes as a tag's end or as an attribute is part of the format.
namespace tarnwick {

// The room for a tag or an attribute, and for a text, with the NUL. A document with a longer one is given up.
inline constexpr std::size_t kTagRoom = 112;
inline constexpr std::size_t kTextRoom = 208;

// A scan over one text. The views point into the text, or into a buffer of the caller.
struct StpxScan {
    const char* at;
    const char* end;               // the place of PrepareText's sentinel
    const char* name;              // of the document, for messages
    std::string_view tag = {};     // the current tag with its "<" or "</", without attributes
    std::string_view id = {};      // value of its attribute "id"
    std::string_view uid = {};     // value of its last attribute whose name begins with "uid"
    std::string_view xsiType = {}; // value of its attribute "xsi:type"
    const char* problem = nullptr; // why the text is given up, a phrase in static memory
};

// Writes the sentinel after a text of `size` characters: 16 bytes there must be writable, 48 readable.
void PrepareText(char* text, std::size_t size);

// Moves to the next "<" and on to the first blank, line feed or ">", where `at` is left. `tag` gets the first
// 90 characters of the tag at most. False, with `problem` set, at the end of the text.
bool ScanTagName(StpxScan* scan);

// The same with the attributes, which leaves `at` on the tag's ">" or "/". The oddities are the format's: a
// carriage return is no white space, and an attribute's name is looked for up to the next "=" in the text,
// wherever that is. False, with `problem` set, at the end of the text or when a value doesn't fit.
bool ScanTagWithAttributes(StpxScan* scan);

// The element text at `at`, up to the next "<", where `at` is left; "&amp;" becomes "&". A text with such a
// "&amp;" is put together in `buffer`, of `room` characters. At any other "&" the reader stalls. False, with
// `problem` set, at the end of the text or when the text and its NUL don't fit into `room`.
bool ReadElementText(StpxScan* scan, char* buffer, std::size_t room, std::string_view* text);

} // namespace tarnwick
