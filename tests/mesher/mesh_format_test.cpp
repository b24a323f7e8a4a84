// The messages between tarnwick-mesh and its client.

#include "mesher/mesh_format.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>

namespace tarnwick::test {
namespace {

MeshAnswer SmallAnswer() {
    MeshFace face;
    face.entity = 17;
    face.points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    face.normals = {{0, 0, 1}, {0, 0, 1}, {0, 0, 1}};
    face.triangles = {{0, 1, 2}};
    MeshFace bare = face;
    bare.normals.clear();
    MeshAnswer answer;
    answer.diagonal = 1.5;
    answer.bodies = {{5, {face, bare}, {18, 19}}, {6, {}, {}}};
    answer.problems = {{7, "no shape"}, {0, ""}};
    return answer;
}

std::string PayloadOf(const std::string& message) {
    return message.substr(kMeshHeadSize);
}

MeshHead HeadOf(const std::string& message) {
    return DecodeMeshHead(std::string_view(message).substr(0, kMeshHeadSize)).value_or(MeshHead{});
}

TEST(MeshFormat, GivesAnAnswerBack) {
    const MeshAnswer answer = SmallAnswer();
    const std::string message = EncodeMesh(answer);
    const MeshHead head = HeadOf(message);
    EXPECT_EQ(head.kind, MeshMessage::kAnswer);
    EXPECT_EQ(head.length, message.size() - kMeshHeadSize);
    MeshAnswer back;
    ASSERT_TRUE(DecodeMesh(PayloadOf(message), &back));
    EXPECT_EQ(back.diagonal, 1.5);
    ASSERT_EQ(back.bodies.size(), 2U);
    EXPECT_EQ(back.bodies[0].entity, 5U);
    EXPECT_THAT(back.bodies[0].lostFaces, testing::ElementsAre(18, 19));
    ASSERT_EQ(back.bodies[0].faces.size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        const MeshFace& face = back.bodies[0].faces[i];
        EXPECT_EQ(face.entity, 17U);
        EXPECT_EQ(face.points, answer.bodies[0].faces[i].points);
        EXPECT_EQ(face.normals, answer.bodies[0].faces[i].normals);
        EXPECT_EQ(face.triangles, answer.bodies[0].faces[i].triangles);
    }
    ASSERT_EQ(back.problems.size(), 2U);
    EXPECT_EQ(back.problems[0].entity, 7U);
    EXPECT_EQ(back.problems[0].words, "no shape");
}

TEST(MeshFormat, PutsThePartsOfAnAnswerTogether) {
    const std::string message = EncodeMesh(SmallAnswer(), MeshMessage::kPart);
    EXPECT_EQ(HeadOf(message).kind, MeshMessage::kPart);
    MeshAnswer back;
    ASSERT_TRUE(DecodeMesh(PayloadOf(message), &back));
    ASSERT_TRUE(DecodeMesh(PayloadOf(message), &back));
    EXPECT_EQ(back.bodies.size(), 4U);
    EXPECT_EQ(back.problems.size(), 4U);
}

TEST(MeshFormat, GivesARequestBack) {
    const MeshRequest request{"a text", {3, 4}, 0.25, 12.5, 30, MeshAlgorithm::kDelabella, true};
    const std::string message = EncodeMesh(request);
    EXPECT_EQ(HeadOf(message).kind, MeshMessage::kRequest);
    MeshRequest back;
    ASSERT_TRUE(DecodeMesh(PayloadOf(message), &back));
    EXPECT_EQ(back.text, "a text");
    EXPECT_THAT(back.bodies, testing::ElementsAre(3, 4));
    EXPECT_EQ(back.deflection, 0.25);
    EXPECT_EQ(back.diagonal, 12.5);
    EXPECT_EQ(back.angle, 30);
    EXPECT_EQ(back.algorithm, MeshAlgorithm::kDelabella);
    EXPECT_TRUE(back.isEach);
}

TEST(MeshFormat, GivesProgressBack) {
    const std::string message = EncodeMesh(MeshProgress{MeshStage::kTransfer, 99});
    EXPECT_EQ(HeadOf(message).kind, MeshMessage::kProgress);
    MeshProgress back;
    ASSERT_TRUE(DecodeMesh(PayloadOf(message), &back));
    EXPECT_EQ(back.stage, MeshStage::kTransfer);
    EXPECT_EQ(back.body, 99U);
}

TEST(MeshFormat, RefusesAnAnswerThatIsCutAnywhere) {
    const std::string payload = PayloadOf(EncodeMesh(SmallAnswer()));
    for (std::size_t length = 0; length < payload.size(); ++length) {
        MeshAnswer answer;
        EXPECT_FALSE(DecodeMesh(payload.substr(0, length), &answer)) << length;
    }
    MeshAnswer answer;
    EXPECT_FALSE(DecodeMesh(payload + "x", &answer));
}

TEST(MeshFormat, RefusesARequestThatIsCutAnywhere) {
    const std::string payload = PayloadOf(EncodeMesh(MeshRequest{"text", {1}, 1, 1, 1, {}, false}));
    for (std::size_t length = 0; length < payload.size(); ++length) {
        MeshRequest request;
        EXPECT_FALSE(DecodeMesh(payload.substr(0, length), &request)) << length;
    }
}

// Whatever is decoded can be used without a further look.
TEST(MeshFormat, NeverGivesATriangleOfMissingPoints) {
    const std::string payload = PayloadOf(EncodeMesh(SmallAnswer()));
    for (std::size_t place = 0; place < payload.size(); ++place) {
        for (const int value : {0, 1, 0x7F, 0x80, 0xFF}) {
            std::string damaged = payload;
            damaged[place] = static_cast<char>(value);
            MeshAnswer answer;
            if (!DecodeMesh(damaged, &answer)) { continue; }
            for (const MeshBody& body : answer.bodies) {
                for (const MeshFace& face : body.faces) {
                    EXPECT_TRUE(face.normals.empty() || face.normals.size() == face.points.size());
                    for (const Triangle& triangle : face.triangles) {
                        for (const Index i : triangle) { EXPECT_LT(i, face.points.size()); }
                    }
                }
            }
        }
    }
}

TEST(MeshFormat, RefusesNumbersThatAreNotFinite) {
    MeshAnswer answer = SmallAnswer();
    answer.bodies[0].faces[0].points[1].y = std::numeric_limits<double>::quiet_NaN();
    MeshAnswer back;
    EXPECT_FALSE(DecodeMesh(PayloadOf(EncodeMesh(answer)), &back));
}

TEST(MeshFormat, RefusesHeadsOfOthers) {
    std::string message = EncodeMesh(MeshProgress{});
    EXPECT_FALSE(DecodeMeshHead(std::string_view(message).substr(0, kMeshHeadSize - 1)));
    message.resize(kMeshHeadSize);
    EXPECT_TRUE(DecodeMeshHead(message));
    for (std::size_t place = 0; place < 8; ++place) {
        std::string damaged = message;
        damaged[place] = static_cast<char>(damaged[place] ^ 0x40);
        EXPECT_FALSE(DecodeMeshHead(damaged)) << place;
    }
}

} // namespace
} // namespace tarnwick::test
