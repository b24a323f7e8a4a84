#include "product/safe_indices.h"

#include "product/scene_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Mesh : StepFaceB {
    Mesh(std::int32_t points, std::vector<std::uint32_t> corners) : StepFaceB{}, indices(std::move(corners)) {
        vertexCount = normalCount = points;
        triangles = indices.data();
        triangleCount = static_cast<std::int32_t>(indices.size() / 3);
    }
    std::vector<std::uint32_t> indices;
};

SafeIndices Checked(StepFaceB& mesh) {
    SceneTree tree;
    ProductNode* const part = tree.Part("part", 0);
    part->drawList->items[0]->meshes[0] = &mesh;
    SafeIndices safe;
    safe.Check(part->drawList, nullptr);
    return safe;
}

TEST(SafeIndices, KeepNothingOfASoundMesh) {
    Mesh mesh(3, {0, 1, 2, 2, 1, 0});
    EXPECT_EQ(Checked(mesh).Find(&mesh), nullptr);
    Mesh empty(0, {});
    EXPECT_EQ(Checked(empty).Find(&empty), nullptr);
}

TEST(SafeIndices, AreThoseOfTheTrianglesWhoseVerticesAreAllThere) {
    Mesh mesh(3, {0, 1, 2, 0, 1, 3, 2, 1, 0, 0xFFFFFFFF, 0, 1});
    const SafeIndices safe = Checked(mesh);
    const SafeIndices::Mesh* const found = safe.Find(&mesh);
    ASSERT_NE(found, nullptr);
    EXPECT_FALSE(found->hasIndices);
    EXPECT_TRUE(found->hasNormals);
    EXPECT_THAT(found->indices, ElementsAre(0, 1, 2, 2, 1, 0));
    Mesh other(3, {0, 1, 2});
    EXPECT_EQ(safe.Find(&other), nullptr);
}

TEST(SafeIndices, AreNoneOfAMeshWithoutVertices) {
    for (const std::int32_t vertices : {0, -1}) {
        Mesh mesh(vertices, {0, 0, 0});
        const SafeIndices safe = Checked(mesh);
        ASSERT_NE(safe.Find(&mesh), nullptr);
        EXPECT_THAT(safe.Find(&mesh)->indices, IsEmpty());
    }
}

TEST(SafeIndices, TellThatAMeshHasFewerNormalsThanVertices) {
    Mesh mesh(3, {0, 1, 2});
    mesh.normalCount = 2;
    const SafeIndices safe = Checked(mesh);
    ASSERT_NE(safe.Find(&mesh), nullptr);
    EXPECT_FALSE(safe.Find(&mesh)->hasNormals);
    EXPECT_TRUE(safe.Find(&mesh)->hasIndices);
    mesh.normalCount = 4;
    EXPECT_EQ(Checked(mesh).Find(&mesh), nullptr);
}

TEST(SafeIndices, FindTheMeshesOfAllItemsAndPassOverThoseThatArentThere) {
    SceneTree tree;
    Mesh first(1, {0, 0, 1});
    Mesh second(1, {0, 1, 0});
    ProductNode* const top = tree.Product("top");
    for (StepFaceB* const mesh : {static_cast<StepFaceB*>(&first), static_cast<StepFaceB*>(&second)}) {
        ProductNode* const part = tree.Part("part", 0);
        StepFaceB** const meshes = tree.arena.New<StepFaceB*>(2); // the first is null
        meshes[1] = mesh;
        part->drawList->items[0]->meshes = meshes;
        part->drawList->items[0]->meshCount = 2;
        tree.Use(top, part);
        tree.Use(top, part);
    }
    ASSERT_EQ(BuildDrawLists(tree.arena, top, "", nullptr), 0);
    SafeIndices safe;
    safe.Check(top->drawList, nullptr);
    EXPECT_NE(safe.Find(&first), nullptr);
    EXPECT_NE(safe.Find(&second), nullptr);
    safe.Check(nullptr, nullptr);
    EXPECT_EQ(safe.Find(&first), nullptr) << "of the scene before";
}

TEST(SafeIndices, AreThoseOfTheQuadsWhoseNodesAreAllThere) {
    std::vector<std::uint32_t> quads{0, 1, 2, 3, 0, 1, 2, 4, 3, 2, 1, 0};
    ResultMesh mesh{};
    mesh.quadIndices = quads.data();
    mesh.quadCount = 3;
    mesh.nodeCount = 5;
    SafeIndices safe;
    safe.Check(nullptr, &mesh);
    EXPECT_EQ(safe.Find(&mesh), nullptr);
    mesh.nodeCount = 4;
    safe.Check(nullptr, &mesh);
    ASSERT_NE(safe.Find(&mesh), nullptr);
    EXPECT_THAT(safe.Find(&mesh)->indices, ElementsAre(0, 1, 2, 3, 3, 2, 1, 0));
}

} // namespace
} // namespace tarnwick::test
