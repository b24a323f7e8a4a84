#pragma once

#include "prepare/xml/xml_nodes.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

// What one pass over a STEP XML document finds, before references are followed.
namespace tarnwick::prepare {

inline constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

// The lower the rank, the sooner the file is taken for a part's shape.
enum class FileRank { kStep, kOther, kNoShape };

// Anything that leads to files: a part, its versions and views, documents, representations, files themselves.
struct XmlHolder {
    std::vector<std::string> names;     // of a file, the likeliest first; none for anything else
    FileRank rank = FileRank::kNoShape; // of the first
};

struct XmlUse {
    pugi::xml_node node;
    std::size_t view = kNone; // that it is in
};

struct XmlOccurrence {
    pugi::xml_node node;
    std::size_t view = kNone; // of which it is one
};

struct XmlView {
    std::size_t part = 0;
    std::size_t holder = 0;
    std::string_view geometry; // uid of the representation of its shape, may be empty
    bool hasUses = false;
};

struct XmlPart {
    pugi::xml_node node;
    std::size_t holder = 0;
    std::vector<std::size_t> views;
};

// Where an item of a representation belongs.
struct XmlItemPlace {
    std::string_view representation; // its uid, may be empty
    std::size_t context = kNone;     // in the contexts
};

struct XmlContext {
    std::vector<pugi::xml_node> units; // references or units themselves
};

struct XmlRecords {
    UidTable uids;
    std::vector<XmlPart> parts;
    std::vector<XmlView> views;
    std::vector<XmlUse> uses;
    std::vector<XmlOccurrence> occurrences;
    std::vector<XmlHolder> holders;
    std::vector<XmlContext> contexts;                   // the first is that of the document
    std::vector<pugi::xml_node> units;                  // of the document itself
    std::unordered_set<std::string_view> unitsOfValues; // uids that values outside of contexts refer to
    std::unordered_map<std::string_view, std::size_t> occurrenceOf; // by uid; likewise the others
    std::unordered_map<std::string_view, std::size_t> viewOf;       // also of a part and a version
    std::unordered_map<std::string_view, std::size_t> holderOf;
    std::unordered_map<std::string_view, XmlItemPlace> placeOf;       // of the items of representations
    std::vector<std::pair<std::size_t, std::size_t>> leads;           // of one holder to another
    std::vector<std::pair<std::size_t, std::string_view>> references; // likewise, by uid
    bool hasData = false;                                             // there is a DataContainer
};

// One pass over all elements.
XmlRecords CollectXml(const pugi::xml_document& document);

// For each holder the file that it leads to, as a holder too, or kNone.
std::vector<std::size_t> FilesOfHolders(const XmlRecords& records);

// Millimetres of a unit of length, by its name and prefix; nothing for any other unit.
std::optional<double> LengthOfUnit(pugi::xml_node unit);

} // namespace tarnwick::prepare
