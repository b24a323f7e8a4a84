#pragma once

#include "exchange/exchange_file.h"
#include "text/look_up.h"

#include <cstdint>

namespace tarnwick::prepare {

// Tessellation that says something about a part and is no shape of it: dimensions, notes, saved views. It
// hangs under an entity whose name has ANNOTATION in it. Used by one thread.
class Annotations {
public:
    explicit Annotations(const ExchangeFile& file);
    bool Contains(std::uint64_t item) { return items_.Contains(item); }

private:
    LookUp<std::uint64_t, char> items_;
};

} // namespace tarnwick::prepare
