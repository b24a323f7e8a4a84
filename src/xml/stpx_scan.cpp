#include "xml/stpx_scan.h"

#include "platform/stall.h"
#include "text/text_find.h"

#include <algorithm>
#include <cstring>

namespace tarnwick {

namespace {

// Every search stops at one of these. Two quotes, since the search for a value's second one may start after
// the first.
constexpr std::string_view kSentinel = "=\"\"> <\n";
constexpr std::size_t kLongestTagName = 90;

constexpr const char* kEndOfText = "it ends before its </DataContainer>";
static_assert(kTagRoom == 112, "the phrases below name it");
constexpr const char* kLongTag = "a tag has 112 characters or more";
constexpr const char* kLongAttribute = "an attribute has 112 characters or more";
constexpr const char* kLongText = "the text of an element is too long";

bool GiveUp(StpxScan* scan, const char* problem) {
    scan->at = scan->end;
    scan->problem = problem;
    return false;
}

// The "<" of the next tag, or null. Most tags are near, so a loop is faster than a call of memchr.
const char* FindTag(const StpxScan* scan) {
    constexpr std::ptrdiff_t kNear = 32;
    const char* p = scan->at;
    if (scan->end - p >= kNear) [[likely]] {
        const char* const near = find::Near<'<'>(p);
        if (near != nullptr) { return near; }
        p += kNear;
    }
    if (p >= scan->end) { return nullptr; }
    return static_cast<const char*>(std::memchr(p, '<', static_cast<std::size_t>(scan->end - p)));
}

// The end of the tag's name. *nul is the first NUL in the name, else its end: comparisons stop there.
const char* FindNameEnd(const char* tag, const char** nul) {
    const char* p = find::First<' ', '\n', '>', '\0'>(tag);
    *nul = p;
    while (*p == '\0') [[unlikely]] {
            p = find::First<' ', '\n', '>', '\0'>(p + 1);
        }
    return p;
}

std::string_view Between(const char* start, const char* end) {
    return {start, static_cast<std::size_t>(end - start)};
}

bool StartsWith(const char* p, std::string_view prefix) {
    return std::memcmp(p, prefix.data(), prefix.size()) == 0;
}

} // namespace

void PrepareText(char* text, std::size_t size) {
    std::memcpy(text + size, kSentinel.data(), kSentinel.size());
}

bool ScanTagName(StpxScan* scan) {
    const char* const tag = FindTag(scan);
    if (tag == nullptr) { return GiveUp(scan, kEndOfText); }
    const char* nul;
    const char* const stop = FindNameEnd(tag, &nul);
    if (stop >= scan->end) { return GiveUp(scan, kEndOfText); }
    scan->tag = Between(tag, nul).substr(0, kLongestTagName);
    scan->at = stop;
    return true;
}

bool ScanTagWithAttributes(StpxScan* scan) {
    const char* const tag = FindTag(scan);
    if (tag == nullptr) { return GiveUp(scan, kEndOfText); }
    const char* nul;
    const char* p = FindNameEnd(tag, &nul);
    if (p >= scan->end) { return GiveUp(scan, kEndOfText); }
    if (static_cast<std::size_t>(p - tag) >= kTagRoom) { return GiveUp(scan, kLongTag); }
    scan->tag = Between(tag, nul);
    scan->id = scan->uid = scan->xsiType = {};
    if (*p != '>') {
        do {
            if (*p == '/') { break; }
            while (*p == ' ' || *p == '\t' || *p == '\n') { ++p; }
            const char* const name = p;
            const char* value;
            std::string_view* field = nullptr;
            // The usual spellings first: their values begin at a fixed place, and no search is needed.
            if (StartsWith(name, "uid=\"")) {
                field = &scan->uid;
                value = name + 5;
            } else if (StartsWith(name, "uidRef=\"")) {
                field = &scan->uid;
                value = name + 8;
            } else if (StartsWith(name, "xsi:type=\"")) {
                field = &scan->xsiType;
                value = name + 10;
            } else {
                if (StartsWith(name, "uid")) {
                    field = &scan->uid;
                } else if (StartsWith(name, "id=") || StartsWith(name, "id ")) {
                    field = &scan->id;
                } else if (StartsWith(name, "xsi:type")) {
                    field = &scan->xsiType;
                }
                value = find::First<'"'>(find::First<'='>(name)) + 1;
            }
            p = find::First<'"'>(value);
            if (p >= scan->end) { return GiveUp(scan, kEndOfText); }
            if (field != nullptr) {
                *field = Between(value, p);
                if (field->size() >= kTagRoom) { return GiveUp(scan, kLongAttribute); }
            }
            ++p;
            while (*p == ' ') { ++p; }
        } while (*p != '>');
    }
    scan->at = p;
    return true;
}

bool ReadElementText(StpxScan* scan, char* buffer, std::size_t room, std::string_view* text) {
    const char* const start = scan->at;
    const char* const stop = find::First<'<', '&'>(start);
    if (*stop == '<' && stop < scan->end) [[likely]] {
        *text = Between(start, stop);
        if (text->size() >= room) { return GiveUp(scan, kLongText); }
        scan->at = stop;
        return true;
    }
    constexpr std::string_view kAmpersand = "&amp;";
    std::size_t length = 0;
    const char* p = start;
    for (; p < scan->end && *p != '<'; ++p) {
        if (length + 1 >= room) { return GiveUp(scan, kLongText); }
        if (*p == '&') {
            const std::size_t left = std::min(static_cast<std::size_t>(scan->end - p), kAmpersand.size());
            if (std::memcmp(p, kAmpersand.data(), left) != 0) {
                Stall(scan->name, "an \"&\" in the text of an element isn't \"&amp;\"");
            }
            if (left < kAmpersand.size()) { break; }
            p += kAmpersand.size() - 1;
            buffer[length++] = '&';
        } else {
            buffer[length++] = *p;
        }
    }
    if (p >= scan->end || *p != '<') { return GiveUp(scan, kEndOfText); }
    buffer[length] = '\0';
    *text = {buffer, length};
    scan->at = p;
    return true;
}

} // namespace tarnwick
