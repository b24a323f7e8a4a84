// Loaded into a program (LD_PRELOAD): fails the allocation or the call to the system that the plan names.

#include "faults/plan.h"
#include "faults/system_filter.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>
#include <malloc.h>
#include <pthread.h>
#include <sys/mman.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tarnwick::faults {
namespace {

Plan* plan = nullptr;
bool active = false;
// Set while the library itself or a thread's start allocates: the one isn't the program's, the other's blocks
// are kept by the system for the next thread.
thread_local bool uncounted = false;
thread_local bool busy = false;

template <class Function>
Function* Next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The heap of the C library, below this one.
struct Heap {
    void* (*allocate)(std::size_t);
    void* (*clear)(std::size_t, std::size_t);
    void* (*resize)(void*, std::size_t);
    void* (*align)(std::size_t, std::size_t);
    void (*free)(void*);
};

// dlsym may allocate while the functions are looked up.
alignas(16) char early[65536];
std::size_t earlyUsed = 0;

void* TakeEarly(std::size_t bytes) {
    const std::size_t rounded = (bytes + 15) & ~std::size_t{15};
    if (rounded > sizeof early - earlyUsed) { std::abort(); }
    void* const block = early + earlyUsed;
    earlyUsed += rounded;
    return block;
}

bool IsEarly(const void* block) {
    return block >= early && block < early + sizeof early;
}

const Heap* TheHeap() {
    static Heap heap{};
    static int state = 0; // 1 while looked up, 2 after that; the first call comes before any thread
    if (state == 2) { return &heap; }
    if (state == 1) { return nullptr; }
    state = 1;
    heap.allocate = Next<void*(std::size_t)>("malloc");
    heap.clear = Next<void*(std::size_t, std::size_t)>("calloc");
    heap.resize = Next<void*(void*, std::size_t)>("realloc");
    heap.align = Next<void*(std::size_t, std::size_t)>("memalign");
    heap.free = Next<void(void*)>("free");
    state = 2;
    return &heap;
}

void NoteFrames(Frames* frames) {
    busy = true;
    frames->count = backtrace(frames->address, kMostFrames);
    busy = false;
}

bool IsTurn() {
    const std::int64_t number = plan->calls.fetch_add(1, std::memory_order_relaxed) + 1;
    const bool fails = number == plan->at || (plan->allLater != 0 && plan->at > 0 && number > plan->at);
    if (fails && plan->failed.fetch_add(1, std::memory_order_relaxed) == 0) { NoteFrames(&plan->fault0); }
    return fails;
}

bool FailsAllocation() {
    if (!active || busy) { return false; }
    if (plan->fault != Fault::kMemory && plan->fault != Fault::kNone) { return false; }
    if (!IsTurn()) { return false; }
    errno = ENOMEM;
    return true;
}

// A child that was forked ends without giving back, and its memory ends with it: what it holds isn't counted.
bool isForked = false;

void AddTo(std::atomic<std::int64_t>* held, std::int64_t change) {
    if (!isForked) { held->fetch_add(change, std::memory_order_relaxed); }
}

// Blocks that aren't counted: few, and looked for when a block is freed.
constexpr int kMostUncounted = 256;
std::atomic<void*> uncountedBlocks[kMostUncounted];
std::atomic<int> uncountedUsed = 0;

void* Counted(void* block) {
    if (block == nullptr || !active || busy) { return block; }
    if (!uncounted) {
        AddTo(&plan->blocks, 1);
        return block;
    }
    for (int i = 0; i < kMostUncounted; ++i) {
        void* none = nullptr;
        if (!uncountedBlocks[i].compare_exchange_strong(none, block)) { continue; }
        int used = uncountedUsed.load();
        while (used < i + 1 && !uncountedUsed.compare_exchange_weak(used, i + 1)) {}
        break;
    }
    return block;
}

void CountFreed(void* block) {
    if (block == nullptr || !active || busy) { return; }
    for (int i = uncountedUsed.load(); i-- > 0;) {
        void* known = block;
        if (uncountedBlocks[i].compare_exchange_strong(known, nullptr)) { return; }
    }
    AddTo(&plan->blocks, -1);
}

std::int64_t WholePages(std::size_t bytes) {
    return static_cast<std::int64_t>((bytes + 4095) / 4096 * 4096);
}

void OnCrash(int number) {
    NoteFrames(&plan->crash);
    std::signal(number, SIG_DFL);
    std::raise(number);
}

bool IsOfTheSystem(Fault fault) {
    return fault != Fault::kNone && fault != Fault::kMemory && fault != Fault::kArena &&
           fault != Fault::kThread;
}

void Start() {
    const char* const file = std::getenv(kPlanVariable);
    if (file == nullptr) { return; }
    void* const record = mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED, std::atoi(file), 0);
    if (record == MAP_FAILED) { std::abort(); }
    plan = static_cast<Plan*>(record);
    void* warmUp[2];
    backtrace(warmUp, 2); // loads what it needs
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void*) {
            plan->programBase = info->dlpi_addr;
            return 1; // the program is the first
        },
        nullptr);
    for (const int number : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL}) { std::signal(number, OnCrash); }
    if (IsOfTheSystem(plan->fault)) { TrapSystemCalls(plan->fault, IsTurn); }
    pthread_atfork(nullptr, nullptr, [] { isForked = true; });
    active = true; // what this library has allocated isn't the program's
}

// Behind the destructors of the program, since that is the last to be set up.
[[gnu::destructor]] void End() {
    if (plan == nullptr) { return; }
    active = false;
    plan->ended = 1;
}

} // namespace
} // namespace tarnwick::faults

using namespace tarnwick::faults;

extern "C" {

using Main = int(int, char**, char**);
using StartMain = int(Main*, int, char**, void (*)(), void (*)(), void (*)(), void*);

int __libc_start_main(Main* main, int argc, char** argv, void (*init)(), void (*fini)(), void (*loaderEnd)(),
                      void* stackEnd) {
    Start();
    return Next<StartMain>("__libc_start_main")(main, argc, argv, init, fini, loaderEnd, stackEnd);
}

void* malloc(std::size_t bytes) {
    const Heap* const heap = TheHeap();
    if (heap == nullptr) { return TakeEarly(bytes); }
    return FailsAllocation() ? nullptr : Counted(heap->allocate(bytes));
}

void* calloc(std::size_t count, std::size_t bytes) {
    const Heap* const heap = TheHeap();
    if (heap == nullptr) { return TakeEarly(count * bytes); }
    return FailsAllocation() ? nullptr : Counted(heap->clear(count, bytes));
}

void* realloc(void* block, std::size_t bytes) {
    if (FailsAllocation()) { return nullptr; }
    void* const moved = TheHeap()->resize(block, bytes);
    return block == nullptr ? Counted(moved) : moved;
}

void* memalign(std::size_t alignment, std::size_t bytes) {
    return FailsAllocation() ? nullptr : Counted(TheHeap()->align(alignment, bytes));
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return memalign(alignment, bytes);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) {
    *block = memalign(alignment, bytes);
    return *block != nullptr ? 0 : ENOMEM;
}

void free(void* block) {
    if (IsEarly(block)) { return; }
    CountFreed(block);
    TheHeap()->free(block);
}

void* mmap(void* place, std::size_t bytes, int protection, int flags, int file, off_t offset) {
    static auto* const next = Next<void*(void*, std::size_t, int, int, int, off_t)>("mmap");
    if ((flags & MAP_ANONYMOUS) != 0 && FailsAllocation()) { return MAP_FAILED; }
    void* const pages = next(place, bytes, protection, flags, file, offset);
    if (pages != MAP_FAILED && active) { AddTo(&plan->pageBytes, WholePages(bytes)); }
    return pages;
}

int munmap(void* pages, std::size_t bytes) noexcept {
    static auto* const next = Next<int(void*, std::size_t)>("munmap");
    if (active) { AddTo(&plan->pageBytes, -WholePages(bytes)); }
    return next(pages, bytes);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) {
    static auto* const next =
        Next<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create");
    if (active && plan->fault == Fault::kThread && IsTurn()) { return EAGAIN; }
    uncounted = true;
    const int result = next(thread, attributes, start, argument);
    uncounted = false;
    return result;
}

// Asked by a program that is linked with arena_faults.cpp.
[[gnu::visibility("default")]] bool tarnwick_arena_fails() {
    return active && plan->fault == Fault::kArena && IsTurn();
}

} // extern "C"
