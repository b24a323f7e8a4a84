// Every prefix of a good file, and the file with each of its bytes replaced: no fault, no endless loop, and
// no record that points out of the text.

#include "p21/model_file.h"
#include "support/capture.h"
#include "support/p21_text.h"
#include "support/packed.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

const char* const kInside = "";

// Null-terminated reason why the model isn't sound, or the empty text.
std::string Unsound(const StepModel& model, int result) {
    if (result != StepModel::kRead && result != StepModel::kNotP21) {
        return "result " + std::to_string(result);
    }
    if ((model.entityMap != nullptr) != (result == StepModel::kRead)) {
        return "a table without success, or success without a table";
    }
    if (result != StepModel::kRead) { return kInside; }
    if (model.entityMap->Count() != model.entityCount) { return "a record that is not in the table"; }
    for (std::int32_t i = 0; i < model.entityCount; ++i) {
        const P42Ent* const record = model.EntityAt(i);
        if (record->id < 1 || record->offset < 0 || record->offset >= model.textEnd - model.text ||
            model.text[record->offset] != '#') {
            return "record " + std::to_string(i);
        }
    }
    return kInside;
}

class DamagedText : public testing::Test {
protected:
    void Read(const std::string& bytes, const char* name) {
        const std::string path = folder_.Write(name, bytes);
        StepModel model(workspace_, path);
        const int result = model.Read();
        const std::string reason = Unsound(model, result);
        if (!reason.empty() && reasons_.size() < 10) { reasons_.push_back(reason); }
        ++files_;
        if (files_ % 256 == 0) {
            log_->TakeOutput();
            log_->TakeConsole();
        }
    }
    void SetUp() override { log_ = std::make_unique<LogCapture>(); }
    void TearDown() override {
        log_.reset();
        for (const std::string& reason : reasons_) { ADD_FAILURE() << reason; }
    }

    TempFolder folder_;
    ReaderWorkspace workspace_;
    std::unique_ptr<LogCapture> log_;
    std::vector<std::string> reasons_;
    int files_ = 0;
};

TEST_F(DamagedText, IsReadAtEveryLength) {
    const std::string text = SmallPartText();
    for (std::size_t length = 0; length <= text.size(); ++length) { Read(text.substr(0, length), "x.stp"); }
}

TEST_F(DamagedText, IsReadAtEveryLengthOfItsCompressedForm) {
    for (const std::string& packed : {ZlibPacked(SmallPartText()), GzipPacked(SmallPartText())}) {
        for (std::size_t length = 0; length <= packed.size(); ++length) {
            Read(packed.substr(0, length), "x.stpz");
        }
    }
}

TEST_F(DamagedText, IsReadWithEveryByteReplaced) {
    const std::string text = SmallPartText();
    for (const char replacement : {'\0', '\xFF', '\'', ',', '(', ')', '#', '\n', '=', ';', ' '}) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            std::string damaged = text;
            damaged[i] = replacement;
            Read(damaged, "x.stp");
        }
    }
}

TEST_F(DamagedText, IsReadWithEveryByteOfItsCompressedFormReplaced) {
    const std::string packed = ZlibPacked(SmallPartText());
    for (const char replacement : {'\0', '\xFF', 'A'}) {
        for (std::size_t i = 0; i < packed.size(); ++i) {
            std::string damaged = packed;
            damaged[i] = replacement;
            Read(damaged, "x.stpz");
        }
    }
}

} // namespace
} // namespace tarnwick::test
