#pragma once

namespace tarnwick {

// The cores that this process may use, which may be fewer than there are.
int UsableCores();

} // namespace tarnwick
