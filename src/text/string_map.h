#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnwick {

// A table from a string to a value that is first filled, as a list, and then looked up in: a chained hash
// table whose size follows from the number of its entries. Keys are borrowed. Where a key is doubled, the
// entry added first is found.
template <class Value>
class StringMap {
public:
    struct Node {
        Value value;
        const char* key;
        std::uint32_t length;
        std::uint32_t hash; // all 32 bits: most unequal keys of a bucket differ in them
        std::int32_t next;  // in the bucket, -1 at its tail

        std::string_view Key() const { return {key, length}; }
    };

    // The key's bytes as signed chars, in base 31; masked, it names the bucket. A mask at every step would
    // give the same bits, since all that is cut off lies above them.
    static std::uint32_t Hash(std::string_view key) {
        std::uint32_t h = 0;
        for (const char c : key) { h = h * 31 + static_cast<std::uint32_t>(static_cast<signed char>(c)); }
        return h;
    }

    // Room for as many entries, where that is known or guessed.
    void Reserve(std::size_t entries) { nodes_.reserve(entries); }

    // Appends an entry. The hash is taken here, while the key is at hand.
    void Add(std::string_view key, Value value) {
        nodes_.push_back({value, key.data(), static_cast<std::uint32_t>(key.size()), Hash(key), -1});
    }

    const std::vector<Node>& Entries() const { return nodes_; }

    // Sorts the entries into buckets: 4 for up to 5 entries, and twice as many for each doubling beyond.
    // Entries that are added later are not found.
    void Build() {
        bits = 2;
        for (std::size_t n = nodes_.size(); n > 5; n >>= 1) { ++bits; }
        size = std::int32_t{1} << bits;
        mask = size - 1;
        count = static_cast<std::int32_t>(nodes_.size());
        buckets_.assign(static_cast<std::size_t>(size), {});
        far_.clear();
        for (std::int32_t place = 0; place < count; ++place) {
            Bucket& bucket = buckets_[BucketOf(nodes_[static_cast<std::size_t>(place)].hash)];
            if (bucket.head < 0) {
                bucket.head = place;
            } else {
                nodes_[static_cast<std::size_t>(bucket.tail)].next = place;
            }
            bucket.tail = place;
        }
    }

    // The value of the first entry with this key, or null; only after Build.
    const Value* Find(std::string_view key) const { return Find(key, Hash(key)); }

    // The same for a key whose hash is known.
    const Value* Find(std::string_view key, std::uint32_t hash) const {
        std::int32_t place = buckets_[BucketOf(hash)].head;
        for (int steps = 0; place >= 0; ++steps) {
            const Node& node = nodes_[static_cast<std::size_t>(place)];
            if (node.hash == hash && node.Key() == key) { return &node.value; }
            if (steps == kFar) { return FindFar(key); }
            place = node.next;
        }
        return nullptr;
    }

    // Looks for `keys` keys and hands the outcomes to found(i, value or null) in their order; keyOf(i) is the
    // key. A few at a time: while one is on its way from memory, the way to the others is asked for as well.
    template <class KeyOf, class Found>
    void FindEach(std::int32_t keys, KeyOf keyOf, Found found) const {
        constexpr std::int32_t kAtATime = 16;
        std::uint32_t hashes[kAtATime];
        for (std::int32_t done = 0; done < keys; done += kAtATime) {
            const std::int32_t here = keys - done < kAtATime ? keys - done : kAtATime;
            for (std::int32_t i = 0; i < here; ++i) {
                hashes[i] = Hash(keyOf(done + i));
                __builtin_prefetch(&buckets_[BucketOf(hashes[i])]);
            }
            for (std::int32_t i = 0; i < here; ++i) {
                const std::int32_t place = buckets_[BucketOf(hashes[i])].head;
                if (place >= 0) { __builtin_prefetch(&nodes_[static_cast<std::size_t>(place)]); }
            }
            for (std::int32_t i = 0; i < here; ++i) { found(done + i, Find(keyOf(done + i), hashes[i])); }
        }
    }

    std::int32_t count = 0;
    std::int32_t bits = 0;
    std::int32_t size = 0;
    std::int32_t mask = 0;

private:
    struct Bucket {
        std::int32_t head = -1;
        std::int32_t tail = -1;
    };

    std::size_t BucketOf(std::uint32_t hash) const { return hash & static_cast<std::uint32_t>(mask); }

    // Keys that were chosen to meet in one bucket would make every look-up a walk over all of them.
    static constexpr int kFar = 64;
    [[gnu::noinline]] const Value* FindFar(std::string_view key) const {
        if (far_.empty()) {
            for (const Node& node : nodes_) { far_.emplace(node.Key(), &node.value); }
        }
        const auto found = far_.find(key);
        return found != far_.end() ? found->second : nullptr;
    }

    mutable std::unordered_map<std::string_view, const Value*> far_; // all entries, once it was needed
    std::vector<Bucket> buckets_;
    std::vector<Node> nodes_;
};

} // namespace tarnwick
