#pragma once

#include <span>
#include <string>

// Texts that made a load take the square of their size, or might: each reader must need about four times as
// much for one of four times the size.
namespace tarnwick::growth {

struct Case {
    const char* name;
    std::string (*text)(int n); // of a file with `n` of what the case is about
    int n;                      // so that a load takes a moment
    const char* extension = "stp";
};

std::span<const Case> Cases();

} // namespace tarnwick::growth
