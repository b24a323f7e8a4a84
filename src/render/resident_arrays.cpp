#include "render/resident_arrays.h"

#include "platform/console.h"
#include "render/drop_errors.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <cstdlib>

namespace tarnwick {

namespace {

// A buffer takes the arrays of many meshes, so that a frame seldom binds another; a larger mesh has its own.
// When a buffer is refused, no more than this much room stays unused.
constexpr std::size_t kBufferBytes = std::size_t{16} << 20;

std::size_t CountOf(std::int32_t count) {
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

// An offset in a bound buffer, as the graphics library takes it.
const void* AsAddress(std::size_t offset) {
    return reinterpret_cast<const void*>(offset);
}

template <class Function>
bool Find(WindowPort& window, const char* name, Function* function) {
    *function = reinterpret_cast<Function>(window.FindFunction(name));
    return *function != nullptr;
}

} // namespace

struct ResidentArrays::Functions {
    PFNGLGENBUFFERSPROC generate = nullptr;
    PFNGLDELETEBUFFERSPROC remove = nullptr;
    PFNGLBINDBUFFERPROC bind = nullptr;
    PFNGLBUFFERDATAPROC make = nullptr;
    PFNGLBUFFERSUBDATAPROC fill = nullptr;
};

ResidentArrays::ResidentArrays() = default;
ResidentArrays::~ResidentArrays() = default;

// Whether there are buffers. The version counts: a library may have addresses of functions that the context
// doesn't have.
bool ResidentArrays::FindFunctions(WindowPort& window) {
    const GLubyte* const version = glGetString(GL_VERSION);
    if (version == nullptr || std::strtod(reinterpret_cast<const char*>(version), nullptr) < 1.5) {
        return false;
    }
    functions_ = std::make_unique<Functions>();
    return Find(window, "glGenBuffers", &functions_->generate) &&
           Find(window, "glDeleteBuffers", &functions_->remove) &&
           Find(window, "glBindBuffer", &functions_->bind) &&
           Find(window, "glBufferData", &functions_->make) &&
           Find(window, "glBufferSubData", &functions_->fill);
}

void ResidentArrays::Fill(unsigned target, std::size_t offset, const void* bytes, std::size_t count) {
    if (count > 0) {
        functions_->fill(target, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(count), bytes);
    }
}

void ResidentArrays::Store(WindowPort& window, const DrawList* drawList, const DrawList* boxList,
                           const ResultMesh* resultMesh, const SafeIndices& safe, std::size_t limit) {
    Drop();
    isStored_ = true;
    if (!FindFunctions(window)) {
        ConsolePrint("<W> --resident: the graphics library has no buffers, each frame hands it all arrays\n");
        return;
    }
    room_ = limit;
    // The first that exists, as in a frame.
    if (drawList != nullptr) {
        AddItems(*drawList, safe);
    } else if (resultMesh != nullptr) {
        AddResult(*resultMesh, safe);
    } else if (boxList != nullptr) {
        AddBoxes(*boxList);
    }
    StorePieces();
    if (left_ > 0) {
        ConsolePrint("<W> --resident: %zu of %zu meshes don't fit into %s, each frame hands them over\n",
                     left_, places_.size(), refused_ ? "the graphics library" : "the limit");
    }
}

void ResidentArrays::Drop() {
    if (!buffers_.empty()) {
        Bind(0, 0);
        functions_->remove(static_cast<GLsizei>(buffers_.size()), buffers_.data());
    }
    buffers_ = {};
    places_ = {};
    pieces_ = {};
    pieceArrayBytes_ = pieceIndexBytes_ = 0;
    left_ = 0;
    refused_ = false;
    isStored_ = false;
}

void ResidentArrays::AddItems(const DrawList& list, const SafeIndices& safe) {
    for (std::int32_t i = 0; i < list.count; ++i) {
        const DrawItem& item = *list.items[i];
        for (std::int32_t j = 0; j < item.meshCount; ++j) {
            if (item.meshes[j] == nullptr) { continue; }
            const StepFaceB& mesh = *item.meshes[j];
            const std::size_t vertexBytes = 3 * sizeof(float) * CountOf(mesh.vertexCount);
            Arrays arrays{mesh.vertices, mesh.normals, mesh.triangles};
            std::size_t attributeBytes = vertexBytes;
            std::size_t indices = 3 * CountOf(mesh.triangleCount);
            if (const SafeIndices::Mesh* const sound = safe.Find(&mesh)) {
                if (!sound->hasNormals) { attributeBytes = 0; }
                if (!sound->hasIndices) {
                    arrays.indices = sound->indices.data();
                    indices = sound->indices.size();
                }
            }
            Add(&mesh, arrays, vertexBytes, attributeBytes, indices * sizeof(std::uint32_t));
        }
    }
}

void ResidentArrays::AddBoxes(const DrawList& list) {
    for (std::int32_t i = 0; i < list.count; ++i) {
        const BoxItem& box = *list.boxes[i];
        const std::size_t vertexBytes = 3 * sizeof(float) * CountOf(box.vertexCount);
        Add(&box, {box.vertices, box.normals, box.indices}, vertexBytes, vertexBytes,
            3 * sizeof(std::uint32_t) * CountOf(box.triangleCount));
    }
}

void ResidentArrays::AddResult(const ResultMesh& mesh, const SafeIndices& safe) {
    const std::size_t nodes = CountOf(mesh.nodeCount);
    Arrays arrays{mesh.vertices, mesh.colours, mesh.quadIndices};
    std::size_t indices = 4 * CountOf(mesh.quadCount);
    if (const SafeIndices::Mesh* const sound = safe.Find(&mesh)) {
        arrays.indices = sound->indices.data();
        indices = sound->indices.size();
    }
    Add(&mesh, arrays, 3 * sizeof(float) * nodes, 4 * nodes, indices * sizeof(std::uint32_t));
}

void ResidentArrays::Add(const void* mesh, const Arrays& arrays, std::size_t vertexBytes,
                         std::size_t attributeBytes, std::size_t indexBytes) {
    if (indexBytes == 0) { return; } // nothing would be handed over
    const auto [entry, isNew] = places_.try_emplace(mesh);
    if (!isNew) { return; } // placed copies of a part share their meshes
    const std::size_t arrayBytes = vertexBytes + attributeBytes;
    const std::size_t bytes = arrayBytes + indexBytes;
    if (pieceArrayBytes_ + arrayBytes > kBufferBytes || pieceIndexBytes_ + indexBytes > kBufferBytes) {
        StorePieces();
    }
    if (refused_ || bytes > room_) {
        ++left_;
        return;
    }
    room_ -= bytes;
    Place& place = entry->second;
    place.vertexOffset = pieceArrayBytes_;
    place.attributeOffset = pieceArrayBytes_ + vertexBytes;
    place.indexOffset = pieceIndexBytes_;
    pieceArrayBytes_ += arrayBytes;
    pieceIndexBytes_ += indexBytes;
    pieces_.push_back({&place, arrays, vertexBytes, attributeBytes, indexBytes});
}

std::uint32_t ResidentArrays::NewBuffer(unsigned target, std::size_t bytes) {
    GLuint buffer = 0;
    functions_->generate(1, &buffer);
    if (buffer == 0) { return 0; }
    buffers_.push_back(buffer);
    functions_->bind(target, buffer);
    DropErrors();
    functions_->make(target, static_cast<GLsizeiptr>(bytes), nullptr, GL_STATIC_DRAW);
    if (glGetError() == GL_NO_ERROR) { return buffer; }
    RemoveLast();
    return 0;
}

void ResidentArrays::RemoveLast() {
    functions_->remove(1, &buffers_.back()); // which unbinds it
    buffers_.pop_back();
}

void ResidentArrays::StorePieces() {
    if (!pieces_.empty()) {
        buffers_.reserve(buffers_.size() + 2); // if this throws, no buffer is bound yet
        const GLuint arrays = NewBuffer(GL_ARRAY_BUFFER, pieceArrayBytes_);
        const GLuint indices = arrays != 0 ? NewBuffer(GL_ELEMENT_ARRAY_BUFFER, pieceIndexBytes_) : 0;
        refused_ = indices == 0;
        if (refused_) {
            if (arrays != 0) { RemoveLast(); } // of no use without the other
            left_ += pieces_.size();
        } else {
            for (const Piece& piece : pieces_) {
                Place& place = *piece.place;
                place.arrays = arrays;
                place.indices = indices;
                Fill(GL_ARRAY_BUFFER, place.vertexOffset, piece.arrays.vertices, piece.vertexBytes);
                Fill(GL_ARRAY_BUFFER, place.attributeOffset, piece.arrays.attributes, piece.attributeBytes);
                Fill(GL_ELEMENT_ARRAY_BUFFER, place.indexOffset, piece.arrays.indices, piece.indexBytes);
            }
        }
        functions_->bind(GL_ARRAY_BUFFER, 0);
        functions_->bind(GL_ELEMENT_ARRAY_BUFFER, 0);
    }
    pieces_.clear();
    pieceArrayBytes_ = pieceIndexBytes_ = 0;
}

void ResidentArrays::Bind(std::uint32_t arrays, std::uint32_t indices) {
    if (arrays != boundArrays_) { functions_->bind(GL_ARRAY_BUFFER, arrays); }
    if (indices != boundIndices_) { functions_->bind(GL_ELEMENT_ARRAY_BUFFER, indices); }
    boundArrays_ = arrays;
    boundIndices_ = indices;
}

ResidentArrays::Arrays ResidentArrays::Bind(const void* mesh, const Arrays& arrays) {
    if (buffers_.empty()) { return arrays; }
    const auto found = places_.find(mesh);
    if (found == places_.end() || found->second.arrays == 0) {
        Bind(0, 0);
        return arrays;
    }
    const Place& place = found->second;
    Bind(place.arrays, place.indices);
    return {AsAddress(place.vertexOffset), AsAddress(place.attributeOffset), AsAddress(place.indexOffset)};
}

} // namespace tarnwick
