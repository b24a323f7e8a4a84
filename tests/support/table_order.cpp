#include "support/table_order.h"

#include <algorithm>

namespace tarnwick::test {

std::vector<int> TableOrder(const std::vector<int>& ids, int entityCount) {
    int bits = 2;
    for (int left = entityCount; left > 5; left /= 2) { ++bits; }
    const int buckets = 1 << bits;
    const auto bucketOf = [buckets](int id) {
        int sum = 0;
        for (; id > 0; id /= buckets) { sum += id % buckets; }
        return sum % buckets;
    };
    std::vector<int> order = ids;
    std::stable_sort(order.begin(), order.end(),
                     [&bucketOf](int a, int b) { return bucketOf(a) < bucketOf(b); });
    return order;
}

} // namespace tarnwick::test
