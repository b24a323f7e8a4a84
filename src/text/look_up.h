#pragma once

#include "text/load_eight.h"

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarnwick {

// The secret of one table's hash. No file can know it, so none can choose keys that meet.
struct HashSecret {
    std::uint64_t a;
    std::uint64_t b;

    // From the table's address, which differs from run to run.
    static HashSecret Of(const void* table) {
        const std::uint64_t place = reinterpret_cast<std::uintptr_t>(table);
        return {(place ^ 0x9E3779B97F4A7C15u) * 0xBF58476D1CE4E5B9u,
                std::rotl(place, 32) * 0x94D049BB133111EBu | 1};
    }
};

// The product of two numbers in 128 bits, its halves folded into one.
inline std::uint64_t FoldedProduct(std::uint64_t a, std::uint64_t b) {
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
    constexpr std::uint64_t kLow = 0xFFFFFFFF;
    const std::uint64_t low = (a & kLow) * (b & kLow);
    const std::uint64_t one = (a >> 32) * (b & kLow) + (low >> 32);
    const std::uint64_t other = (a & kLow) * (b >> 32) + (one & kLow);
    const std::uint64_t high = (a >> 32) * (b >> 32) + (one >> 32) + (other >> 32);
    return (other << 32 | (low & kLow)) ^ high;
#endif
}

// A hash of 32 bits, each of which depends on the whole number.
inline std::uint32_t HashOf(std::uint64_t number, HashSecret secret) {
    const std::uint64_t mixed = FoldedProduct(number ^ secret.a, secret.b);
    return static_cast<std::uint32_t>(FoldedProduct(mixed, 0x9E3779B97F4A7C15u) >> 32);
}

// The same for a text. Each eight characters go into a product with the secret, so that nobody can tell which
// other characters would meet with them.
inline std::uint32_t HashOf(std::string_view text, HashSecret secret) {
    std::uint64_t mixed = secret.a;
    const char* p = text.data();
    std::size_t left = text.size();
    for (; left >= 8; left -= 8, p += 8) { mixed = FoldedProduct(mixed ^ LoadEight(p), secret.b); }
    std::uint64_t last = 0;
    if (left > 0 && text.size() >= 8) {
        last = LoadEight(p + left - 8) >> (64 - 8 * left);
    } else {
        for (std::size_t i = 0; i < left; ++i) {
            last |= static_cast<std::uint64_t>(static_cast<unsigned char>(p[i])) << (8 * i);
        }
    }
    mixed = FoldedProduct(mixed ^ last, secret.b) ^ text.size();
    return static_cast<std::uint32_t>(FoldedProduct(mixed, 0x9E3779B97F4A7C15u) >> 32);
}

// A table from numbers or names to values, for look-ups only: it can't be iterated. The entries are a list;
// the slots of an open hash table hold their places in it. Time and memory grow as the number of entries and
// the length of their names do, whatever the keys are and however Add and Find take turns. Where a key is
// added again, the entry added first is found. Names are borrowed. Used by one thread, but see Place.
template <class Key, class Value>
class LookUp {
    static_assert(std::integral<Key> || std::same_as<Key, std::string_view>);

public:
    // Makes room for so many entries, known or guessed.
    void Reserve(std::size_t entries) { entries_.reserve(entries); }

    // Appends an entry. It gets its slot when a key is next looked for: many slots are filled faster in a
    // row.
    void Add(Key key, Value value) { entries_.push_back({Kept(key, secret_), std::move(value)}); }

    // Adds the key and returns true if it isn't there yet.
    bool AddNew(Key key, Value value = {}) {
        if (Find(key) != nullptr) { return false; }
        Add(key, std::move(value));
        return true;
    }

    // The value of the first entry with this key, or null. Valid until the next Add.
    Value* Find(Key key) {
        const Kept wanted(key, secret_);
        Place();
        return ValueAt(*SlotOf(wanted));
    }

    // The same, with an entry for a key that has none.
    Value& At(Key key) {
        if (Value* const found = Find(key)) { return *found; }
        Add(key, {});
        return entries_.back().value;
    }

    bool Contains(Key key) { return Find(key) != nullptr; }

    // Gives all entries their slots. Until the next Add several threads may then look for keys at once.
    void Place() {
        if (placed_ < entries_.size() || slots_.empty()) [[unlikely]] { PlaceRest(); }
    }

    // Looks for `keys` keys, of which keyOf(i) is one, and calls found(i, value or null) for each in their
    // order. A few at a time: while one is on its way from memory, the others are asked for as well.
    template <class KeyOf, class Found>
    void FindEach(std::int32_t keys, KeyOf keyOf, Found found) {
        constexpr std::int32_t kAtATime = 16;
        Place();
        for (std::int32_t done = 0; done < keys; done += kAtATime) {
            Kept wanted[kAtATime];
            const std::int32_t here = std::min(keys - done, kAtATime);
            for (std::int32_t i = 0; i < here; ++i) {
                wanted[i] = Kept(keyOf(done + i), secret_);
                __builtin_prefetch(&slots_[HomeOf(wanted[i].hash)]);
            }
            for (std::int32_t i = 0; i < here; ++i) {
                const Slot& slot = slots_[HomeOf(wanted[i].hash)];
                if (slot.place > 0) { __builtin_prefetch(&entries_[slot.place - 1]); }
            }
            for (std::int32_t i = 0; i < here; ++i) { found(done + i, ValueAt(*SlotOf(wanted[i]))); }
        }
    }

    bool IsEmpty() const { return entries_.empty(); }
    // Keys that were added again count each time.
    std::size_t Count() const { return entries_.size(); }

private:
    struct KeptNumber {
        KeptNumber() = default;
        KeptNumber(Key key, HashSecret secret)
            : number(key), hash(HashOf(static_cast<std::uint64_t>(key), secret)) {}
        bool operator==(const KeptNumber& other) const { return number == other.number; }

        Key number;
        std::uint32_t hash;
    };
    struct KeptName {
        KeptName() = default;
        KeptName(std::string_view name, HashSecret secret)
            : start(name.data()), length(static_cast<std::uint32_t>(name.size())),
              hash(HashOf(name, secret)) {}
        bool operator==(const KeptName& other) const {
            return std::string_view(start, length) == std::string_view(other.start, other.length);
        }

        const char* start;
        std::uint32_t length;
        std::uint32_t hash;
    };
    using Kept = std::conditional_t<std::integral<Key>, KeptNumber, KeptName>;
    struct Entry {
        Kept key;
        Value value;
    };
    struct Slot {
        std::uint32_t hash;  // most unequal keys that come to a slot differ in it
        std::uint32_t place; // of the entry, from 1; 0 for a free slot
    };

    std::size_t HomeOf(std::uint32_t hash) const { return hash >> shift_; }
    Value* ValueAt(const Slot& slot) { return slot.place > 0 ? &entries_[slot.place - 1].value : nullptr; }

    // The slot that has the key, or the free one where it belongs.
    Slot* SlotOf(const Kept& key) {
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = HomeOf(key.hash);; i = (i + 1) & mask) {
            Slot& slot = slots_[i];
            if (slot.place == 0 || (slot.hash == key.hash && entries_[slot.place - 1].key == key)) {
                return &slot;
            }
        }
    }

    [[gnu::noinline]] void PlaceRest() {
        if (LeastSlots() > slots_.size()) { MakeSlots(); }
        for (; placed_ < entries_.size(); ++placed_) {
            const Kept& key = entries_[placed_].key;
            Slot* const slot = SlotOf(key);
            if (slot->place == 0) { *slot = {key.hash, static_cast<std::uint32_t>(placed_ + 1)}; }
        }
    }
    // A fifth of the slots stays free.
    std::size_t LeastSlots() const { return entries_.size() + entries_.size() / 4 + 4; }
    void MakeSlots() {
        const int bits = static_cast<int>(std::bit_width(LeastSlots() - 1));
        slots_.assign(std::size_t{1} << bits, {});
        shift_ = 32 - bits;
        placed_ = 0;
    }

    HashSecret secret_ = HashSecret::Of(this);
    std::vector<Entry> entries_;
    std::vector<Slot> slots_; // a power of two of them
    std::size_t placed_ = 0;  // entries that have their slots
    int shift_ = 0;           // of a hash, to the place of its slot
};

} // namespace tarnwick
