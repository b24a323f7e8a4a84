#pragma once

#include "prepare/structure/structure.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

// Brings a STEP file into the form that the viewer reads: a top file and a file for each part.
namespace tarnwick::prepare {

struct PrepareOptions {
    std::string folder;        // where the outcome goes; it is made if need be
    double deflection = 0.001; // the most that a triangle is off its surface, as a part of a part's diagonal
    double angle = 20;         // the most between neighbouring pieces of a curve, in degrees
    double timeLimit = 60;     // for the kernel on one part, in seconds
    std::size_t jobs = 0;      // parts that are worked on at once; 0: as many as there are processors
    bool isForced = false;     // also what was prepared before
    bool isCompressed = false;
    std::string meshProgram; // the kernel's; empty where there is none
};

struct PrepareResult {
    std::string input;
    std::string output;          // the top file
    std::size_t parts = 0;       // with triangles
    std::size_t placedParts = 0; // their uses, multiplied through
    std::size_t bodies = 0;      // of all parts, each once
    std::size_t triangles = 0;   // of all parts, each once
    std::size_t placedTriangles = 0;
    double seconds = 0;
    bool isUnchanged = false; // it was there already
    bool isCancelled = false;
    std::vector<Loss> losses;
    std::string error; // why there is no outcome, empty otherwise

    bool LacksShape() const; // whether some shape of the input isn't in the outcome
};

// Told how many of the parts are done. Called on any thread, but never twice at once.
using TellProgress = std::function<void(std::size_t done, std::size_t parts)>;

// Never leaves a half-written file, nor a top file that names a part which isn't there. What it wrote before
// from the same bytes with the same options is left as it is. `tell` may be empty, `cancel` null. Any thread;
// several processes may fill one folder.
PrepareResult Prepare(const std::string& input, const PrepareOptions& options, const TellProgress& tell,
                      const std::atomic<bool>* cancel);

// The name of the outcome of an input, without folder: "wheel.stp" for "parts/wheel.step.gz".
std::string OutcomeName(const std::string& input, bool isCompressed);

} // namespace tarnwick::prepare
