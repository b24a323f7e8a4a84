// Every P21 text that the program writes, in every variant, held against the letter of the standard.
#include "archive/stpa_archive.h"
#include "make_files.h"
#include "support/archive.h"
#include "support/capture.h"
#include "support/packed.h"
#include "written.h"

namespace tarnwick::make {
namespace {

using Arguments = std::vector<std::string>;

class MakeValid : public MakeFiles {
protected:
    // Writes with these arguments, to a file of that name.
    void Make(const std::string& kind, const std::string& name, const Arguments& options = {}) {
        Arguments arguments{kind, Path(name)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ASSERT_EQ(Run(arguments), 0) << testing::PrintToString(arguments);
    }

    // All P21 files in the folder, inflated where they are packed, and none of them again.
    void ExpectAllValid(std::size_t count) {
        std::size_t checked = 0;
        for (const auto& file : fs::directory_iterator(folder)) {
            const std::string extension = file.path().extension().string();
            if (extension == ".stp") { Check(ReadFile(file.path()), file.path()); }
            if (extension == ".stpz") { Check(test::Unpacked(ReadFile(file.path())), file.path()); }
            if (extension == ".stp" || extension == ".stpz") { ++checked; }
            fs::remove(file);
        }
        EXPECT_EQ(checked, count);
    }

    static void Check(std::string text, const fs::path& name) {
        SCOPED_TRACE(name);
        Parse(std::move(text));
    }
};

TEST_F(MakeValid, EveryKindOfFaceWithEveryKindOfNormals) {
    for (const char* const kind : {"faces", "strips", "fans", "sets"}) {
        for (const char* const normals : {"none", "one", "all"}) {
            const Arguments common{"--triangles", "3000", "--solids",  "7",
                                   "--kind",      kind,   "--normals", normals};
            Arguments picked = common;
            picked.push_back("--pnindex");
            Arguments shared = common;
            shared.push_back("--shared-coordinates");
            Make("part", "plain.stp", common);
            Make("part", "picked.stp", picked);
            Make("part", "shared.stp", shared);
            ExpectAllValid(3);
        }
    }
}

TEST_F(MakeValid, StylesAndMaterials) {
    const Arguments common{"--triangles", "3000", "--solids", "5", "--transparent", "--colours", "9"};
    for (const char* const kind : {"faces", "strips", "fans"}) {
        Arguments made = common;
        made.insert(made.end(), {"--material", "--kind", kind});
        Make("part", std::string(kind) + ".stp", made);
    }
    Arguments sets = common;
    sets.insert(sets.end(), {"--kind", "sets"});
    Make("part", "sets.stp", sets);
    ExpectAllValid(4);
}

TEST_F(MakeValid, EveryShapeWithWhatItsFacesLinkTo) {
    for (const char* const shape : {"plate", "gear", "bolt", "flange", "shaft", "washer", "bracket"}) {
        Make("part", std::string(shape) + ".stp", {"--shape", shape, "--triangles", "2000"});
        Make("part", std::string(shape) + "-cut.stp",
             {"--shape", shape, "--triangles", "2000", "--faces", "90"});
        Make("part", std::string(shape) + "-joined.stp",
             {"--shape", shape, "--triangles", "2000", "--faces", "2"});
    }
    ExpectAllValid(21);
}

TEST_F(MakeValid, NamesWithEveryKindOfCharacter) {
    Make("part", "name.stp",
         {"--triangles", "200", "--name", "it's \\ (a), #1; \xC3\xA9\xE2\x82\xAC\xF0\x9F\x94\xA9\n\x7F\xFF"});
    ExpectAllValid(1);
}

TEST_F(MakeValid, TheMachineAsOnePart) {
    Make("part", "machine.stp", {"--machine", "60"});
    Make("part", "machine.stpz", {"--machine", "60", "--material", "--compress"});
    ExpectAllValid(2);
}

TEST_F(MakeValid, AssembliesAndTheirParts) {
    Make("assembly", "top.stp", {"--triangles-per-part", "60"});
    ExpectAllValid(20);
    Make("assembly", "deep.stp",
         {"--triangles-per-part", "60", "--depth", "3", "--uses", "9", "--parts", "40", "--kind", "strips"});
    ExpectAllValid(54);
    Make("assembly", "flat.stpz", {"--triangles-per-part", "60", "--depth", "0", "--compress"});
    ExpectAllValid(19);
}

TEST_F(MakeValid, FiniteElements) {
    for (const char* const quads : {"1", "97", "400"}) {
        Make("fem", std::string(quads) + ".stp", {"--quads", quads});
        Make("fem", std::string(quads) + ".stpz", {"--quads", quads, "--compress"});
    }
    ExpectAllValid(6);
}

TEST_F(MakeValid, PartsOfDocuments) {
    Make("stpx", "top.stpx", {"--triangles-per-part", "60"});
    ExpectAllValid(18);
    Make("stpx", "top.stpxz", {"--triangles-per-part", "60", "--compress", "--kind", "fans"});
    ExpectAllValid(18);
}

TEST_F(MakeValid, PartsOfAnArchive) {
    Make("stpa", "all.stpa", {"--triangles-per-part", "60", "--pnindex"});
    test::LogCapture log;
    ZipArchive archive(Path("all.stpa").c_str());
    ASSERT_TRUE(archive.IsOpen());
    std::size_t checked = 0;
    for (const std::string& name : test::MemberNames(Path("all.stpa"))) {
        if (!name.ends_with(".stp")) { continue; }
        TextMemory memory;
        std::size_t size = 0;
        const char* problem = nullptr;
        const char* const text = archive.ReadMember(name.c_str(), memory, &size, &problem);
        ASSERT_NE(text, nullptr) << name;
        Check(std::string(text, size), name);
        ++checked;
    }
    EXPECT_EQ(checked, 18u);
}

} // namespace
} // namespace tarnwick::make
