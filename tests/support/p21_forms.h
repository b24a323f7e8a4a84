#pragma once

#include "support/strict_p21.h"

namespace tarnwick::test {

// Whether a record has the arguments that its keyword takes: their number, their kinds, and a point in each
// real. False for keywords that we never write.
bool HasItsForm(const P21Record& record);

} // namespace tarnwick::test
