#include "p21/far_places.h"

#include <algorithm>
#include <cstring>

namespace tarnwick {

namespace {

const char* FindIn(const char* from, const char* to, char c) {
    return static_cast<const char*>(std::memchr(from, c, static_cast<std::size_t>(to - from)));
}

// The next comma at depth 0 or less; null where there is none before `to`, with *depth that of `to`.
const char* FindCommaIn(const char* from, const char* to, std::int64_t* depth) {
    for (; from < to; ++from) {
        if (*from == '(') {
            ++*depth;
        } else if (*from == ')') {
            --*depth;
        } else if (*from == ',' && *depth <= 0) {
            return from;
        }
    }
    return nullptr;
}

} // namespace

const char* FarPlaces::Find(const char* from, char c) {
    if (from >= end_) { return nullptr; }
    std::size_t block = BlockOf(from);
    if (const char* const found = FindIn(from, End(block), c)) { return found; }
    std::vector<std::uint32_t>& with = blocksWith_[static_cast<unsigned char>(c)];
    const std::size_t count = BlockCount();
    if (with.empty()) {
        with.resize(count + 1, static_cast<std::uint32_t>(count));
        for (std::size_t i = count; i-- > 0;) {
            const bool isHere = FindIn(Start(i), End(i), c) != nullptr;
            with[i] = isHere ? static_cast<std::uint32_t>(i) : with[i + 1];
        }
    }
    for (block = with[block + 1]; block < count; block = with[block + 1]) {
        if (const char* const found = FindIn(Start(block), End(block), c)) { return found; }
    }
    return nullptr;
}

void FarPlaces::NoteWritten(char c) {
    blocksWith_[static_cast<unsigned char>(c)].clear();
    levels_.clear(); // it may have been a parenthesis
}

void FarPlaces::MakeLevels() {
    std::vector<Stretch>& blocks = levels_.emplace_back(BlockCount());
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        for (const char* p = Start(i); p < End(i); ++p) {
            blocks[i].rise += *p == '(' ? 1 : *p == ')' ? -1 : 0;
            if (*p == ',') { blocks[i].leastComma = std::min(blocks[i].leastComma, blocks[i].rise); }
        }
    }
    while (levels_.back().size() > 1) {
        const std::vector<Stretch>& below = levels_.back();
        std::vector<Stretch> level((below.size() + kFanOut - 1) / kFanOut);
        for (std::size_t i = 0; i < below.size(); ++i) {
            Stretch& stretch = level[i / kFanOut];
            stretch.leastComma = std::min(stretch.leastComma, stretch.rise + below[i].leastComma);
            stretch.rise += below[i].rise;
        }
        levels_.push_back(std::move(level));
    }
}

const char* FarPlaces::FindComma(const char* from, std::int64_t depth) {
    if (from >= end_) { return nullptr; }
    const std::size_t first = BlockOf(from);
    if (const char* const found = FindCommaIn(from, End(first), &depth)) { return found; }
    if (levels_.empty()) { MakeLevels(); }
    // Along the stretches, up a level wherever a larger one starts, and down again in the one that holds it.
    std::size_t level = 0;
    std::size_t i = first + 1;
    while (i < levels_[level].size()) {
        const Stretch& stretch = levels_[level][i];
        if (depth + stretch.leastComma <= 0) {
            if (level == 0) { return FindCommaIn(Start(i), End(i), &depth); }
            --level;
            i *= kFanOut;
            continue;
        }
        depth += stretch.rise;
        ++i;
        while (i % kFanOut == 0 && level + 1 < levels_.size()) {
            i /= kFanOut;
            ++level;
        }
    }
    return nullptr;
}

} // namespace tarnwick
