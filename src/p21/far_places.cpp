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

// `findIn` searches one stretch of the text.
template <class FindIn>
const char* FarPlaces::FindBy(BlocksWith* with, const char* from, FindIn findIn) {
    if (from >= end_) { return nullptr; }
    std::size_t block = BlockOf(from);
    if (const char* const found = findIn(from, End(block))) { return found; }
    BlocksWith& next = *with;
    const std::size_t count = BlockCount();
    if (next.empty()) {
        next.resize(count + 1, static_cast<std::uint32_t>(count));
        for (std::size_t i = count; i-- > 0;) {
            const bool isHere = findIn(Start(i), End(i)) != nullptr;
            next[i] = isHere ? static_cast<std::uint32_t>(i) : next[i + 1];
        }
    }
    for (block = next[block + 1]; block < count; block = next[block + 1]) {
        if (const char* const found = findIn(Start(block), End(block))) { return found; }
    }
    return nullptr;
}

const char* FarPlaces::Find(const char* from, char c) {
    return FindBy(&withCharacter_[static_cast<unsigned char>(c)], from,
                  [c](const char* p, const char* to) { return FindIn(p, to, c); });
}

const char* FarPlaces::FindOther(const char* from, bool lineFeeds) {
    return FindBy(&withOther_[lineFeeds ? 1 : 0], from, [lineFeeds](const char* p, const char* to) {
        while (p < to && (*p == ' ' || (lineFeeds && *p == '\n'))) { ++p; }
        return p < to ? p : nullptr;
    });
}

void FarPlaces::NoteWritten(const char* place) {
    const std::size_t block = BlockOf(place);
    BlocksWith& next = withCharacter_[static_cast<unsigned char>(*place)];
    if (!next.empty()) {
        for (std::size_t i = block + 1; i-- > 0 && next[i] > block;) {
            next[i] = static_cast<std::uint32_t>(block);
        }
    }
    // What was written over may have been a parenthesis.
    std::size_t i = block;
    for (std::size_t level = 0; level < levels_.size(); ++level, i /= kFanOut) {
        levels_[level][i] = StretchOf(level, i);
    }
}

FarPlaces::Stretch FarPlaces::StretchOf(std::size_t level, std::size_t place) const {
    Stretch stretch;
    if (level == 0) {
        for (const char* p = Start(place); p < End(place); ++p) {
            stretch.rise += *p == '(' ? 1 : *p == ')' ? -1 : 0;
            if (*p == ',') { stretch.leastComma = std::min(stretch.leastComma, stretch.rise); }
        }
        return stretch;
    }
    const std::vector<Stretch>& below = levels_[level - 1];
    const std::size_t last = std::min((place + 1) * kFanOut, below.size());
    for (std::size_t i = place * kFanOut; i < last; ++i) {
        stretch.leastComma = std::min(stretch.leastComma, stretch.rise + below[i].leastComma);
        stretch.rise += below[i].rise;
    }
    return stretch;
}

void FarPlaces::MakeLevels() {
    for (std::size_t count = BlockCount();; count = (count + kFanOut - 1) / kFanOut) {
        std::vector<Stretch> level(count);
        for (std::size_t i = 0; i < count; ++i) { level[i] = StretchOf(levels_.size(), i); }
        levels_.push_back(std::move(level));
        if (count <= 1) { return; }
    }
}

const char* FarPlaces::FindComma(const char* from, std::int64_t depth) {
    if (from >= end_) { return nullptr; }
    const std::size_t first = BlockOf(from);
    if (const char* const found = FindCommaIn(from, End(first), &depth)) { return found; }
    if (levels_.empty()) { MakeLevels(); }
    // Along the stretches: up a level wherever a larger one starts, and down again in the one with the comma.
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
        while (i % kFanOut == 0) { // never at the top, which is one stretch
            i /= kFanOut;
            ++level;
        }
    }
    return nullptr;
}

} // namespace tarnwick
