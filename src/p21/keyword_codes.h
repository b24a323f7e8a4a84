#pragma once

#include <cstdint>

// What ClassifyEntity makes of an entity's keyword. Only the codes that some reader asks for have a name; 0
// means that the keyword isn't recognised, and 8, 21, 35 and 36 are not used.
namespace tarnwick::code {

inline constexpr std::int32_t kUnknown = 0;
inline constexpr std::int32_t kTessellatedShapeRepresentation = 12;
inline constexpr std::int32_t kTessellatedSolid = 13;
inline constexpr std::int32_t kTessellatedShell = 14;
inline constexpr std::int32_t kCoordinatesList = 16;
inline constexpr std::int32_t kTriangulatedFace = 17;
inline constexpr std::int32_t kComplexTriangulatedFace = 18;
inline constexpr std::int32_t kTriangulatedSurfaceSet = 19;
inline constexpr std::int32_t kComplexTriangulatedSurfaceSet = 20;
inline constexpr std::int32_t kPresentationRepresentation = 22;
inline constexpr std::int32_t kColourRgb = 23;
inline constexpr std::int32_t kDraughtingPreDefinedColour = 24;
inline constexpr std::int32_t kContextDependentShapeRepresentation = 25;
inline constexpr std::int32_t kNextAssemblyUsage = 26;
inline constexpr std::int32_t kProduct = 27;
inline constexpr std::int32_t kProductRelatedProductCategory = 28;
inline constexpr std::int32_t kAppliedDocumentReference = 29;
inline constexpr std::int32_t kSurfaceStyleFillArea = 33;
inline constexpr std::int32_t kSurfaceStyleRendering = 34;
inline constexpr std::int32_t kSurface3dElement = 37;
inline constexpr std::int32_t kSurfaceSectionFieldVarying = 38;
inline constexpr std::int32_t kNode = 39;
inline constexpr std::int32_t kUniformSurfaceSection = 40;
inline constexpr std::int32_t kShapeDefinitionRepresentation = 41;
inline constexpr std::int32_t kMakeFromUsageOption = 42;

} // namespace tarnwick::code

namespace tarnwick {

// The code of the keyword at `p`, by comparison of its first characters. Up to 34 characters behind `p` must
// be readable.
std::int32_t ClassifyEntity(const char* p);

} // namespace tarnwick
