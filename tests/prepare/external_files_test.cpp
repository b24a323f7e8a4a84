#include "prepare/exchange_text.h"
#include "prepare/prepared_scene.h"
#include "prepare/whole.h"
#include "write/zip_writer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
#include <utility>
#include <vector>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string PartText() {
    ExchangeText text;
    const std::string context = text.InchContext();
    text.Shape(text.Product("wheel"), text.Triangle(), context);
    return text.Text();
}

// An assembly of a wheel that `reference` describes; it is called with the definition.
template <class Reference>
std::string AssemblyText(Reference reference) {
    ExchangeText text;
    const std::string context = text.Context();
    const std::string parent = text.Product("cart");
    const std::string child = text.Product("wheel");
    const std::string origin = text.Axes("(0.,0.,0.)");
    const std::string target = text.Axes("(100.,0.,0.)");
    const std::string childShape = text.Shape(child, origin, context);
    const std::string shape = text.Shape(parent, target, context);
    text.Use(parent, child, shape, childShape, origin, target);
    reference(&text, child);
    return text.Text();
}

std::string ByDocument(const std::string& name) {
    return AssemblyText([&](ExchangeText* text, const std::string& child) {
        const std::string document = text->Add("DOCUMENT_FILE('" + name + "','','',$,'',$)");
        text->Add("APPLIED_DOCUMENT_REFERENCE(" + document + ",'',(" + child + "))");
    });
}

constexpr const char* kPlaced = "100 0 0, 125.4 0 0, 100 25.4 0";

TEST(ExternalFiles, ThatMemoryCannotHoldAreToldFromThoseThatAreNotThere) {
    const TempFolder folder;
    const std::string cart = folder.Write("cart.stp", ByDocument("wheel.stp"));
    const auto lacksMemory = [&] { return prepare::LoadWhole(cart, nullptr).lacksMemory; };
    EXPECT_FALSE(lacksMemory());
    const std::string wheel = folder.Write("wheel.stp", PartText());
    EXPECT_FALSE(lacksMemory());
    std::filesystem::resize_file(wheel, std::uintmax_t{1} << 43); // a hole: it takes no room
    EXPECT_TRUE(lacksMemory());
}

TEST(ExternalFiles, AreFoundByEachOfTheNamesThatFilesUse) {
    const TempFolder folder;
    folder.Write("wheel.stp", PartText());
    EXPECT_THAT(PrepareText(folder, ByDocument("wheel.stp")).Corners(), ElementsAre(kPlaced));
    EXPECT_THAT(PrepareText(folder, ByDocument("C:\\\\data\\\\wheel.stp")).Corners(), ElementsAre(kPlaced));
    const std::string bySource = AssemblyText([](ExchangeText* text, const std::string& child) {
        const std::string document = text->Add("DOCUMENT_FILE('#66',' ',' ',$,' ',' ')");
        const std::string source = text->Add("EXTERNAL_SOURCE('wheel.stp')");
        text->Add("APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT('#71',$," + source + ",(" + document + "))");
        text->Add("APPLIED_DOCUMENT_REFERENCE(" + document + ",' ',(" + child + "))");
    });
    EXPECT_THAT(PrepareText(folder, bySource).Corners(), ElementsAre(kPlaced));
    const std::string byIdentifier = AssemblyText([](ExchangeText* text, const std::string& child) {
        const std::string document = text->Add("DOCUMENT_FILE('7','','',$,'',$)");
        const std::string source = text->Add("EXTERNAL_SOURCE(IDENTIFIER('parts'))");
        text->Add("APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT('wheel.stp',$," + source + ",(" + document +
                  "))");
        text->Add("APPLIED_DOCUMENT_REFERENCE(" + document + ",'',(" + child + "))");
    });
    EXPECT_THAT(PrepareText(folder, byIdentifier).Corners(), ElementsAre(kPlaced));
}

TEST(ExternalFiles, OfADefinitionWithAssociatedDocumentsAreFollowed) {
    const TempFolder folder;
    folder.Write("wheel.stp", PartText());
    ExchangeText text;
    const std::string context = text.Context();
    const std::string document = text.Add("DOCUMENT_FILE('wheel.stp','','',$,'',$)");
    const std::string product = text.Add("PRODUCT('wheel','','',())");
    const std::string formation = text.Add("PRODUCT_DEFINITION_FORMATION('',''," + product + ")");
    text.Add("PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS('',''," + formation + ",$,(" + document + "))");
    // A top without any representation is taken to be in millimetres.
    EXPECT_THAT(PrepareText(folder, text.Text()).Corners(), ElementsAre("0 0 0, 25.4 0 0, 0 25.4 0"));
}

// The text in UTF-16 with its mark, the lower byte of a character first or last.
std::string InUtf16(std::string_view ascii, bool lowFirst) {
    std::string text = lowFirst ? "\xFF\xFE" : "\xFE\xFF";
    for (const char c : ascii) {
        text += lowFirst ? c : '\0';
        text += lowFirst ? '\0' : c;
    }
    return text;
}

TEST(ExternalFiles, OfAnXmlDocumentInAnyEncodingAreFollowed) {
    const TempFolder folder;
    folder.Write("wheel.stp", PartText());
    const std::string document =
        R"(<?xml version="1.0"?><Uos><DataContainer><Part uid="p"><Name><CharacterString>wheel</CharacterString></Name>)"
        R"(<Versions><PartVersion uid="v"><Views><PartView uid="w"><DocumentAssignment><AssignedDocument uidRef="f"/>)"
        R"(</DocumentAssignment></PartView></Views></PartVersion></Versions></Part>)"
        R"(<File uid="f"><Id><Identifier id="wheel.stp"/></Id></File></DataContainer></Uos>)";
    const std::vector<std::string> corners = PrepareText(folder, document).Corners();
    EXPECT_EQ(corners.size(), 1u);
    EXPECT_EQ(PrepareText(folder, "\xEF\xBB\xBF" + document).Corners(), corners);
    EXPECT_EQ(PrepareText(folder, InUtf16(document, true)).Corners(), corners);
    EXPECT_EQ(PrepareText(folder, InUtf16(document, false)).Corners(), corners);
    const PreparedScene cut = PrepareText(folder, document.substr(0, document.find("</DataContainer>")));
    EXPECT_EQ(cut.Corners(), corners);
    EXPECT_THAT(cut.Losses(), ElementsAre(HasSubstr("line 1: ")));
}

TEST(ExternalFiles, ThatLieUnderAnotherEndingAreTakenAndNoted) {
    const TempFolder folder;
    folder.Write("wheel.stp", PartText());
    const PreparedScene scene = PrepareText(folder, ByDocument("wheel.jt"));
    EXPECT_THAT(scene.Corners(), ElementsAre(kPlaced));
    EXPECT_THAT(scene.Losses(), ElementsAre(HasSubstr("wheel: its file 'wheel.jt' isn't there; ")));
    EXPECT_FALSE(scene.result.LacksShape());
}

TEST(ExternalFiles, ThatAreMissingAreNamed) {
    const TempFolder folder;
    const PreparedScene scene = PrepareText(folder, ByDocument("wheel.stp"));
    EXPECT_EQ(scene.result.error, "none of its shape came");
    EXPECT_THAT(scene.Losses(), ElementsAre("wheel: its file 'wheel.stp' isn't there"));
}

TEST(ExternalFiles, ThatNameEachOtherComeToAnEnd) {
    const TempFolder folder;
    folder.Write("wheel.stp", ByDocument("top.step"));
    const PreparedScene scene = PrepareText(folder, ByDocument("wheel.stp"));
    EXPECT_FALSE(scene.result.error.empty());
}

TEST(ExternalFiles, OfOneNameAreReadOnceAndPlacedWhereverTheyAreUsed) {
    const TempFolder folder;
    folder.Write("wheel.stp", PartText());
    ExchangeText text;
    const std::string context = text.Context();
    const std::string parent = text.Product("cart");
    const std::string document = text.Add("DOCUMENT_FILE('wheel.stp','','',$,'',$)");
    const std::string origin = text.Axes("(0.,0.,0.)");
    const std::string shape = text.Shape(parent, origin, context);
    for (int i = 0; i < 4; ++i) {
        const std::string child = text.Product("wheel" + std::to_string(i));
        const std::string childShape = text.Shape(child, origin, context);
        const std::string target = text.Axes("(" + std::to_string(100 * i) + ".,0.,0.)");
        text.Use(parent, child, shape, childShape, origin, target);
        text.Add("APPLIED_DOCUMENT_REFERENCE(" + document + ",'',(" + child + "))");
    }
    const PreparedScene scene = PrepareText(folder, text.Text());
    EXPECT_EQ(scene.placed, 4u);
    EXPECT_EQ(scene.result.parts, 1u);
    EXPECT_EQ(scene.result.placedParts, 4u);
}

// What is shown of an archive with the members, given as names and texts.
PreparedScene PrepareArchive(const TempFolder& folder,
                             const std::vector<std::pair<std::string, std::string>>& members) {
    const std::string path = folder.Path("packed.zip");
    ZipWriter zip(path);
    for (const auto& [name, text] : members) {
        EXPECT_TRUE(zip.Add(name, false, [&text](ByteSink* sink) { sink->Write(text); }));
    }
    EXPECT_TRUE(zip.Close());
    return PrepareFile(path, PlainOptions(folder.Path("out")));
}

TEST(ArchivesOfStepFiles, AnAssemblyFindsItsPartsAmongTheMembers) {
    const TempFolder folder;
    for (const char* const name :
         {"wheel.stp", "C:\\\\data\\\\wheel.stp", "wheel.prt", "../cart/wheel.stp"}) {
        const PreparedScene scene =
            PrepareArchive(folder, {{"cart/wheel.stp", PartText()}, {"cart/top.stp", ByDocument(name)}});
        EXPECT_THAT(scene.Corners(), ElementsAre(kPlaced)) << name;
        EXPECT_THAT(scene.products, ElementsAre("cart", "wheel")) << name;
        EXPECT_FALSE(scene.result.LacksShape()) << name;
    }
}

TEST(ArchivesOfStepFiles, MembersThatNoneNamesAreShownSideBySide) {
    const TempFolder folder;
    const PreparedScene scene =
        PrepareArchive(folder, {{"readme.txt", "nothing"}, {"a.stp", PartText()}, {"b.step", PartText()}});
    EXPECT_THAT(scene.Corners(), ElementsAre("0 0 0, 1 0 0, 0 1 0", "0 0 0, 1 0 0, 0 1 0"));
    EXPECT_THAT(scene.Losses(), ElementsAre());
}

TEST(ArchivesOfStepFiles, AMemberThatIsNoStepFileIsNamed) {
    const TempFolder folder;
    const PreparedScene scene =
        PrepareArchive(folder, {{"a.stp", PartText()}, {"b.stp", "nothing"}, {"settings.xml", "<a/>"}});
    EXPECT_EQ(scene.triangles.size(), 1u);
    EXPECT_THAT(scene.Losses(),
                ElementsAre("b.stp: it can't be read: it is neither an ISO 10303-21 file nor STEP XML",
                            "settings.xml: it can't be read: it has no DataContainer"));
    EXPECT_TRUE(scene.result.LacksShape());
}

TEST(ArchivesOfStepFiles, AreLeftAsTheyAreASecondTime) {
    const TempFolder folder;
    const std::vector<std::pair<std::string, std::string>> members = {{"wheel.stp", PartText()},
                                                                      {"top.stp", ByDocument("wheel.stp")}};
    EXPECT_FALSE(PrepareArchive(folder, members).result.isUnchanged);
    EXPECT_TRUE(PrepareArchive(folder, members).result.isUnchanged);
    EXPECT_FALSE(
        PrepareArchive(folder, {members[0], {"top.stp", ByDocument("wheel.step")}}).result.isUnchanged);
}

} // namespace
} // namespace tarnwick::test
