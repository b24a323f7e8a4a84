// The whole load of a part on every prefix of a good file, and with each of its bytes replaced: no fault and
// no endless loop, and what is shown is sound.

#include "formats/load_commands.h"
#include "platform/fail_fast.h"
#include "support/loaded_view.h"
#include "support/p21_text.h"
#include "support/packed.h"
#include "support/sound_scene.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <set>
#include <string>

namespace tarnwick::test {
namespace {

class DamagedPart : public testing::Test {
protected:
    void SetUp() override { log_ = std::make_unique<LogCapture>(); }
    void TearDown() override {
        log_.reset();
        for (const std::string& reason : unsound_) { ADD_FAILURE() << reason; }
    }
    void Load(const std::string& bytes, const char* name, const std::string& what) {
        LoadStepFile(view_, folder_.Write(name, bytes).c_str(), 1);
        if (const std::string reason = UnsoundIn(view_); !reason.empty()) { Unsound(what + ": " + reason); }
        if (++loads_ % 256 == 0) {
            log_->TakeOutput();
            log_->TakeConsole();
        }
    }
    // The same in a process of its own, which may end by a bounds check: a chain that leads to a line without
    // quotes takes what stands between later ones for a name.
    void LoadInChild(const std::string& bytes) {
        const std::string path = folder_.Write("x.stp", bytes);
        const pid_t child = fork();
        if (child == 0) {
            LoadStepFile(view_, path.c_str(), 1);
            _exit(0);
        }
        int state = 0;
        waitpid(child, &state, 0);
        if (!WIFEXITED(state) || (WEXITSTATUS(state) != 0 && WEXITSTATUS(state) != kFailFastStatus)) {
            Unsound("a child ended with " + std::to_string(state));
        }
    }
    void Unsound(const std::string& reason) {
        if (unsound_.size() < 10) { unsound_.push_back(reason); }
    }

    TempFolder folder_;
    CountingView view_;
    std::unique_ptr<LogCapture> log_;
    std::vector<std::string> unsound_;
    int loads_ = 0;
};

TEST_F(DamagedPart, IsLoadedAtEveryLength) {
    const std::string text = SmallPartText();
    for (std::size_t length = 0; length <= text.size(); ++length) {
        Load(text.substr(0, length), "x.stp", "length " + std::to_string(length));
    }
    EXPECT_EQ(view_.loaded.drawnTriangles, 8);
}

TEST_F(DamagedPart, IsLoadedAtEveryLengthOfItsCompressedForm) {
    for (const std::string& packed : {ZlibPacked(SmallPartText()), GzipPacked(SmallPartText())}) {
        for (std::size_t length = 0; length <= packed.size(); ++length) {
            Load(packed.substr(0, length), "x.stpz", "length " + std::to_string(length));
        }
        EXPECT_EQ(view_.loaded.drawnTriangles, 8);
    }
}

class DamagedPartByte : public DamagedPart, public testing::WithParamInterface<int> {};

TEST_P(DamagedPartByte, StandsAtEveryPlace) {
    const std::string text = SmallPartText();
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string damaged = text;
        damaged[i] = static_cast<char>(GetParam());
        Load(damaged, "x.stp", "byte " + std::to_string(i));
    }
}

TEST_P(DamagedPartByte, IsPutInAtEveryPlace) {
    const std::string text = SmallPartText();
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string damaged = text;
        damaged.insert(i, 1, static_cast<char>(GetParam()));
        Load(damaged, "x.stp", "byte " + std::to_string(i));
    }
}

INSTANTIATE_TEST_SUITE_P(Bytes, DamagedPartByte,
                         testing::Values(0, 255, '\'', ',', '(', ')', '#', '\n', '$', ' '),
                         [](const auto& byte) { return "Code" + std::to_string(byte.param); });

TEST_F(DamagedPart, IsLoadedWithEachLineTakenOut) {
    const std::string text = SmallPartText();
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t to = text.find('\n', from) + 1;
        std::string damaged = text;
        damaged.erase(from, to - from);
        Load(damaged, "x.stp", "line at " + std::to_string(from));
        from = to;
    }
}

TEST_F(DamagedPart, IsLoadedWithEachReferenceTurnedElsewhere) {
    // Every reference to every entity in turn, wrong kinds and circles included.
    const std::string text = SmallPartText();
    std::set<std::string> numbers;
    for (std::size_t at = 0; (at = text.find("\n#", at)) != std::string::npos; ++at) {
        numbers.insert(text.substr(at + 2, 2));
    }
    numbers.insert("99");
    for (std::size_t at = text.find("DATA;"); (at = text.find('#', at)) != std::string::npos; ++at) {
        if (text[at - 1] == '\n') { continue; }
        std::size_t digits = at + 1;
        while (text[digits] >= '0' && text[digits] <= '9') { ++digits; }
        for (const std::string& number : numbers) {
            std::string damaged = text;
            damaged.replace(at + 1, digits - at - 1, number);
            if (at > text.find("#70=")) {
                LoadInChild(damaged);
                continue;
            }
            Load(damaged, "x.stp", "reference at " + std::to_string(at) + " to " + number);
        }
    }
}

} // namespace
} // namespace tarnwick::test
