#pragma once

#include "platform/console.h"
#include "platform/within_memory.h"
#include "product/load_session.h"

#include <cstdint>
#include <vector>

namespace tarnwick {

// Tells of a file that a library had no memory for, and notes it as unread while there is memory for that.
inline void GiveUpForMemory(const char* path, const char* productName, std::int32_t place,
                            std::vector<UnreadFile>* unreadFiles) {
    ConsolePrint("<E> %s: given up, no memory\n", path);
    WithinMemory([&] {
        unreadFiles->push_back({place, path, productName, "needs more memory than there is"});
    });
}

} // namespace tarnwick
