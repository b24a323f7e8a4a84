// What the web side is told of a pick.

#include "link/selection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;

Selection Picked(const char* path, const std::string& text) {
    return {.path = path, .selectedText = text};
}

TEST(Selection, APickedFaceIsNamedInTheBrowsersUrl) {
    EXPECT_THAT(BrowserArguments("/base/Velquist/viewer", Picked("/models/p.stp", "#1234")),
                ElementsAre("--user-data-dir=/base/Velquist/viewer", "--disable-web-security",
                            "file:///base/Velquist/viewer/Velquist.html?file=/base/Velquist/viewer/"
                            "dataset-AS1-PSTree.json&action=add_pmi&Id=1234&Type=face&Url=p.stp"));
}

TEST(Selection, AProductNameLosesItsFirstCharacter) {
    EXPECT_THAT(BrowserArguments("/v", Picked("/m/p.stp", "PUMP")).back(),
                ::testing::HasSubstr("&Id=UMP&Type"));
}

TEST(Selection, WithoutAPickTheIdIsEmpty) {
    EXPECT_THAT(BrowserArguments("/v", Picked(nullptr, "")).back(),
                ::testing::EndsWith("&Id=&Type=face&Url="));
}

TEST(Selection, AProductNameOfShellCharactersStaysInOneArgument) {
    const auto arguments = BrowserArguments("/v", Picked("/m/a b.stp", "P`touch /tmp/owned`\"$(id)%n"));
    ASSERT_EQ(arguments.size(), 3u);
    EXPECT_THAT(arguments[2], ::testing::EndsWith("&Id=`touch /tmp/owned`\"$(id)%n&Type=face&Url=a b.stp"));
}

TEST(Selection, ALongNameIsHandledLikeAShortOne) {
    const std::string name(5000, 'n');
    EXPECT_THAT(BrowserArguments("/v", Picked("/m/p.stp", name)).back(),
                ::testing::HasSubstr("&Id=" + name.substr(1) + "&"));
}

TEST(Selection, TheFileNameFollowsTheLastSeparatorThatIsNotTheFirstCharacter) {
    EXPECT_EQ(FileNameOf(Picked("/models/sub/p.stp", "")), "p.stp");
    EXPECT_EQ(FileNameOf(Picked("models/p.stp", "")), "p.stp");
    EXPECT_EQ(FileNameOf(Picked("p.stp", "")), "p.stp");
    EXPECT_EQ(FileNameOf(Picked("/p.stp", "")), "/p.stp");
    EXPECT_EQ(FileNameOf(Picked("/models/", "")), "");
    EXPECT_EQ(FileNameOf(Picked(nullptr, "")), "");
}

} // namespace
} // namespace tarnwick::test
