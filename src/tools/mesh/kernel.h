#pragma once

#include "prepare/mesh_format.h"

#include <functional>

namespace tarnwick::tools {

// Sets up the kernel for this process: its messages go nowhere, and a signal in it becomes one of its
// exceptions. Once, before anything else of the kernel.
void StartKernel();

// Has the kernel read the text, make the bodies and triangulate them. What fails is told among the answer's
// problems; nothing is thrown. `tell` is called before each step. The kernel is for one thread at a time.
MeshAnswer MeshByKernel(const MeshRequest& request, const std::function<void(const MeshProgress&)>& tell);

} // namespace tarnwick::tools
