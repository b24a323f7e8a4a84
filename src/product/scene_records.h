#pragma once

#include <cstdint>

// The scene: what all readers fill and what is drawn. Plain records in the arenas of the load that made them
// (see scene_memory.h); their arrays and strings are there too, and go with all the rest.
//
// A world matrix is sixteen f32 in the order that glMultMatrixf takes, column by column: element 4c + r is
// row r of column c, and elements 12, 13 and 14 are the translation. A point is a column vector on the right.
// Null is the identity. A box is six numbers: x minimum, x maximum, y minimum, y maximum, z minimum, z
// maximum. Coordinates are the file's own numbers, in no particular unit.
namespace tarnwick {

struct CoordCache;
struct DrawList;
struct ProductNode;

// One placed use of a child product under a parent.
struct Occurrence {
    double rotation[9]; // row-major 3 by 3; how it enters the world matrix: draw_list.h
    double translation[3];
    ProductNode* child;
    const char* relatedUid; // STEP XML only, else null
};

// One product of the tree.
struct ProductNode {
    std::int32_t isRoot;      // 1 from creation, 0 once it is met as a child
    DrawList* drawList;       // what it draws; null until a part reader or the tree walk fills it
    Occurrence** occurrences; // its uses of children, in reading order
    std::int32_t occurrenceCapacity;
    std::int32_t occurrenceCount;
    const char* name;          // its identity across files
    const char* fileName;      // its part file, or null
    std::int32_t definitionId; // entity number of the PRODUCT_DEFINITION
    std::int32_t formationId;  // entity number of the PRODUCT_DEFINITION_FORMATION
    std::int32_t hasBox;       // 1 when `box` is valid
    float box[6];              // in its own coordinates
};

// One tessellated face or surface set: the unit that is drawn and picked. Indices count from 0.
struct StepFaceB {
    std::int32_t faceId;           // entity number
    std::int32_t exactFaceId;      // of its geometric_link; 0 without one, and for a surface set
    std::int32_t containerId;      // of the solid or shell that lists it; 0 for a surface set
    std::int32_t exactContainerId; // of that one's link
    std::int32_t containerType;    // 1 solid, 2 shell, 0 surface set
    std::int32_t vertexCount;
    std::int32_t triangleCount;
    std::int32_t normalCount;     // 0, `vertexCount`, or any other number that the file gives
    const CoordCache* coordCache; // never set
    float* vertices;              // x, y, z of each vertex
    float* normals;               // x, y, z of each normal, as read, not normalised
    std::uint32_t* triangles;     // three indices into `vertices` each; not tested against `vertexCount`
    std::int32_t pnmax;           // as read; 0 for "$"
    std::int32_t pnindexCount;
    std::int32_t* pnindex;
    float colour[4]; // red, green, blue, alpha, from 0 to 1
    float box[6];    // of `vertices`
};

// One TESSELLATED_SOLID or TESSELLATED_SHELL of a part.
struct FaceContainer {
    std::int32_t kind;           // 1 solid, 2 shell
    const char* materialName;    // raw material, or null
    const char* materialComment; // never set
    std::int32_t containerId;
    std::int32_t exactContainerId; // entity number in its link; 0 without one
};

// A set of meshes with a world matrix. The meshes are shared by all placed copies of the item.
struct DrawItem {
    StepFaceB** meshes;
    std::int32_t meshCount;
    const float* matrix;  // sixteen f32, or null
    ProductNode* product; // the one that holds the geometry
};

// A box with its own small mesh, for the views that show boxes in place of geometry.
struct BoxItem {
    float* vertices;        // 24 points
    float* normals;         // one for each vertex
    std::uint32_t* indices; // 12 triangles
    std::int32_t vertexCount;
    std::int32_t triangleCount;
    float* matrix;        // sixteen f32, or null
    ProductNode* product; // what a pick on the box names, or null
};

// A growable array of pointers to DrawItem, or to BoxItem; a list holds only one kind.
struct DrawList {
    union {
        DrawItem** items;
        BoxItem** boxes;
    };
    std::int32_t count;
    std::int32_t capacity;
};

// The quad mesh of a finite element file, one colour for each node.
struct ResultMesh {
    float* vertices;            // x, y, z of every node, also of those that no element uses
    std::uint8_t* colours;      // red, green, blue of the node, and 255
    std::uint32_t* quadIndices; // four node indices for each quad
    std::int32_t quadCount;
    std::int32_t nodeCount;
};

} // namespace tarnwick
