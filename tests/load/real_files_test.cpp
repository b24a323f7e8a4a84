// Files of other systems, which are no part of the project.

#include "support/loaded_view.h"
#include "support/real_files.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

double PowerOfTenths(int power) {
    double scale = 1.0;
    for (; power > 0; --power) { scale = scale * 0.1; }
    return scale;
}

class RealFiles : public testing::Test {
protected:
    // Loads a file of the folder, or skips the test.
    void Load(const std::string& name) {
        const std::string path = RealFile(name);
        if (path.empty()) { GTEST_SKIP() << name << " isn't here"; }
        view_.Load(path, 1);
        faces_ = view_.Faces();
    }

    CountingView view_;
    std::vector<const StepFaceB*> faces_;
};

TEST_F(RealFiles, NoSignIsOneSolidOfNineFaces) {
    Load("parts/no_sign.stp");
    if (IsSkipped()) { return; }
    EXPECT_EQ(faces_.size(), 9u);
    EXPECT_EQ(view_.loaded.drawnTriangles, 172);
    ASSERT_EQ(view_.loaded.containerCount, 1);
    EXPECT_EQ(view_.loaded.containers[0]->kind, 1);
    EXPECT_EQ(view_.loaded.containers[0]->exactContainerId, 0) << "its third argument is $";
    EXPECT_EQ(view_.loaded.rootName.empty(), false);
    for (const StepFaceB* const face : faces_) {
        EXPECT_EQ(face->containerId, 304);
        EXPECT_NE(face->colour[0], 0.3f) << "the first presentation colours its solid";
    }
    EXPECT_EQ(view_.loaded.pickMode, 1);
}

TEST_F(RealFiles, SimpleSignIsTheSame) {
    Load("parts/simple_sign.stp");
    if (IsSkipped()) { return; }
    EXPECT_EQ(faces_.size(), 9u);
    EXPECT_EQ(view_.loaded.drawnTriangles, 172);
}

TEST_F(RealFiles, AFullTestModelHasItsFacesAndColours) {
    Load("parts/nist_ftc_08_asme1_ap242-2.stp");
    if (IsSkipped()) { return; }
    EXPECT_EQ(faces_.size(), 272u);
    EXPECT_EQ(view_.loaded.drawnTriangles, 3388);
    for (const StepFaceB* const face : faces_) {
        EXPECT_EQ(face->colour[0], static_cast<float>(823529411765 * PowerOfTenths(12)));
        EXPECT_EQ(face->colour[2], 1.0f);
        EXPECT_EQ(face->colour[3], 0.0f) << "its transparency as it stands";
        EXPECT_GT(face->pnindexCount, 0);
        EXPECT_EQ(face->pnindexCount, face->vertexCount);
        EXPECT_GT(face->normalCount, 0);
        EXPECT_GT(face->exactFaceId, 0);
        for (std::int32_t i = 0; i < 3 * face->triangleCount; ++i) {
            ASSERT_LT(face->triangles[i], static_cast<unsigned>(face->vertexCount));
        }
    }
}

TEST_F(RealFiles, FacesDirectlyUnderTheRepresentationAreNotDrawn) {
    Load("other/ap242_tessellation.stp");
    if (IsSkipped()) { return; }
    EXPECT_EQ(view_.loaded.drawnTriangles, 0);
}

TEST_F(RealFiles, ASmallAssemblyHasNoTriangles) {
    Load("other/ap242_assembly.stp");
    if (IsSkipped()) { return; }
    EXPECT_EQ(view_.loaded.drawnTriangles, 0);
}

TEST_F(RealFiles, AnnotationsAreNotDrawn) {
    Load("other/nist_ctc_01_asme1_ap242-e1.stp");
    if (IsSkipped()) { return; }
    EXPECT_EQ(view_.loaded.drawnTriangles, 0);
}

TEST_F(RealFiles, AnExactAssemblyIsATreeThatDrawsNothing) {
    Load("other/as1-oc-214.stp");
    if (IsSkipped()) { return; }
    EXPECT_EQ(view_.loaded.drawnTriangles, 0);
    EXPECT_EQ(view_.loaded.pickMode, 2);
}

} // namespace
} // namespace tarnwick::test
