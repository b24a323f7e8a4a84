// The exact bodies of real files, through the geometry kernel's program and the client.

#include "exchange/arguments.h"
#include "exchange/exchange_file.h"
#include "exchange/file_bytes.h"
#include "mesher/kernel_text.h"
#include "mesher/mesher.h"
#include "support/real_files.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>

namespace tarnwick::test {
namespace {

using ::testing::IsEmpty;

// The items with faces of all representations of a file, by their contexts, each once.
std::map<std::uint64_t, std::vector<std::uint64_t>> BodiesOf(const ExchangeFile& file) {
    std::map<std::uint64_t, std::vector<std::uint64_t>> bodies;
    std::set<std::uint64_t> seen;
    for (const Instance& instance : file.Instances()) {
        const std::string_view keyword = file.KeywordOf(instance);
        if (!keyword.ends_with("SHAPE_REPRESENTATION")) { continue; }
        const Arguments arguments(RecordOf(file.TextOf(instance)).arguments);
        std::vector<std::uint64_t> items;
        AppendReferences(arguments[1], &items);
        for (const std::uint64_t item : items) {
            if (!FacesOf(file, item).empty() && seen.insert(item).second) {
                bodies[ReferenceOf(arguments[2])].push_back(item);
            }
        }
    }
    return bodies;
}

struct Meshes {
    std::vector<MeshBody> bodies;
    std::vector<std::string> losses;

    std::size_t Faces() const {
        std::size_t faces = 0;
        for (const MeshBody& body : bodies) { faces += body.faces.size(); }
        return faces;
    }
    // The largest coordinate.
    double Reach() const {
        double reach = 0;
        for (const MeshBody& body : bodies) {
            for (const MeshFace& face : body.faces) {
                for (const Vec3& p : face.points) {
                    reach = std::max({reach, std::abs(p.x), std::abs(p.y), std::abs(p.z)});
                }
            }
        }
        return reach;
    }
    double Area() const {
        double area = 0;
        for (const MeshBody& body : bodies) {
            for (const MeshFace& face : body.faces) {
                for (const Triangle& t : face.triangles) {
                    area += Length(Cross(face.points[t[1]] - face.points[t[0]],
                                         face.points[t[2]] - face.points[t[0]])) /
                            2;
                }
            }
        }
        return area;
    }
};

Meshes MeshesOf(std::string_view text) {
    const ExchangeFile file(text);
    MesherOptions options;
    options.program = TARNWICK_MESH;
    Mesher mesher(options);
    Meshes all;
    for (const auto& [context, bodies] : BodiesOf(file)) {
        MeshResult result = mesher.Mesh(file, bodies, context);
        EXPECT_EQ(result.bodies.size(), bodies.size());
        std::move(result.bodies.begin(), result.bodies.end(), std::back_inserter(all.bodies));
        std::move(result.losses.begin(), result.losses.end(), std::back_inserter(all.losses));
    }
    return all;
}

FileBytes BytesOf(const char* name) {
    const std::string path = RealFile(name);
    return path.empty() ? FileBytes{} : ReadFileBytes(path, std::size_t{1} << 30);
}

// What the kernel makes of the whole file by itself, and the bodies that it leaves out.
struct RealBodies {
    const char* name;
    std::size_t bodies;
    std::size_t faces;
};

class RealFileBodies : public testing::TestWithParam<RealBodies> {};

TEST_P(RealFileBodies, ComeWithAllTheirFaces) {
    const FileBytes bytes = BytesOf(GetParam().name);
    if (!bytes.IsRead()) { GTEST_SKIP() << "no real file"; }
    const Meshes meshes = MeshesOf(bytes.Text());
    EXPECT_THAT(meshes.losses, IsEmpty());
    EXPECT_EQ(meshes.bodies.size(), GetParam().bodies);
    EXPECT_EQ(meshes.Faces(), GetParam().faces);
    for (const MeshBody& body : meshes.bodies) {
        EXPECT_THAT(body.lostFaces, IsEmpty());
        for (const MeshFace& face : body.faces) {
            EXPECT_NE(face.entity, 0U);
            EXPECT_EQ(face.normals.size(), face.points.size());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, RealFileBodies,
    testing::Values(RealBodies{"world/exact/io1-cm-214.stp", 3, 31},
                    RealBodies{"world/exact/nist_ctc_02_asme1_ap242-e2.stp", 3, 637},
                    RealBodies{"world/exact/nist_ftc_07_asme1_ap242-e2.stp", 3, 306},
                    RealBodies{"world/exact/nist_ftc_10_asme1_ap242-e2.stp", 13, 282},
                    RealBodies{"other/nist_ctc_01_asme1_ap242-e1.stp", 1, 117},
                    RealBodies{"other/as1-oc-214.stp", 5, 53},
                    RealBodies{"world/assemblies/dm1-id-214.stp", 3, 24},
                    RealBodies{"world/assemblies/dm1-pe-214.stp", 3, 31},
                    RealBodies{"world/assemblies/s1-tu-203-exact/footback.stp", 1, 9},
                    RealBodies{"world/assemblies/s1-tu-203-exact/footfront.stp", 1, 13},
                    RealBodies{"world/assemblies/s1-tu-203-exact/headback.stp", 1, 12},
                    RealBodies{"world/assemblies/s1-tu-203-exact/headfront.stp", 1, 5},
                    RealBodies{"world/assemblies/s1-tu-203-exact/mainbodyback.stp", 1, 20},
                    RealBodies{"world/assemblies/s1-tu-203-exact/mainbodyfront.stp", 1, 37},
                    RealBodies{"world/assemblies/s1-tu-203-exact/tailmiddlepart.stp", 1, 20},
                    RealBodies{"world/assemblies/s1-tu-203-exact/tailturbine.stp", 1, 21},
                    RealBodies{"world/assemblies/xr1-tu/xr1-tu-blt.stp", 1, 7},
                    RealBodies{"world/assemblies/xr1-tu/xr1-tu-lbr.stp", 1, 16},
                    RealBodies{"world/assemblies/xr1-tu/xr1-tu-nut.stp", 1, 8},
                    RealBodies{"world/assemblies/xr1-tu/xr1-tu-plt.stp", 1, 18},
                    RealBodies{"world/assemblies/xr1-tu/xr1-tu-rod.stp", 1, 4}),
    [](const testing::TestParamInfo<RealBodies>& parameter) {
        std::string name = parameter.param.name;
        std::replace_if(
            name.begin(), name.end(), [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; },
            '_');
        return name;
    });

std::string Replaced(std::string text, std::string_view what, std::string_view by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

// The numbers of a file stay what they are, whatever its unit of length is.
TEST(RealFileUnits, LeaveTheNumbersWhatTheyAre) {
    const FileBytes bytes = BytesOf("world/assemblies/xr1-tu/xr1-tu-lbr.stp");
    if (!bytes.IsRead()) { GTEST_SKIP() << "no real file"; }
    const std::string text(bytes.Text());
    const Meshes before = MeshesOf(bytes.Text());
    const std::string_view unit = "(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.))";
    ASSERT_NE(text.find(unit), std::string::npos);
    const std::string inches = "(CONVERSION_BASED_UNIT('INCH',#900001)LENGTH_UNIT()NAMED_UNIT(#900003));\n"
                               "#900001=LENGTH_MEASURE_WITH_UNIT(LENGTH_MEASURE(25.4),#900002);\n"
                               "#900002=(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.));\n"
                               "#900003=DIMENSIONAL_EXPONENTS(1.,0.,0.,0.,0.,0.,0.)";
    for (const std::string& other : {std::string("(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT($,.METRE.))"), inches}) {
        std::string changed = Replaced(text, unit, other);
        const std::size_t size = changed.size();
        changed.append(kBytesPadding, '\0');
        const Meshes after = MeshesOf(std::string_view(changed).substr(0, size));
        EXPECT_THAT(after.losses, IsEmpty());
        EXPECT_EQ(after.Faces(), before.Faces());
        EXPECT_NEAR(after.Reach(), before.Reach(), 1e-9 * before.Reach());
        EXPECT_NEAR(after.Area(), before.Area(), 1e-3 * before.Area());
    }
}

// A file that is in inches: its part is 12 inches long.
TEST(RealFileUnits, AreInchesWhereTheFileHasThem) {
    const FileBytes bytes = BytesOf("world/exact/nist_ftc_07_asme1_ap242-e2.stp");
    if (!bytes.IsRead()) { GTEST_SKIP() << "no real file"; }
    const Meshes meshes = MeshesOf(bytes.Text());
    EXPECT_LT(meshes.Reach(), 13);
    EXPECT_NEAR(meshes.Area(), 606.64, 0.1);
}

} // namespace
} // namespace tarnwick::test
