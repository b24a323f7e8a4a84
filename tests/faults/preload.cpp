// Loaded into a program (LD_PRELOAD): fails the allocation or the call to the system that the plan names.

#include "faults/plan.h"
#include "faults/system_filter.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>
#include <malloc.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

namespace tarnwick::faults {
namespace {

using Main = int(int, char**, char**);

Plan* own = nullptr;  // of the program that the driver started
Plan* plan = nullptr; // of the one that is to fail
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

// Whether the innermost frame is the toolkit's that is neither of the C library nor of the compiler's.
bool IsInToolkit(const Frames& frames) {
    for (int i = 0; i < frames.count; ++i) {
        Dl_info place;
        const char* const file = dladdr(frames.address[i], &place) != 0 ? place.dli_fname : "";
        if (std::strstr(file, "/libQt6") != nullptr) { return true; }
        if (reinterpret_cast<std::uintptr_t>(place.dli_fbase) == plan->programBase) { return false; }
    }
    return false;
}

bool IsTurn() {
    const std::int64_t number = plan->calls.fetch_add(1, std::memory_order_relaxed) + 1;
    const bool fails = number == plan->at || (plan->allLater != 0 && plan->at > 0 && number > plan->at);
    if (fails && plan->failed.fetch_add(1, std::memory_order_relaxed) == 0) {
        NoteFrames(&plan->fault0);
        plan->failedInToolkit = IsInToolkit(plan->fault0) ? 1 : 0;
    }
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
// Nor what a program holds that was started by the one whose plan it is.
bool isOther = false;

void AddTo(std::atomic<std::int64_t>* held, std::int64_t change) {
    if (!isForked && !isOther) { held->fetch_add(change, std::memory_order_relaxed); }
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
    plan->crashedInToolkit = IsInToolkit(plan->crash) ? 1 : 0;
    std::signal(number, SIG_DFL);
    std::raise(number);
}

bool IsOfTheSystem(Fault fault) {
    constexpr Fault kOthers[] = {Fault::kNone, Fault::kMemory, Fault::kArena, Fault::kThread,
                                 Fault::kProcess};
    return std::find(std::begin(kOthers), std::end(kOthers), fault) == std::end(kOthers);
}

void Start() {
    const char* const file = std::getenv(kPlanVariable);
    if (file == nullptr) { return; }
    void* const record = mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED, std::atoi(file), 0);
    if (record == MAP_FAILED) { std::abort(); }
    auto* const found = static_cast<Plan*>(record);
    const bool isFirst = found->taken.exchange(1) == 0;
    if (isFirst) { own = found; }
    if (isFirst == (found->ofOthers != 0)) { return; }
    plan = found;
    isOther = !isFirst;
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
    active = true; // what this library has allocated isn't the program's
}

// Behind the destructors of the program, since that is the last to be set up.
[[gnu::destructor]] void End() {
    active = false;
    if (own != nullptr && !isForked) { own->ended = 1; }
}

#ifdef TARNWICK_COUNTS_LINES
Main* programMain = nullptr;

// The program writes the counts of its lines when it has ended; nothing of that fails.
int RunMain(int argc, char** argv, char** environment) {
    std::atexit([] {
        active = false;
        PassThread();
    });
    return programMain(argc, argv, environment);
}
#endif

// A thread on its way.
struct ThreadBegin {
    void* (*start)(void*);
    void* argument;
};

void* RunThread(void* record) {
    const ThreadBegin begin = *static_cast<ThreadBegin*>(record);
    TheHeap()->free(record);
    TrapThread();
    void* const result = begin.start(begin.argument);
    PassThread();
    return result;
}

template <class Spawn, class... Arguments>
int SpawnBy(Spawn* next, Arguments... arguments) {
    if (!active) { return next(arguments...); }
    if (plan->fault == Fault::kProcess && IsTurn()) { return EAGAIN; }
    PassThread();
    const int result = next(arguments...);
    TrapThread();
    return result;
}

} // namespace
} // namespace tarnwick::faults

using namespace tarnwick::faults;

extern "C" {

using StartMain = int(Main*, int, char**, void (*)(), void (*)(), void (*)(), void*);

int __libc_start_main(Main* main, int argc, char** argv, void (*init)(), void (*fini)(), void (*loaderEnd)(),
                      void* stackEnd) {
    Start();
#ifdef TARNWICK_COUNTS_LINES
    programMain = std::exchange(main, RunMain);
#endif
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
    if (!active) { return next(thread, attributes, start, argument); }
    if (plan->fault == Fault::kThread && IsTurn()) { return EAGAIN; }
    auto* const begin = static_cast<ThreadBegin*>(TheHeap()->allocate(sizeof(ThreadBegin)));
    *begin = {start, argument};
    uncounted = true;
    PassThread();
    const int result = next(thread, attributes, RunThread, begin);
    TrapThread();
    uncounted = false;
    if (result != 0) { TheHeap()->free(begin); }
    return result;
}

pid_t fork() {
    static auto* const next = Next<pid_t()>("fork");
    if (!active) { return next(); }
    if (plan->fault == Fault::kProcess && IsTurn()) {
        errno = EAGAIN;
        return -1;
    }
    PassThread();
    const pid_t child = next();
    isForked = isForked || child == 0;
    TrapThread();
    return child;
}

using Spawn = int(pid_t*, const char*, const posix_spawn_file_actions_t*, const posix_spawnattr_t*,
                  char* const*, char* const*);

int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* words, char* const* environment) {
    return SpawnBy(Next<Spawn>("posix_spawn"), process, path, actions, attributes, words, environment);
}

int posix_spawnp(pid_t* process, const char* name, const posix_spawn_file_actions_t* actions,
                 const posix_spawnattr_t* attributes, char* const* words, char* const* environment) {
    return SpawnBy(Next<Spawn>("posix_spawnp"), process, name, actions, attributes, words, environment);
}

// Nobody learns when this finds no room, and nothing can be done about it: the destructor doesn't run then.
int __cxa_atexit(void (*destroy)(void*), void* object, void* module) {
    static auto* const next = Next<int(void (*)(void*), void*, void*)>("__cxa_atexit");
    const bool was = busy;
    busy = true;
    const int result = next(destroy, object, module);
    busy = was;
    return result;
}

// Asked by a program that is linked with arena_faults.cpp.
[[gnu::visibility("default")]] bool tarnwick_arena_fails() {
    return active && plan->fault == Fault::kArena && IsTurn();
}

} // extern "C"
