#pragma once

namespace tarnwick::test {

// What this process holds of the system's.
struct Holdings {
    long files;
    long threads;
    long pages; // of memory
};
Holdings HoldingsNow();

} // namespace tarnwick::test
