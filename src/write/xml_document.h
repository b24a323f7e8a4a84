#pragma once

#include "write/placement.h"
#include "write/text_buffer.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick {

// How a part leads to its file.
enum class FileRoute {
    kDirect,   // its assignment names a File, which follows the part
    kDocuments // its assignment names a version of a document, whose digital file is one of those at the end
};

// A product of a document. Occurrences are numbered throughout the document.
struct XmlPart {
    std::string_view id; // and its name
    std::vector<std::size_t> occurrences;
    std::string file;            // that describes it; empty for one whose uses are here
    std::size_t firstUse = 0;    // the occurrence in its first use; those in the others follow
    std::vector<Placement> uses; // of other parts
};

// Writes a STEP XML document: Begin, the parts, End.
class XmlDocument {
public:
    XmlDocument(FileRoute route, ByteSink* sink) : route_(route), out_(sink) {}

    // The time is a constant, so that the same model is the same bytes.
    void Begin(std::string_view program);
    void AddPart(const XmlPart& part);
    void End();

private:
    // A line, indented by so many levels, at most 10. Pieces: text, numbers, Vec3.
    template <class... Pieces>
    void Line(std::size_t level, const Pieces&... pieces) {
        out_.Put(std::string_view("                    ", 2 * level));
        (Put(pieces), ...);
        out_.Put('\n');
    }
    void Put(std::string_view text) { out_.Put(text); }
    void Put(std::size_t number) { out_.PutInteger(static_cast<std::int64_t>(number)); }
    void Put(const Vec3& v);
    void AddUses(const XmlPart& part);
    void AddAssignment(std::size_t number);
    void AddFile(std::size_t number, std::string_view name);
    void AddDocument(std::size_t number, std::string_view name);

    const FileRoute route_;
    TextBuffer out_;
    std::size_t parts_ = 0;
    std::vector<std::pair<std::size_t, std::string>> files_; // still to be written, by the numbers of parts
};

// Text as it is written in an attribute or between tags.
std::string EscapeXml(std::string_view text);

} // namespace tarnwick
