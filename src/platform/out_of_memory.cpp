#include "platform/out_of_memory.h"

#include "platform/standard_streams.h"

#include <cxxabi.h>

#include <cstdlib>
#include <new>
#include <typeinfo>

namespace tarnwick {

void EndOutOfMemory(const char* line) {
    // The exception can't be rethrown to look at it: that takes memory.
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (type == nullptr || *type != typeid(std::bad_alloc)) { std::abort(); }
    WriteToError(line);
    std::_Exit(1);
}

} // namespace tarnwick
