// The whole load of an assembly, and of a finite element model, on every prefix of a good file and with each
// of its bytes replaced: no fault and no endless loop, and what is shown is sound.

#include "formats/load_commands.h"
#include "support/assembly_text.h"
#include "support/loaded_view.h"
#include "support/sound_scene.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tarnwick::test {
namespace {

class DamagedFile : public testing::TestWithParam<int> {
protected:
    void SetUp() override { log_ = std::make_unique<LogCapture>(); }
    void TearDown() override {
        log_.reset();
        EXPECT_EQ(unsound_, "");
    }
    // Puts the bytes in the place of one of the files, and loads the top file.
    void Load(const std::string& bytes, const char* name) {
        folder_.Write(name, bytes);
        LoadStepFile(view_, folder_.Path("top.stp").c_str(), 0);
        if (unsound_.empty()) { unsound_ = UnsoundIn(view_); }
        if (++loads_ % 256 == 0) {
            log_->TakeOutput();
            log_->TakeConsole();
        }
    }
    void LoadCut(const std::string& text, const char* name) {
        for (std::size_t length = 0; length <= text.size(); ++length) { Load(text.substr(0, length), name); }
    }
    void LoadDamaged(const std::string& text, const char* name) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            std::string damaged = text;
            damaged[i] = static_cast<char>(GetParam());
            Load(damaged, name);
        }
    }

    TempFolder folder_;
    CountingView view_;
    std::unique_ptr<LogCapture> log_;
    std::string unsound_;
    int loads_ = 0;
};

class DamagedAssembly : public DamagedFile {
protected:
    void SetUp() override {
        AssemblyText top;
        const int root = top.Product("root");
        const int sub = top.Product("sub");
        top.Use(root, sub, At(1, 2, 3));
        top.File(sub, "sub.stp");
        top_ = top.Text();
        AssemblyText lower;
        const int lowerRoot = lower.Product("sub");
        const int part = lower.Product("part");
        lower.Use(lowerRoot, part);
        lower.File(part, "part.stp");
        sub_ = lower.Text();
        folder_.Write("part.stp", PlateText(2));
        folder_.Write("top.stp", top_);
        DamagedFile::SetUp();
    }
    std::string top_;
    std::string sub_;
};

TEST_P(DamagedAssembly, StandsAtEveryPlaceOfTheTopFile) {
    folder_.Write("sub.stp", sub_);
    LoadDamaged(top_, "top.stp");
}

TEST_P(DamagedAssembly, StandsAtEveryPlaceOfASubAssembly) {
    LoadDamaged(sub_, "sub.stp");
}

class DamagedMesh : public DamagedFile {
protected:
    // One quad with two sections, and one whose nodes are partly those of the first.
    static std::string Mesh() {
        Lines lines{"#1=PRODUCT('model','','',(#90));"};
        for (int i = 0; i < 6; ++i) {
            const std::string point = std::to_string(10 + i);
            lines.push_back("#" + point + "=CARTESIAN_POINT('',(" + std::to_string(i) + ".,1.5,-2.E-1));");
            lines.push_back("#" + std::to_string(20 + i) + "=NODE('n',(#" + point + "),#90,#91);");
        }
        lines.insert(
            lines.end(),
            {"#30=UNIFORM_SURFACE_SECTION($,(0.,0.),'',7.5,0.,0.);",
             "#31=UNIFORM_SURFACE_SECTION($,(0.,0.),'',8.5,0.,0.);",
             "#32=SURFACE_SECTION_FIELD_VARYING((#30,#31,#30,#31),.F.);",
             "#33=SURFACE_ELEMENT_PROPERTY('1',#32);",
             "#34=SURFACE_3D_ELEMENT_REPRESENTATION('e',(#92),#90,(#20,#21,#22,#23),#91,#93,#33,#94);",
             "#35=SURFACE_3D_ELEMENT_REPRESENTATION('e',(#92),#90,(#22,#23,#24,#25),#91,#93,#33,#94);"});
        return P21Text(lines, "AP209_MULTIDISCIPLINARY_ANALYSIS_AND_DESIGN_MIM_LF");
    }
};

TEST_P(DamagedMesh, StandsAtEveryPlace) {
    LoadDamaged(Mesh(), "top.stp");
}

const auto kBytes = testing::Values(0, 255, '\'', ',', '(', ')', '#', '\n');
std::string ByteName(const testing::TestParamInfo<int>& byte) {
    return "Code" + std::to_string(byte.param);
}
INSTANTIATE_TEST_SUITE_P(Bytes, DamagedAssembly, kBytes, ByteName);
INSTANTIATE_TEST_SUITE_P(Bytes, DamagedMesh, kBytes, ByteName);

class CutAssembly : public DamagedAssembly {};
TEST_P(CutAssembly, IsLoadedAtEveryLengthOfItsFiles) {
    LoadCut(sub_, "sub.stp");
    EXPECT_EQ(view_.loaded.drawnTriangles, 2);
    LoadCut(top_, "top.stp");
    EXPECT_EQ(view_.loaded.drawnTriangles, 2);
}
INSTANTIATE_TEST_SUITE_P(All, CutAssembly, testing::Values(0), ByteName);

class CutMesh : public DamagedMesh {};
TEST_P(CutMesh, IsLoadedAtEveryLength) {
    LoadCut(Mesh(), "top.stp");
    ASSERT_NE(view_.loaded.resultMesh, nullptr);
    EXPECT_EQ(view_.loaded.resultMesh->quadCount, 2);
}
INSTANTIATE_TEST_SUITE_P(All, CutMesh, testing::Values(0), ByteName);

} // namespace
} // namespace tarnwick::test
