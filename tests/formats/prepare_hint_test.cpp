#include "formats/prepare_hint.h"

#include "load/unread_files.h"
#include "platform/within_memory.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace tarnwick::test {
namespace {

// What is said of a file of which nothing is shown.
std::string HintFor(const std::string& path) {
    return PrepareHint(SceneView(), true, path);
}

std::string Command(const std::string& words) {
    return "this brings it into a form that can be shown: tarnwick-prepare " + words;
}

TEST(PrepareHint, TakesAZipArchiveOfNoKnownKindForOneWithStepFiles) {
    const TempFolder folder;
    const std::string path = folder.Write("a.zip", "PK\x03\x04 and so on");
    EXPECT_EQ(HintFor(path), Command(path));
}

TEST(PrepareHint, SaysNothingOfAnArchiveNorOfASummary) {
    const TempFolder folder;
    for (const char* const name : {"a.stpa", "a.stpj", "A.STPA"}) {
        EXPECT_EQ(HintFor(folder.Write(name, SmallPartText())), "") << name;
    }
}

TEST(PrepareHint, TellsXmlOfProductsFromOther) {
    const TempFolder folder;
    for (const char* const text : {"<page/>", "10303", "Uos"}) {
        EXPECT_EQ(HintFor(folder.Write("a.xml", text)), "") << text;
    }
    for (const char* const text : {"<a x='10303'/>", "<n0:Uos/>"}) {
        const std::string path = folder.Write("a.xml", text);
        EXPECT_EQ(HintFor(path), Command(path)) << text;
    }
}

TEST(PrepareHint, SaysNothingWhereMemoryIsMissing) {
    const TempFolder folder;
    const std::string path = folder.Write("a.stp", SmallPartText());
    SceneView view;
    view.loaded.unreadFiles.push_back({1, "b.stp", "b", "can't be opened"});
    EXPECT_EQ(PrepareHint(view, true, path), Command(path));
    view.loaded.unreadFiles.push_back({2, "c.stp", "c", kNeedsMemory});
    EXPECT_EQ(PrepareHint(view, true, path), "");
    EXPECT_EQ(PrepareHint(view, false, path), Command(path)) << "of the file before";
}

// The folder that names without one are in, while this lives.
class InFolder {
public:
    explicit InFolder(const TempFolder& folder) { std::filesystem::current_path(folder.Path("")); }
    InFolder(const InFolder&) = delete;
    InFolder& operator=(const InFolder&) = delete;
    ~InFolder() { std::filesystem::current_path(former_); }

private:
    std::filesystem::path former_ = std::filesystem::current_path();
};

TEST(PrepareHint, QuotesWhatACommandWouldTakeForSomethingElse) {
    const TempFolder folder;
    const InFolder inFolder(folder);
    const auto words = [&folder](const std::string& name) {
        folder.Write(name, SmallPartText());
        return HintFor(name);
    };
    for (const char* const name : {"a", "z", "A", "Z", "0", "9", "aZ09_-.+,:@%="}) {
        EXPECT_EQ(words(name), Command(name)) << "as it is";
    }
    // The neighbours of letters and digits in the order of characters, and others.
    for (const char* const name : {"`", "{", "[", ";", "!", "a b", "$HOME", "\xE9"}) {
        EXPECT_EQ(words(name), Command("'" + std::string(name) + "'"));
    }
    EXPECT_EQ(words("it's"), Command("'it'\\''s'"));
    EXPECT_EQ(words("-o"), Command("-- -o"));
    EXPECT_EQ(words("-o x"), Command("-- '-o x'"));
}

} // namespace
} // namespace tarnwick::test
