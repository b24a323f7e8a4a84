#pragma once

#include "exchange/file_bytes.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A reader of any ISO 10303-21 text (edition 3, "clear text encoding of the exchange structure"), whatever
// its schema and layout. One pass finds where each instance stands; its arguments are read when they are
// asked for (see arguments.h).
namespace tarnwick {

// "#12=KEYWORD(...);" or "#12=(A(...)B(...));".
struct Instance {
    std::uint64_t number = 0;
    std::uint64_t begin = 0;   // of the first character after "=" and blanks, in the text
    std::uint32_t length = 0;  // up to the ";"
    std::uint32_t keyword = 0; // its place among the keywords; kComplex for a complex instance
};

// What a text does that the standard doesn't allow, and where.
struct Deviation {
    std::size_t offset = 0; // in the text
    std::string what;
    bool isLoss = false; // whether some of the text couldn't be understood
};

// Line and column of a place in a text, both from 1. The column counts bytes.
struct TextPlace {
    std::size_t line = 1;
    std::size_t column = 1;
};
TextPlace PlaceOf(std::string_view text, std::size_t offset);

// The instances of a text. Reading never fails: what can't be understood is left out and noted as a
// deviation. Any number of threads may use it once it is made. Takes 32 bytes for each instance beside the
// text.
class ExchangeFile {
public:
    static constexpr std::uint32_t kComplex = 0;
    // The text must outlive it, with kBytesPadding readable bytes after.
    explicit ExchangeFile(std::string_view text);

    std::string_view Text() const { return text_; }
    // Whether the text begins with "ISO-10303-21", blanks and comments before it apart.
    bool IsExchangeFile() const { return isExchangeFile_; }

    // In the order of the text.
    std::span<const Instance> Instances() const { return instances_; }
    // The instance with this number, or null. Where a number stands twice, the first one counts.
    const Instance* Find(std::uint64_t number) const;

    // "KEYWORD(...)" or "(A(...)B(...))".
    std::string_view TextOf(const Instance& instance) const {
        return text_.substr(instance.begin, instance.length);
    }
    // In capitals; empty for a complex instance.
    std::string_view KeywordOf(const Instance& instance) const { return keywords_[instance.keyword]; }
    // The simple instances of a keyword, as places in Instances(), in the order of the text.
    std::span<const std::uint32_t> OfKeyword(std::string_view keyword) const;
    std::span<const std::uint32_t> ComplexInstances() const { return OfPlace(kComplex); }
    // All keywords of simple instances; the first is the empty one of complex instances.
    std::span<const std::string> Keywords() const { return keywords_; }
    // Likewise, by the keyword's place among all keywords.
    std::span<const std::uint32_t> OfPlace(std::uint32_t keyword) const;

    // At most 1000: in the order of the text, and after these the numbers that stand twice.
    std::span<const Deviation> Deviations() const { return deviations_; }

private:
    friend class ExchangeScan;

    void Note(std::size_t offset, std::string_view what, bool isLoss);
    void MakeIndex();
    void MakeLists();

    std::string_view text_;
    bool isExchangeFile_ = false;
    std::vector<Instance> instances_;
    std::vector<std::string> keywords_;
    std::vector<std::uint32_t> byNumber_;   // places of instances by ascending number; empty: they ascend
    std::vector<std::uint32_t> byKeyword_;  // places of instances, those of one keyword after another
    std::vector<std::size_t> keywordStart_; // in byKeyword_, and the end of the last
    std::vector<Deviation> deviations_;
};

} // namespace tarnwick
