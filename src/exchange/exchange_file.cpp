#include "exchange/exchange_file.h"

#include "exchange/text_skip.h"
#include "exchange/token_cursor.h"
#include "text/look_up.h"
#include "text/parse_real.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <limits>
#include <numeric>

namespace tarnwick {

namespace {

using real::IsDigit;

bool IsKeywordCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || c == '_' || IsDigit(c) || (c >= 'a' && c <= 'z') || c == '-' || c == '!';
}

// The number after a "#", and where it ends; 0 for none and for one beyond 64 bits.
std::uint64_t ReadNumber(const char* p, const char* end, const char** after) {
    std::uint64_t number = 0;
    *after = std::from_chars(p, end, number).ptr;
    return number;
}

// Whether an instance begins at `p`: "#12 =".
bool BeginsInstance(const char* p, const char* end) {
    if (p >= end || *p != '#') { return false; }
    const char* after;
    if (ReadNumber(p + 1, end, &after) == 0) { return false; }
    after = SkipBlanks(after, end);
    return after < end && *after == '=';
}

} // namespace

TextPlace PlaceOf(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const std::size_t lineBegin = before.rfind('\n') + 1; // 0 on the first line
    return {static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1,
            before.size() - lineBegin + 1};
}

// The one pass over a text.
class ExchangeScan {
public:
    explicit ExchangeScan(ExchangeFile* file)
        : file_(*file), begin_(file_.text_.data()), end_(begin_ + file_.text_.size()) {}

    void Run() {
        file_.keywords_.emplace_back(); // of complex instances
        const char* p = SkipBlanks(Start(), end_);
        file_.isExchangeFile_ = std::string_view(p, std::min<std::size_t>(Left(p), 12)) == "ISO-10303-21";
        if (!file_.isExchangeFile_) { Note(p, "the file doesn't begin with ISO-10303-21;"); }
        while ((p = SkipBlanks(p, end_)) < end_) { p = Statement(p); }
        if (section_ != Section::kNone) { Note(end_, "the file ends inside a section", true); }
        if (!hasEnd_) { Note(end_, "the file lacks END-ISO-10303-21;", true); }
    }

private:
    enum class Section { kNone, kHeader, kData, kOther };

    std::size_t Left(const char* p) const { return static_cast<std::size_t>(end_ - p); }
    std::size_t Offset(const char* p) const { return static_cast<std::size_t>(p - begin_); }

    void Note(const char* p, std::string_view what, bool isLoss = false) {
        file_.Note(Offset(p), what, isLoss);
    }

    // Past a byte order mark.
    const char* Start() {
        if (!file_.text_.starts_with("\xEF\xBB\xBF")) { return begin_; }
        Note(begin_, "the file begins with a byte order mark");
        return begin_ + 3;
    }

    // The ";" that ends what begins at `p`. Where a string or the ";" isn't there, the next instance ends it:
    // one that is broken must not take the rest of the file with it.
    const char* FindEnd(const char* p, bool isInstance) {
        const char* const start = p;
        for (;;) {
            p = FindAny<';', '\'', '/', '"', '='>(p, end_);
            if (p == end_) {
                Note(start, "the text ends inside an instance", true);
                return end_;
            }
            switch (*p) {
            case ';':
                return p;
            case '\'': {
                const char* const after = SkipString(p, end_);
                const char* const broken = BrokenString(p, after);
                if (broken != nullptr) {
                    Note(p, "a string isn't closed", true);
                    return broken;
                }
                p = after;
                continue;
            }
            case '/': {
                const char* const after = SkipBlanks(p, end_);
                if (after == end_ && Left(p) > 2 && p[1] == '*') {
                    Note(p, "a comment isn't closed", true);
                    return end_;
                }
                p = after == p ? p + 1 : after;
                continue;
            }
            case '"': {
                const void* const close = std::memchr(p + 1, '"', Left(p + 1));
                p = close != nullptr ? static_cast<const char*>(close) : p;
                break;
            }
            default:
                if (const char* const next = isInstance ? InstanceBefore(start, p) : nullptr) {
                    Note(next, "an instance begins before the one ahead of it has its ;", true);
                    return next;
                }
            }
            ++p;
        }
    }

    // Where a string over several lines holds what looks like the next instance, the begin of that; else
    // null.
    const char* BrokenString(const char* p, const char* after) {
        while ((p = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(after - p)))) !=
               nullptr) {
            if (BeginsInstance(++p, end_)) { return p; }
            if (p >= after) { break; }
        }
        return nullptr;
    }

    // The "#12" right before a "=", or null.
    const char* InstanceBefore(const char* start, const char* equals) {
        const char* p = equals;
        while (p > start && IsExchangeBlank(p[-1])) { --p; }
        const char* const digits = p;
        while (p > start && IsDigit(p[-1])) { --p; }
        return p < digits && p > start && p[-1] == '#' ? p - 1 : nullptr;
    }

    // Whether a keyword begins or ends the file or a section of it.
    static bool IsStructure(std::string_view keyword) {
        constexpr std::string_view kStructure[] = {"ISO-10303-21", "HEADER",    "DATA",   "ANCHOR",
                                                   "REFERENCE",    "SIGNATURE", "ENDSEC", "END-ISO-10303-21"};
        return std::find(std::begin(kStructure), std::end(kStructure), keyword) != std::end(kStructure);
    }

    const char* Statement(const char* p) {
        if (*p == '#') { return InstanceStatement(p); }
        if (*p == ';') { return p + 1; }
        const char* const after = std::find_if_not(p, end_, IsKeywordCharacter);
        const std::string_view keyword(p, static_cast<std::size_t>(after - p));
        if (hasEnd_ && !IsStructure(keyword)) {
            Note(p, "text after END-ISO-10303-21;");
            return AfterRubbish(p, end_);
        }
        const char* const end = FindEnd(p, false);
        if (keyword == "HEADER") {
            section_ = Section::kHeader;
        } else if (keyword == "DATA") {
            section_ = Section::kData;
        } else if (keyword == "ANCHOR" || keyword == "REFERENCE") {
            section_ = Section::kOther;
        } else if (keyword == "SIGNATURE") {
            return AfterSignature(end);
        } else if (keyword == "ENDSEC") {
            section_ = Section::kNone;
        } else if (keyword == "END-ISO-10303-21") {
            hasEnd_ = true;
            section_ = Section::kNone;
        } else if ((section_ == Section::kNone || section_ == Section::kData) && keyword != "ISO-10303-21") {
            Note(p, "neither an instance nor a section", true);
            return AfterRubbish(p, end);
        }
        return end < end_ && *end == ';' ? end + 1 : end;
    }

    // The inside of a signature isn't in this format, and has no ";" before that of its ENDSEC.
    const char* AfterSignature(const char* p) {
        const std::string_view rest(p, Left(p));
        const std::size_t endsec = rest.find("\nENDSEC");
        if (endsec == std::string_view::npos) {
            Note(p, "a SIGNATURE section lacks its ENDSEC;");
            return end_;
        }
        const std::size_t semicolon = rest.find(';', endsec);
        return semicolon == std::string_view::npos ? end_ : p + semicolon + 1;
    }

    // What isn't understood ends at the next line that begins an instance, or at its ";".
    const char* AfterRubbish(const char* p, const char* end) {
        while ((p = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)))) !=
               nullptr) {
            ++p;
            if (BeginsInstance(p, end_)) { return p; }
        }
        return end < end_ && *end == ';' ? end + 1 : end;
    }

    const char* InstanceStatement(const char* p) {
        const char* after;
        const std::uint64_t number = ReadNumber(p + 1, end_, &after);
        const char* const equals = SkipBlanks(after, end_);
        if (number == 0 || equals == end_ || *equals != '=') {
            if (section_ == Section::kOther) {
                const char* const end = FindEnd(p, false);
                return end < end_ ? end + 1 : end;
            }
            Note(p, "an instance needs a number from 1 on and a =", true);
            return std::max(after, p + 1);
        }
        const char* const first = SkipBlanks(equals + 1, end_);
        const char* const end = FindEnd(first, true);
        const char* last = end;
        while (last > first && IsExchangeBlank(last[-1])) { --last; }
        // The numbers of a reference section stand for what other files hold.
        if (section_ != Section::kOther) { AddInstance(number, p, first, last); }
        return end < end_ && *end == ';' ? end + 1 : end;
    }

    void AddInstance(std::uint64_t number, const char* p, const char* first, const char* last) {
        if (section_ == Section::kNone && !isOutsideTold_) {
            isOutsideTold_ = true;
            Note(p, "an instance stands outside the data section");
        }
        const std::size_t length = static_cast<std::size_t>(last - first);
        if (length == 0 || length > std::numeric_limits<std::uint32_t>::max()) {
            Note(p, length == 0 ? "an instance is empty" : "an instance is over 4 GiB long", true);
            return;
        }
        if (file_.instances_.size() == file_.instances_.capacity()) { Grow(first); }
        file_.instances_.push_back(
            {number, Offset(first), static_cast<std::uint32_t>(length), KeywordAt(first, last)});
    }

    // Room for the rest of the file, as dense as it was so far.
    void Grow(const char* p) {
        const std::size_t count = file_.instances_.size();
        if (count < 4096) {
            file_.instances_.reserve(std::max<std::size_t>(4096, 2 * count));
            return;
        }
        const double density = static_cast<double>(count) / static_cast<double>(Offset(p));
        const auto all = static_cast<std::size_t>(density * 1.1 * static_cast<double>(file_.text_.size()));
        file_.instances_.reserve(std::max(all, count + count / 4));
    }

    std::uint32_t KeywordAt(const char* p, const char* end) {
        if (*p == '(') { return ExchangeFile::kComplex; }
        const char* const after = std::find_if_not(p, end, IsKeywordCharacter);
        const std::string_view keyword(p, static_cast<std::size_t>(after - p));
        if (const std::uint32_t* const known = places_.Find(keyword)) { return *known; }
        if (keyword.empty()) { Note(p, "an instance has no keyword", true); }
        const std::string capitals = InCapitals(keyword);
        if (capitals != keyword) {
            Note(p, "a keyword has small letters");
            names_.push_back(capitals);
            if (const std::uint32_t* const known = places_.Find(names_.back())) {
                const std::uint32_t place = *known;
                places_.Add(keyword, place);
                return place;
            }
        }
        const auto place = static_cast<std::uint32_t>(file_.keywords_.size());
        file_.keywords_.push_back(capitals);
        places_.Add(keyword, place);
        if (capitals != keyword) { places_.Add(names_.back(), place); }
        return place;
    }

    ExchangeFile& file_;
    const char* const begin_;
    const char* const end_;
    Section section_ = Section::kNone;
    bool hasEnd_ = false;
    bool isOutsideTold_ = false;
    LookUp<std::string_view, std::uint32_t> places_; // of keywords
    std::deque<std::string> names_;                  // of those that the text has in small letters
};

ExchangeFile::ExchangeFile(std::string_view text) : text_(text) {
    ExchangeScan(this).Run();
    MakeIndex();
    MakeLists();
}

void ExchangeFile::Note(std::size_t offset, std::string_view what, bool isLoss) {
    constexpr std::size_t kMostDeviations = 1000;
    if (deviations_.size() < kMostDeviations) { deviations_.push_back({offset, std::string(what), isLoss}); }
}

void ExchangeFile::MakeIndex() {
    const auto isAfter = [](const Instance& a, const Instance& b) { return a.number >= b.number; };
    if (std::adjacent_find(instances_.begin(), instances_.end(), isAfter) == instances_.end()) { return; }
    byNumber_.resize(instances_.size());
    std::iota(byNumber_.begin(), byNumber_.end(), 0u);
    std::sort(byNumber_.begin(), byNumber_.end(), [this](std::uint32_t a, std::uint32_t b) {
        return instances_[a].number != instances_[b].number ? instances_[a].number < instances_[b].number
                                                            : a < b;
    });
    for (std::size_t i = 1; i < byNumber_.size(); ++i) {
        const Instance& instance = instances_[byNumber_[i]];
        if (instance.number != instances_[byNumber_[i - 1]].number) { continue; }
        Note(instance.begin,
             "the number #" + std::to_string(instance.number) + " stands twice; the first one counts", false);
    }
}

void ExchangeFile::MakeLists() {
    keywordStart_.assign(keywords_.size() + 1, 0);
    for (const Instance& instance : instances_) { ++keywordStart_[instance.keyword + 1]; }
    std::partial_sum(keywordStart_.begin(), keywordStart_.end(), keywordStart_.begin());
    byKeyword_.resize(instances_.size());
    std::vector<std::size_t> next(keywordStart_.begin(), keywordStart_.end() - 1);
    for (std::size_t i = 0; i < instances_.size(); ++i) {
        byKeyword_[next[instances_[i].keyword]++] = static_cast<std::uint32_t>(i);
    }
}

const Instance* ExchangeFile::Find(std::uint64_t number) const {
    const auto at = [this](std::size_t i) -> const Instance& {
        return instances_[byNumber_.empty() ? i : byNumber_[i]];
    };
    std::size_t low = 0;
    std::size_t high = instances_.size();
    if (high == 0) { return nullptr; }
    // Most files number their instances without gaps, so that a straight line leads to the place.
    const std::uint64_t first = at(0).number;
    const std::uint64_t last = at(high - 1).number;
    if (number < first || number > last) { return nullptr; }
    if (last > first) {
        const double part = static_cast<double>(number - first) / static_cast<double>(last - first);
        const auto guess = std::min(high - 1, static_cast<std::size_t>(part * static_cast<double>(high - 1)));
        for (std::size_t step = 1;; step *= 4) {
            const std::size_t below = guess > step ? guess - step : 0;
            if (at(below).number < number || below == 0) {
                low = below;
                break;
            }
        }
        for (std::size_t step = 1;; step *= 4) {
            const std::size_t above = std::min(high - 1, guess + step);
            if (at(above).number >= number || above == high - 1) {
                high = above + 1;
                break;
            }
        }
    }
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (at(middle).number < number) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low < instances_.size() && at(low).number == number ? &at(low) : nullptr;
}

std::span<const std::uint32_t> ExchangeFile::OfPlace(std::uint32_t keyword) const {
    return std::span(byKeyword_)
        .subspan(keywordStart_[keyword], keywordStart_[keyword + 1] - keywordStart_[keyword]);
}

std::span<const std::uint32_t> ExchangeFile::OfKeyword(std::string_view keyword) const {
    // A text has a few hundred keywords.
    const auto found = std::find(keywords_.begin() + 1, keywords_.end(), keyword);
    return found == keywords_.end() ? std::span<const std::uint32_t>{}
                                    : OfPlace(static_cast<std::uint32_t>(found - keywords_.begin()));
}

} // namespace tarnwick
