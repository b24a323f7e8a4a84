#pragma once

namespace tarnwick::test {

// The number parser as its arithmetic is defined, one digit after the other: what ParseReal must equal, bit
// for bit. *end is where it stopped.
double PlainParseReal(const char* p, const char** end);

} // namespace tarnwick::test
