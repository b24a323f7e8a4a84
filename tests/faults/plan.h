// What the driver asks of the library that is loaded into a program, and what that answers: one record in
// memory that both have mapped.
#pragma once

#include <atomic>
#include <cstdint>

namespace tarnwick::faults {

// Holds the number of the file descriptor that the record lies in.
inline constexpr const char* kPlanVariable = "TARNWICK_FAULT_PLAN";

enum class Fault : std::int32_t {
    kNone,   // counts allocations
    kMemory, // blocks of the heap, and pages
    kArena,  // blocks of an arena, in a program that tells of them
    kOpen,
    kRead,
    kShortRead,
    kStatus,
    kSeek,
    kMap,
    kWrite,
    kShortWrite,
    kClose,
    kThread,
    kProcess,
    kRename,
    kMakeFolder,
};

inline constexpr int kMostFrames = 48;

struct Frames {
    std::int32_t count;
    void* address[kMostFrames]; // return addresses, the innermost first
};

struct Plan {
    // Set by the driver.
    Fault fault;
    std::int64_t at;       // number of the call that fails, from 1; 0 for none
    std::int32_t allLater; // whether all calls after it fail too
    std::int32_t ofOthers; // whether they are those of the programs that the program starts
    // Set by the library.
    std::atomic<std::int32_t> taken; // by the program
    // Calls count from the start of the program's own code, its static initialisers
    // included: what comes before is the system's.
    std::atomic<std::int64_t> calls;
    std::atomic<std::int32_t> failed;    // calls
    std::atomic<std::int32_t> ended;     // whether the program came to its last destructor
    std::atomic<std::int64_t> blocks;    // of the heap that weren't given back at the end
    std::atomic<std::int64_t> pageBytes; // likewise
    std::uintptr_t programBase;
    Frames fault0; // where the first call failed
    Frames crash;  // where the program was ended by a signal
    // Whether these were in the code of Qt.
    std::int32_t failedInToolkit;
    std::int32_t crashedInToolkit;
};

} // namespace tarnwick::faults
