#pragma once

namespace tarnwick::test {

// The system's resources that this process holds.
struct Holdings {
    long files;
    long threads;
    long pages; // of memory
};
Holdings HoldingsNow();

} // namespace tarnwick::test
