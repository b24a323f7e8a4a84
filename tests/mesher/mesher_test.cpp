// The client of tarnwick-mesh with programs that behave badly.

#include "mesher/mesher.h"

#include "exchange/exchange_file.h"
#include "exchange/padded.h"
#include "mesher/solid_text.h"
#include "support/holdings.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <thread>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// A time limit in seconds that nothing here waits for: a test that did would never end.
constexpr double kEndless = 100000;

// One cube in a file.
class OneCube {
public:
    OneCube() : cube_(solids_.AddCube(1)), text_(ExchangeText(ContextText() + solids_.Text())) {}

    MeshResult Mesh(Mesher* mesher) const {
        const std::vector<std::uint64_t> bodies{cube_};
        return mesher->Mesh(file_, bodies, kContext);
    }
    std::uint64_t Cube() const { return cube_; }

private:
    SolidText solids_{100};
    const std::uint64_t cube_;
    const Padded text_;
    const ExchangeFile file_{text_.Text()};
};

class BadProgram : public testing::Test {
protected:
    // A program of the shell; what it starts must replace it, so that it ends with it.
    MesherOptions Script(const std::string& lines, double timeLimit) const {
        MesherOptions options;
        options.program = folder_.Write("program", "#!/bin/sh\n" + lines + "\n");
        chmod(options.program.c_str(), 0700);
        options.timeLimit = timeLimit;
        return options;
    }

    // Everything is named as lost, and nothing of the process is left.
    MeshResult MeshInVain(const MesherOptions& options, const std::atomic<bool>* cancel = nullptr) {
        MeshResult result;
        const long files = HoldingsNow().files;
        {
            Mesher mesher(options, cancel);
            result = cube_.Mesh(&mesher);
        }
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(HoldingsNow().files, files);
        EXPECT_THAT(result.bodies, SizeIs(1));
        EXPECT_EQ(result.bodies[0].entity, cube_.Cube());
        EXPECT_THAT(result.bodies[0].faces, IsEmpty());
        EXPECT_THAT(result.bodies[0].lostFaces, SizeIs(6));
        EXPECT_THAT(result.losses, SizeIs(1));
        return result;
    }

    std::string MessageFile(const std::string& name, const std::string& bytes) const {
        return "cat '" + folder_.Write(name, bytes) + "'";
    }

    const TempFolder folder_;
    const OneCube cube_;
};

TEST_F(BadProgram, IsEndedAtTheLimitWhenItHangs) {
    const MeshResult result = MeshInVain(Script("exec sleep 1000", 0.3));
    EXPECT_THAT(result.losses[0], HasSubstr("time limit"));
    EXPECT_FALSE(result.isCancelled);
}

TEST_F(BadProgram, IsEndedAtTheLimitWhenItHangsInABody) {
    const std::string begun = EncodeMesh(MeshProgress{MeshStage::kReading, 0}) +
                              EncodeMesh(MeshProgress{MeshStage::kTransfer, cube_.Cube()});
    const MeshResult result = MeshInVain(Script(MessageFile("begun", begun) + "\nexec sleep 1000", 0.3));
    EXPECT_THAT(result.losses[0], HasSubstr("time limit"));
}

TEST_F(BadProgram, IsEndedAtTheLimitWhenItHangsWhileItMeshes) {
    const std::string begun =
        EncodeMesh(MeshProgress{MeshStage::kReading, 0}) + EncodeMesh(MeshProgress{MeshStage::kMeshing, 0});
    const MeshResult result = MeshInVain(Script(MessageFile("begun", begun) + "\nexec sleep 1000", 0.5));
    EXPECT_THAT(result.losses[0], HasSubstr("time limit"));
}

TEST_F(BadProgram, IsEndedAtTheLimitWhenItTalksWithoutEnd) {
    const std::string progress = EncodeMesh(MeshProgress{MeshStage::kReading, 0});
    MeshInVain(Script("while true; do " + MessageFile("progress", progress) + "; done", 0.3));
}

TEST_F(BadProgram, IsToldWhenItCrashes) {
    const MeshResult result = MeshInVain(Script("kill -SEGV $$", kEndless));
    EXPECT_THAT(result.losses[0], HasSubstr("crashed (signal 11)"));
}

TEST_F(BadProgram, IsToldWhenItEnds) {
    EXPECT_THAT(MeshInVain(Script("exit 7", kEndless)).losses[0], HasSubstr("ended (status 7)"));
    EXPECT_THAT(MeshInVain(Script("exit 3", kEndless)).losses[0], HasSubstr("out of memory"));
}

TEST_F(BadProgram, IsToldWhenItWritesRubbish) {
    const MeshResult result = MeshInVain(Script("head -c 100000 /dev/zero; exec sleep 1000", kEndless));
    EXPECT_THAT(result.losses[0], HasSubstr("damaged"));
}

TEST_F(BadProgram, IsToldWhenItsAnswerIsDamaged) {
    std::string answer = EncodeMesh(MeshAnswer{1, {{cube_.Cube(), {MeshFace{}}, {}}}, {}});
    answer[kMeshHeadSize + 8] = '\x7F';
    EXPECT_THAT(MeshInVain(Script(MessageFile("answer", answer) + "\nexec sleep 1000", kEndless)).losses[0],
                HasSubstr("damaged"));
}

// Its answer claims more than any memory, and never comes.
TEST_F(BadProgram, CannotMakeTheClientTakeMemory) {
    std::string head = EncodeMesh(MeshAnswer{}).substr(0, kMeshHeadSize);
    for (std::size_t i = 8; i < 15; ++i) { head[i] = '\xFF'; }
    const long before = HoldingsNow().pages;
    MeshInVain(Script(MessageFile("head", head) + "\nexec sleep 1000", 0.3));
    EXPECT_LT(HoldingsNow().pages, before + 10000);
}

TEST_F(BadProgram, IsEndedWhenItsAnswerIsLargerThanItsMemory) {
    std::string head = EncodeMesh(MeshAnswer{}).substr(0, kMeshHeadSize);
    head[12] = '\x01'; // 4 GiB
    MesherOptions options = Script(MessageFile("head", head) + "\nexec sleep 1000", kEndless);
    options.memoryLimit = std::size_t{1} << 30;
    EXPECT_THAT(MeshInVain(options).losses[0], HasSubstr("damaged"));
}

TEST_F(BadProgram, IsNamedWhenItIsAbsent) {
    MesherOptions options;
    options.program = folder_.Path("absent");
    EXPECT_THAT(MeshInVain(options).losses[0], HasSubstr("absent can't be started: No such file"));
}

TEST_F(BadProgram, IsLeftSoonAfterACancel) {
    std::atomic<bool> cancel = false;
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        cancel = true;
    });
    const MesherOptions options = Script("exec sleep 1000", kEndless);
    Mesher mesher(options, &cancel);
    const MeshResult result = cube_.Mesh(&mesher);
    other.join();
    EXPECT_TRUE(result.isCancelled);
    ASSERT_THAT(result.losses, SizeIs(1));
    EXPECT_THAT(result.losses[0], HasSubstr("cancelled"));
}

// A crash in one body costs that body alone.
TEST_F(BadProgram, DoesNotLoseTheOtherBodies) {
    SolidText solids(100);
    const std::uint64_t bad = solids.AddCube(1);
    const std::uint64_t good = solids.AddCube(2);
    const std::vector<std::uint64_t> goodFaces = solids.Faces();
    const Padded text(ExchangeText(ContextText() + solids.Text()));
    const ExchangeFile file(text.Text());
    MeshAnswer answer{1, {{good, {}, {}}}, {}};
    for (const std::uint64_t face : goodFaces) {
        answer.bodies[0].faces.push_back({face, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}, {{0, 1, 2}}});
    }
    const std::string begun = EncodeMesh(MeshProgress{MeshStage::kReading, 0}) +
                              EncodeMesh(MeshProgress{MeshStage::kTransfer, bad});
    const std::string begin = MessageFile("begun", begun);
    const std::string then = MessageFile("answer", EncodeMesh(answer));
    const std::string mark = folder_.Path("mark");
    const MesherOptions options = Script("if [ -e '" + mark + "' ]; then " + then + "; exit 0; fi\ntouch '" +
                                             mark + "'\n" + begin + "\nkill -SEGV $$",
                                         kEndless);
    Mesher mesher(options);
    const std::vector<std::uint64_t> bodies{bad, good};
    const MeshResult result = mesher.Mesh(file, bodies, kContext);
    ASSERT_THAT(result.bodies, SizeIs(2));
    EXPECT_THAT(result.bodies[0].lostFaces, SizeIs(6));
    EXPECT_THAT(result.bodies[1].faces, SizeIs(6));
    EXPECT_THAT(result.bodies[1].lostFaces, IsEmpty());
    EXPECT_THAT(result.losses, ElementsAre("MANIFOLD_SOLID_BREP #" + std::to_string(bad) +
                                           " has no triangles: the geometry kernel crashed (signal 11)"));
}

// A program of the shell that does something else each time it is started, and in the end nothing.
class ScriptedProgram : public testing::Test {
protected:
    // A body with one triangle for each of these faces.
    static MeshBody BodyOf(std::uint64_t entity, const std::vector<std::uint64_t>& faces) {
        MeshBody body;
        body.entity = entity;
        for (const std::uint64_t face : faces) {
            body.faces.push_back({face, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}, {{0, 1, 2}}});
        }
        return body;
    }
    static std::string Reading() { return EncodeMesh(MeshProgress{MeshStage::kReading, 0}); }

    // It says these bytes, then ends.
    MesherOptions Saying(const std::vector<std::string>& sayings) const {
        std::string lines = "#!/bin/sh\necho >> '" + folder_.Path("starts") + "'\ncase $(wc -l < '" +
                            folder_.Path("starts") + "') in\n";
        for (std::size_t i = 0; i < sayings.size(); ++i) {
            const std::string start = std::to_string(i + 1);
            lines += start + ") cat '" + folder_.Write("saying" + start, sayings[i]) + "';;\n";
        }
        MesherOptions options;
        options.program = folder_.Write("program", lines + "esac\n");
        chmod(options.program.c_str(), 0700);
        return options;
    }

    const TempFolder folder_;
};

TEST_F(ScriptedProgram, HasTheFacesOfOneAttemptAddedToThoseOfAnother) {
    SolidText solids(100);
    const std::uint64_t cube = solids.AddCube(1);
    const std::vector<std::uint64_t> faces = solids.Faces();
    const Padded text(ExchangeText(ContextText() + solids.Text()));
    const ExchangeFile file(text.Text());
    MeshBody first = BodyOf(cube, {faces[0], faces[1], faces[2], faces[4]});
    first.lostFaces = {faces[3], faces[5]};
    const MeshBody second = BodyOf(cube, faces);
    Mesher mesher(Saying({Reading() + EncodeMesh(MeshAnswer{1, {first}, {}}),
                          Reading() + EncodeMesh(MeshAnswer{1, {second}, {}})}));
    const std::vector<std::uint64_t> bodies{cube};
    const MeshResult result = mesher.Mesh(file, bodies, kContext);
    EXPECT_THAT(result.losses, IsEmpty());
    ASSERT_THAT(result.bodies, SizeIs(1));
    std::vector<std::uint64_t> entities;
    for (const MeshFace& face : result.bodies[0].faces) { entities.push_back(face.entity); }
    EXPECT_THAT(entities, ElementsAre(faces[0], faces[1], faces[2], faces[4], faces[3], faces[5]));
}

TEST_F(ScriptedProgram, KeepsWhatCameBeforeItsEnd) {
    SolidText solids(100);
    const std::uint64_t good = solids.AddCube(1);
    const std::vector<std::uint64_t> goodFaces = solids.Faces();
    const std::uint64_t bad = solids.AddCube(2);
    const Padded text(ExchangeText(ContextText() + solids.Text()));
    const ExchangeFile file(text.Text());
    const std::string together = Reading() + EncodeMesh(MeshProgress{MeshStage::kMeshing, 0});
    const std::string each = Reading() +
                             EncodeMesh(MeshAnswer{1, {BodyOf(good, goodFaces)}, {}}, MeshMessage::kPart) +
                             EncodeMesh(MeshProgress{MeshStage::kMeshing, bad});
    Mesher mesher(Saying({together, together, each}));
    const std::vector<std::uint64_t> bodies{good, bad};
    const MeshResult result = mesher.Mesh(file, bodies, kContext);
    ASSERT_THAT(result.bodies, SizeIs(2));
    EXPECT_THAT(result.bodies[0].faces, SizeIs(6));
    EXPECT_THAT(result.bodies[1].faces, IsEmpty());
    EXPECT_THAT(result.bodies[1].lostFaces, SizeIs(6));
    EXPECT_THAT(result.losses, SizeIs(1));
}

TEST(Mesher, NamesWhatIsNoBody) {
    const Padded text(ExchangeText("#1=GEOMETRIC_CURVE_SET('',(#2));\n#2=CIRCLE('',$,1.);\n"));
    const ExchangeFile file(text.Text());
    MesherOptions options;
    options.program = "/nowhere";
    Mesher mesher(options);
    const std::vector<std::uint64_t> bodies{1, 9};
    const MeshResult result = mesher.Mesh(file, bodies, 0);
    EXPECT_THAT(result.bodies, SizeIs(2));
    EXPECT_THAT(result.losses, ElementsAre("GEOMETRIC_CURVE_SET #1 has no triangles: it has no faces",
                                           "#9 has no triangles: it isn't in the file"));
}

TEST(FindMeshProgram, LooksWherePathSays) {
    const TempFolder folder;
    const std::string program = folder.Write("tarnwick-mesh", "");
    const char* const path = std::getenv("PATH");
    const std::string before = path != nullptr ? path : "";
    setenv("PATH", ("/nowhere::" + folder.Path("")).c_str(), 1);
    // The build may have put the program beside this test.
    const std::string own = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "tarnwick-mesh";
    const std::string found = FindMeshProgram();
    chmod(program.c_str(), 0700);
    const std::string foundThen = FindMeshProgram();
    setenv("PATH", before.c_str(), 1);
    if (std::filesystem::exists(own)) {
        EXPECT_EQ(found, own);
    } else {
        EXPECT_EQ(found, "");
        EXPECT_EQ(foundThen, program);
    }
}

} // namespace
} // namespace tarnwick::test
