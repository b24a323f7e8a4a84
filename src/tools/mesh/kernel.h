#pragma once

#include "mesher/mesh_format.h"

namespace tarnwick::tools {

// Sets up the kernel for this process: its messages go nowhere, a signal in it becomes one of its exceptions,
// and a lack of memory where it may not throw ends the process with kMeshOutOfMemory. To be called once,
// before anything else of the kernel.
void StartKernel();

// Is told what the kernel begins, and gets an answer in parts, where it comes so.
class MeshListener {
public:
    virtual ~MeshListener() = default;
    virtual void Tell(const MeshProgress& progress) = 0;
    virtual void Take(const MeshAnswer& part) = 0;
};

// Has the kernel read the text, make the bodies and triangulate them. What fails is among the answer's
// problems; nothing of the kernel is thrown. For one thread at a time.
MeshAnswer MeshByKernel(const MeshRequest& request, MeshListener* listener);

} // namespace tarnwick::tools
