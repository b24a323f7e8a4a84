#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <fstream>
#include <string>

namespace tarnwick::test {

// Bytes of address space that the process has.
inline std::size_t AddressSpace() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// While it lives, the process gets no more than so many bytes of address space beside those that it has. The
// heap has some in hand for small blocks. Not for builds with a sanitizer, which takes some of its own.
class AddressSpaceLimit {
public:
    explicit AddressSpaceLimit(std::size_t bytes) {
        std::string(kInHand, ' ').swap(inHand_);
        std::string().swap(inHand_); // the heap keeps it
        getrlimit(RLIMIT_AS, &former_);
        rlimit limit = former_;
        limit.rlim_cur = AddressSpace() + bytes;
        setrlimit(RLIMIT_AS, &limit);
    }
    AddressSpaceLimit(const AddressSpaceLimit&) = delete;
    AddressSpaceLimit& operator=(const AddressSpaceLimit&) = delete;
    ~AddressSpaceLimit() { setrlimit(RLIMIT_AS, &former_); }

private:
    static constexpr std::size_t kInHand = std::size_t{100} << 10;

    std::string inHand_;
    rlimit former_{};
};

} // namespace tarnwick::test
