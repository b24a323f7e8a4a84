#pragma once

#include "mesher/mesh_format.h"

namespace tarnwick::tools {

// Of the process, by which its client tells want of memory from other ends.
inline constexpr int kStatusOutOfMemory = 3;

// Sets up the kernel for this process: its messages go nowhere, a signal in it becomes one of its exceptions,
// and want of memory where it may not throw ends it with that status. Once, before anything else of the
// kernel.
void StartKernel();

// Who is told what the kernel begins, and gets the parts of an answer that comes in parts.
class MeshListener {
public:
    virtual ~MeshListener() = default;
    virtual void Tell(const MeshProgress& progress) = 0;
    virtual void Take(const MeshAnswer& part) = 0;
};

// Has the kernel read the text, make the bodies and triangulate them. What fails is told among the answer's
// problems; nothing is thrown. The kernel is for one thread at a time.
MeshAnswer MeshByKernel(const MeshRequest& request, MeshListener* listener);

} // namespace tarnwick::tools
