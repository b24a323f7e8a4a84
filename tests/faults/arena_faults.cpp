// Linked into a program in front of its arenas (--wrap): a small file never fills the first chunk of one, and
// so would never see it refuse a block.

#include "platform/arena.h"

#include <dlfcn.h>

namespace {

bool Fails() {
    static auto* const fails = reinterpret_cast<bool (*)()>(dlsym(RTLD_DEFAULT, "tarnwick_arena_fails"));
    return fails != nullptr && fails();
}

} // namespace

extern "C" {

void* __real__ZN8tarnwick5Arena8AllocateEm(tarnwick::Arena* arena, std::size_t bytes);
char* __real__ZN8tarnwick5Arena4CopyEPKcm(tarnwick::Arena* arena, const char* text, std::size_t length);
char* __real__ZN8tarnwick5Arena7OpenTipEmPPc(tarnwick::Arena* arena, std::size_t bytes, char** limit);
char* __real__ZN8tarnwick5Arena7GrowTipEPcmmPS1_(tarnwick::Arena* arena, char* start, std::size_t used,
                                                 std::size_t bytes, char** limit);

void* __wrap__ZN8tarnwick5Arena8AllocateEm(tarnwick::Arena* arena, std::size_t bytes) {
    return Fails() ? nullptr : __real__ZN8tarnwick5Arena8AllocateEm(arena, bytes);
}

char* __wrap__ZN8tarnwick5Arena4CopyEPKcm(tarnwick::Arena* arena, const char* text, std::size_t length) {
    return Fails() ? nullptr : __real__ZN8tarnwick5Arena4CopyEPKcm(arena, text, length);
}

char* __wrap__ZN8tarnwick5Arena7OpenTipEmPPc(tarnwick::Arena* arena, std::size_t bytes, char** limit) {
    return Fails() ? nullptr : __real__ZN8tarnwick5Arena7OpenTipEmPPc(arena, bytes, limit);
}

char* __wrap__ZN8tarnwick5Arena7GrowTipEPcmmPS1_(tarnwick::Arena* arena, char* start, std::size_t used,
                                                 std::size_t bytes, char** limit) {
    return Fails() ? nullptr : __real__ZN8tarnwick5Arena7GrowTipEPcmmPS1_(arena, start, used, bytes, limit);
}

} // extern "C"
