#pragma once

#include "product/safe_indices.h"
#include "product/scene_records.h"
#include "render/window_port.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace tarnwick {

// The arrays of one scene in buffer objects of the graphics library, so that a frame doesn't hand them over.
// Every call needs the window's context to be current.
class ResidentArrays {
public:
    // The arrays of one mesh: addresses, or offsets in the bound buffers.
    struct Arrays {
        const void* vertices = nullptr;
        const void* attributes = nullptr; // normals, or colours
        const void* indices = nullptr;
    };

    ResidentArrays();
    ~ResidentArrays(); // leaves the buffers to Drop, since the context may be gone
    ResidentArrays(const ResidentArrays&) = delete;
    ResidentArrays& operator=(const ResidentArrays&) = delete;

    // Copies the meshes of a scene, at most `limit` bytes of them. What exceeds that, and all that comes
    // after a buffer that the library refuses, isn't copied, and one line on the console says so. Any part of
    // the scene may be null.
    void Store(WindowPort& window, const DrawList* drawList, const DrawList* boxList,
               const ResultMesh* resultMesh, const SafeIndices& safe, std::size_t limit);
    // Whether Store was called since the last Drop, with success or not.
    bool IsStored() const { return isStored_; }
    // Gives all buffers back.
    void Drop();

    // Binds the buffers of a StepFaceB, BoxItem or ResultMesh and returns the offsets of its arrays in them.
    // For one that isn't stored, binds none and returns `arrays`. While nothing is stored it makes no call.
    Arrays Bind(const void* mesh, const Arrays& arrays);
    // Ends the use of buffers, at the end of a frame.
    void Unbind() { Bind(0, 0); }

private:
    struct Place {
        std::uint32_t arrays = 0; // the buffers; 0 when it isn't stored
        std::uint32_t indices = 0;
        std::size_t vertexOffset = 0;
        std::size_t attributeOffset = 0;
        std::size_t indexOffset = 0;
    };
    struct Piece {
        Place* place = nullptr;
        Arrays arrays;
        std::size_t vertexBytes = 0;
        std::size_t attributeBytes = 0;
        std::size_t indexBytes = 0;
    };

    // The functions for buffers, found by their names.
    struct Functions;

    bool FindFunctions(WindowPort& window);
    void Fill(unsigned target, std::size_t offset, const void* bytes, std::size_t count);
    void AddItems(const DrawList& list, const SafeIndices& safe);
    void AddBoxes(const DrawList& list);
    void AddResult(const ResultMesh& mesh, const SafeIndices& safe);
    void Add(const void* mesh, const Arrays& arrays, std::size_t vertexBytes, std::size_t attributeBytes,
             std::size_t indexBytes);
    void StorePieces();
    std::uint32_t NewBuffer(unsigned target, std::size_t bytes);
    void RemoveLast();
    void Bind(std::uint32_t arrays, std::uint32_t indices);

    std::unique_ptr<Functions> functions_; // null before the first Store
    std::unordered_map<const void*, Place> places_;
    std::vector<std::uint32_t> buffers_;
    std::vector<Piece> pieces_;       // that wait for a buffer
    std::size_t pieceArrayBytes_ = 0; // of all of them
    std::size_t pieceIndexBytes_ = 0;
    std::size_t room_ = 0; // bytes left of the limit
    std::size_t left_ = 0; // meshes without a place
    bool refused_ = false;
    bool isStored_ = false;
    std::uint32_t boundArrays_ = 0;
    std::uint32_t boundIndices_ = 0;
};

} // namespace tarnwick
