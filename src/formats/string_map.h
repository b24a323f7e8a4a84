#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tarnwick {

// A chained hash table from a string to a value, sized once for the number of entries that will go in. Keys
// are borrowed. Where a key is doubled, the entry inserted first is found.
template <class Value>
class StringMap {
public:
    // 4 buckets for up to 5 entries, and twice as many for each doubling beyond.
    explicit StringMap(std::size_t entries) {
        for (std::size_t n = entries; n > 5; n >>= 1) { ++bits; }
        size = std::int32_t{1} << bits;
        mask = size - 1;
        buckets_.resize(static_cast<std::size_t>(size));
        nodes_.reserve(entries);
    }

    // The key's bytes as signed chars, in base 31; masked, it names the bucket. A mask at every step would
    // give the same bits, since all that is cut off lies above them.
    static std::uint32_t Hash(std::string_view key) {
        std::uint32_t h = 0;
        for (const char c : key) { h = h * 31 + static_cast<std::uint32_t>(static_cast<signed char>(c)); }
        return h;
    }

    void Insert(std::string_view key, std::uint32_t hash, Value value) {
        const std::int32_t place = static_cast<std::int32_t>(nodes_.size());
        nodes_.push_back({key, value, hash, -1});
        Bucket& bucket = buckets_[hash & static_cast<std::uint32_t>(mask)];
        if (bucket.head < 0) {
            bucket.head = place;
        } else {
            nodes_[static_cast<std::size_t>(bucket.tail)].next = place;
        }
        bucket.tail = place;
        ++count;
    }
    void Insert(std::string_view key, Value value) { Insert(key, Hash(key), value); }

    // The value of the first entry with this key, or null.
    const Value* Find(std::string_view key) const {
        const std::uint32_t hash = Hash(key);
        std::int32_t place = buckets_[hash & static_cast<std::uint32_t>(mask)].head;
        while (place >= 0) {
            const Node& node = nodes_[static_cast<std::size_t>(place)];
            if (node.hash == hash && node.key == key) { return &node.value; }
            place = node.next;
        }
        return nullptr;
    }

    std::int32_t count = 0;
    std::int32_t bits = 2;
    std::int32_t size;
    std::int32_t mask;

private:
    struct Node {
        std::string_view key;
        Value value;
        std::uint32_t hash; // all 32 bits: most unequal keys of a bucket differ in them
        std::int32_t next;  // in the bucket, -1 at its tail
    };
    struct Bucket {
        std::int32_t head = -1;
        std::int32_t tail = -1;
    };

    std::vector<Bucket> buckets_;
    std::vector<Node> nodes_;
};

} // namespace tarnwick
