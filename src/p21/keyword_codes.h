#pragma once

#include <cstdint>

// The codes that ClassifyEntity gives to keywords. 8, 21, 35 and 36 are not used.
namespace tarnwick::code {

inline constexpr std::int32_t kUnknown = 0; // no keyword that is recognised
inline constexpr std::int32_t kManifoldSolid = 1;
inline constexpr std::int32_t kBrepWithVoids = 2;
inline constexpr std::int32_t kFacetedBrep = 3;
inline constexpr std::int32_t kClosedShell = 4;
inline constexpr std::int32_t kOpenShell = 5;
inline constexpr std::int32_t kAdvancedFace = 6;
inline constexpr std::int32_t kEdgeLoop = 7;
inline constexpr std::int32_t kEdgeCurve = 9;
inline constexpr std::int32_t kCartesianPoint = 10;
inline constexpr std::int32_t kVertexPoint = 11;
inline constexpr std::int32_t kTessellatedShapeRepresentation = 12;
inline constexpr std::int32_t kTessellatedSolid = 13;
inline constexpr std::int32_t kTessellatedShell = 14;
inline constexpr std::int32_t kTessellatedWire = 15;
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
inline constexpr std::int32_t kBSpline = 30;
inline constexpr std::int32_t kBSplineSurface = 31;
inline constexpr std::int32_t kBSplineCurve = 32;
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

// The code of the keyword at `p`, told by its first characters. Up to 34 characters from `p` on must be
// readable.
std::int32_t ClassifyEntity(const char* p);

} // namespace tarnwick
