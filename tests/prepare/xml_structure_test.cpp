#include "prepare/xml/xml_structure.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace tarnwick::prepare {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string DocumentOf(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<n0:Uos xmlns:n0=\"n\"><Header/>\n<DataContainer>\n" +
           content + "\n</DataContainer></n0:Uos>\n";
}
std::string PartOf(const std::string& name, const std::string& view) {
    return "<Part uid=\"p-" + name + "\"><Id id=\"" + name + "\"/><Name><CharacterString>" + name +
           "</CharacterString></Name><Versions><PartVersion uid=\"pv-" + name +
           "\"><Views><PartView uid=\"v-" + name + "\">" + view +
           "</PartView></Views></PartVersion></Versions></Part>\n";
}
std::string UsedAs(const std::string& uid) {
    return "<Occurrence uid=\"" + uid + "\"><Id id=\"" + uid + "\"/></Occurrence>";
}
std::string UseOf(const std::string& uid, const std::string& placement) {
    return "<ViewOccurrenceRelationship><Related uidRef=\"" + uid + "\"/>" + placement +
           "</ViewOccurrenceRelationship>";
}
std::string MovedBy(const std::string& translation) {
    return "<Placement><CartesianTransformation><RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix>"
           "<TranslationVector>" +
           translation + "</TranslationVector></CartesianTransformation></Placement>";
}
std::string Assigned(const std::string& uid) {
    return "<DocumentAssignment><AssignedDocument uidRef=\"" + uid + "\"/></DocumentAssignment>";
}
std::string FileOf(const std::string& uid, const std::string& name) {
    return "<File uid=\"" + uid + "\"><Id id=\"" + name + "\"/></File>";
}

FileStructure Read(const std::string& text) {
    FileStructure structure;
    std::string error;
    EXPECT_TRUE(ReadXmlStructure(text, &structure, &error)) << error;
    return structure;
}
FileStructure ReadData(const std::string& content) {
    return Read(DocumentOf(content));
}

// "parent>child x,y,z" of all uses.
std::vector<std::string> UsesOf(const FileStructure& structure) {
    std::vector<std::string> lines;
    for (const FileProduct& product : structure.products) {
        for (const FileUse& use : product.uses) {
            const auto number = [](double value) { return std::to_string(static_cast<int>(value)); };
            lines.push_back(product.name + ">" + structure.products[use.child].name + " " +
                            number(use.at.move.x) + "," + number(use.at.move.y) + "," +
                            number(use.at.move.z));
        }
    }
    return lines;
}
std::vector<std::string> NamesOf(const FileStructure& structure) {
    std::vector<std::string> names;
    for (const FileProduct& product : structure.products) { names.push_back(product.name); }
    return names;
}
std::vector<std::string> FilesOf(const FileStructure& structure) {
    std::vector<std::string> names;
    for (const FileProduct& product : structure.products) {
        names.push_back(product.files.empty() ? "" : product.files[0]);
    }
    return names;
}
std::vector<std::string> LossesOf(const FileStructure& structure) {
    std::vector<std::string> lines;
    for (const Loss& loss : structure.losses) { lines.push_back(loss.product + ": " + loss.why); }
    return lines;
}

TEST(XmlStructure, ReadsPartsUsesAndFiles) {
    const FileStructure structure =
        ReadData(PartOf("wheel", UsedAs("o1") + UsedAs("o2") + Assigned("f1")) + FileOf("f1", "wheel.stp") +
                 PartOf("top", UseOf("o1", MovedBy("10 0 0")) + UseOf("o2", MovedBy("0 -20 1.5E1"))));
    EXPECT_THAT(NamesOf(structure), ElementsAre("wheel", "top"));
    EXPECT_THAT(FilesOf(structure), ElementsAre("wheel.stp", ""));
    EXPECT_THAT(UsesOf(structure), ElementsAre("top>wheel 10,0,0", "top>wheel 0,-20,15"));
    EXPECT_THAT(structure.roots, ElementsAre(1u));
    EXPECT_EQ(structure.unit, 1);
    EXPECT_THAT(structure.losses, IsEmpty());
    EXPECT_EQ(structure.products[0].id, "wheel");
}

TEST(XmlStructure, TakesAnyFormOfAName) {
    const FileStructure structure = ReadData(
        "<Part><Id><Identifier idRoleRef='r' id='1'/><Identifier id='2'/></Id>"
        "<Name><LocalizedString lang='de'>K&#xF6;rper &amp; mehr</LocalizedString></Name></Part>"
        "<Part><Id>  3 </Id><Name><LocalizedStrings><LocalizedString lang=\"en\"/></LocalizedStrings></Name>"
        "</Part><Part><Name><![CDATA[a<b]]></Name></Part><Part/>");
    EXPECT_THAT(NamesOf(structure), ElementsAre("K\u00F6rper & mehr", "", "a<b", ""));
    EXPECT_EQ(structure.products[0].id, "1");
    EXPECT_EQ(structure.products[1].id, "3");
    EXPECT_THAT(structure.roots, ElementsAre(0u, 1u, 2u, 3u));
    EXPECT_THAT(NamesOf(ReadData("<Part><Name>\xE4</Name></Part>")), ElementsAre("\u00E4"));
}

TEST(XmlStructure, ReadsElementsOfANamespaceAndAttributesInAnyOrder) {
    const FileStructure structure = Read(
        "<x:DataContainer xmlns:x='n'><x:Part\n\tuid = 'a' ><x:Id "
        "id='A'/><x:Versions><x:PartVersion><x:Views>"
        "<x:PartView><x:Occurrence x:type='x:SingleOccurrence' uid='o'/></x:PartView></x:Views>"
        "</x:PartVersion></x:Versions></x:Part><x:Part><x:Id id='B'/><x:Versions><x:PartVersion><x:Views>"
        "<x:PartView><x:ViewOccurrenceRelationship><x:Related><x:Occurrence uidRef='o'/></x:Related>"
        "<x:Placement><x:TranslationVector>1 2 3</x:TranslationVector></x:Placement>"
        "</x:ViewOccurrenceRelationship></x:PartView></x:Views></x:PartVersion></x:Versions></x:Part>"
        "</x:DataContainer>");
    ASSERT_EQ(structure.products.size(), 2u);
    ASSERT_EQ(structure.products[1].uses.size(), 1u);
    EXPECT_EQ(structure.products[1].uses[0].at.move, (Vec3{1, 2, 3}));
    EXPECT_THAT(structure.roots, ElementsAre(1u));
}

TEST(XmlStructure, FindsTheFileOverDocumentVersionAndDefinition) {
    const std::string document =
        "<Document uid='d'><Id id='DOC-1'/><Versions><DocumentVersion uid='dv'><Views>"
        "<DocumentDefinition uid='dd'><Files><DigitalFile uidRef='f1'/></Files></DocumentDefinition>"
        "</Views></DocumentVersion></Versions></Document>" +
        FileOf("f1", "a.stp");
    for (const char* const uid : {"d", "dv", "dd", "f1"}) {
        EXPECT_THAT(FilesOf(ReadData(PartOf("a", Assigned(uid)) + document)), ElementsAre("a.stp")) << uid;
    }
    EXPECT_THAT(FilesOf(ReadData(PartOf("a", Assigned("no")) + document)), ElementsAre(""));
}

TEST(XmlStructure, FindsTheFileOverTheDefiningGeometryAndInline) {
    const std::string model =
        "<RepresentationContext uid='c'><Representations><Representation uid='g'><ExternalFile uidRef='f1'/>"
        "</Representation></Representations></RepresentationContext>" +
        FileOf("f1", "a.stp");
    EXPECT_THAT(FilesOf(ReadData(PartOf("a", "<DefiningGeometry uidRef='g'/>") + model)),
                ElementsAre("a.stp"));
    EXPECT_THAT(FilesOf(ReadData(PartOf(
                    "a", "<DocumentAssignment><AssignedDocument><DigitalFile uid='x'><Locations>"
                         "<ExternalItem><Id><Identifier id='in.stp'/></Id><Source><IdentifierString>.\\sub\\"
                         "</IdentifierString></Source></ExternalItem></Locations></DigitalFile>"
                         "</AssignedDocument></DocumentAssignment>"))),
                ElementsAre("sub\\in.stp"));
    EXPECT_THAT(FilesOf(ReadData("<Part><Id id='a'/>" + Assigned("f") +
                                 "</Part><File uid='f'>"
                                 "<Id id='DOC-7'/><FileLocationAssignment><Identifier id='a.step'/>"
                                 "</FileLocationAssignment></File>")),
                ElementsAre("a.step"));
}

TEST(XmlStructure, AllNamesOfAFileAreKeptTheLikeliestFirst) {
    const FileStructure structure = ReadData(
        PartOf("a", Assigned("f")) + "<File uid='f'><Id id='DOC-7'/><Locations><ExternalItem><Id id='a.stp'/>"
                                     "<Source>sub/</Source></ExternalItem><ExternalItem><Id id='a.stp'/>"
                                     "</ExternalItem><ExternalItem><Id id='a.pdf'/></ExternalItem>"
                                     "<ExternalItem><Id id='a.jt'/></ExternalItem></Locations></File>");
    EXPECT_THAT(structure.products[0].files, ElementsAre("sub/a.stp", "a.stp", "a.jt", "DOC-7"));
}

TEST(XmlStructure, OfSeveralFilesTheOneOfStepCounts) {
    const std::string files = FileOf("pdf", "a.pdf") + FileOf("jt", "a.jt") + FileOf("stp", "a.stpZ") +
                              FileOf("document", "b.stpx") + FileOf("gz", "c.stp.gz");
    EXPECT_THAT(FilesOf(ReadData(PartOf("a", Assigned("pdf") + Assigned("jt") + Assigned("stp")) + files)),
                ElementsAre("a.stpZ"));
    EXPECT_THAT(FilesOf(ReadData(files + PartOf("a", Assigned("pdf") + Assigned("jt")))),
                ElementsAre("a.jt"));
    EXPECT_THAT(FilesOf(ReadData(PartOf("a", Assigned("pdf")) + files)), ElementsAre(""));
    EXPECT_THAT(FilesOf(ReadData(PartOf("a", Assigned("document")) + files)), ElementsAre("b.stpx"));
    EXPECT_THAT(FilesOf(ReadData(PartOf("a", Assigned("jt") + Assigned("gz")) + files)),
                ElementsAre("c.stp.gz"));
}

TEST(XmlStructure, DocumentsOfAnOccurrenceArentThoseOfThePart) {
    EXPECT_THAT(FilesOf(ReadData(PartOf("a", "<Occurrence uid='o'>" + Assigned("f") + "</Occurrence>") +
                                 FileOf("f", "a.stp"))),
                ElementsAre(""));
}

TEST(XmlStructure, ScalesPlacementsByTheUnitOfTheDocument) {
    const std::string parts = PartOf("a", UsedAs("o")) + PartOf("b", UseOf("o", MovedBy("1 2 3")));
    const auto unit = [](const std::string& name, const std::string& prefix) {
        return "<Unit uid='" + name + "'><Name><ClassString>" + name + "</ClassString></Name>" + prefix +
               "<Quantity><ClassString>length</ClassString></Quantity></Unit>";
    };
    const auto unitOf = [&](const std::string& content) { return ReadData(parts + content).unit; };
    EXPECT_EQ(unitOf(unit("inch", "")), 25.4);
    EXPECT_EQ(unitOf(unit("metre", "")), 1000);
    EXPECT_EQ(unitOf(unit("metre", "<Prefix>milli</Prefix>")), 1);
    EXPECT_EQ(unitOf(unit("Centimetre", "")), 10);
    EXPECT_EQ(unitOf(unit("micrometer", "")), 0.001);
    EXPECT_EQ(unitOf("<Unit><Name><ClassString>kilogram</ClassString></Name></Unit>"), 1);
    EXPECT_EQ(unitOf("<Unit><Name><ClassString>metre</ClassString></Name><Quantity>area</Quantity></Unit>"),
              1);
    EXPECT_EQ(
        unitOf(unit("inch", "") + unit("metre", "") +
               "<ExchangeContext><DefaultUnits><Unit uidRef='metre'/></DefaultUnits></ExchangeContext>"),
        1000);
    EXPECT_EQ(unitOf(unit("metre", "") + "<PropertyValue><Unit uidRef='metre'/></PropertyValue>"), 1);
    EXPECT_EQ(unitOf("<PropertyValue>" + unit("metre", "") + "</PropertyValue>"), 1);
    const FileStructure several = ReadData(parts + unit("inch", "") + unit("metre", ""));
    EXPECT_EQ(several.unit, 1);
    EXPECT_EQ(several.losses.size(), 1u);
    EXPECT_THAT(UsesOf(ReadData(parts + unit("inch", ""))), ElementsAre("b>a 25,50,76"));
}

TEST(XmlStructure, AxisPlacementsHaveTheUnitOfTheirOwnContext) {
    const FileStructure structure = ReadData(
        "<Unit uid='in'><Name><ClassString>inch</ClassString></Name></Unit>"
        "<Unit uid='mm'><Name><ClassString>millimetre</ClassString></Name></Unit>"
        "<RepresentationContext><Units><Unit uidRef='mm'/></Units><Representations><Representation uid='top'>"
        "<Items><RepresentationItem uid='t'><Position>100 0 0</Position><Axis>0 0 1</Axis>"
        "<RefDirection>1 0 0</RefDirection></RepresentationItem></Items><RepresentationRelationship uid='r'>"
        "<Related uidRef='low'/><Origin uidRef='s'/><Target uidRef='t'/></RepresentationRelationship>"
        "</Representation></Representations></RepresentationContext>"
        "<RepresentationContext><Units><Unit uidRef='in'/></Units><Representations><Representation uid='low'>"
        "<Items><RepresentationItem uid='s'><Position>1 0 0</Position></RepresentationItem></Items>"
        "</Representation></Representations></RepresentationContext>" +
        PartOf("a", UsedAs("o") + "<DefiningGeometry uidRef='low'/>") +
        PartOf("b",
               "<DefiningGeometry uidRef='top'/>" +
                   UseOf("o", "<Placement><GeometricRepresentationRelationship uidRef='r'/></Placement>")));
    ASSERT_EQ(structure.products[1].uses.size(), 1u);
    EXPECT_NEAR(structure.products[1].uses[0].at.move.x, 74.6, 1e-9);
    EXPECT_THAT(structure.losses, IsEmpty());
}

TEST(XmlStructure, APairOfAxesThatHaveChangedPlacesIsTurnedAround) {
    const auto read = [](const std::string& origin, const std::string& target) {
        return ReadData("<Representation uid='top'><Items><AxisPlacement uid='t'><Position>5 0 0</Position>"
                        "</AxisPlacement></Items></Representation><Representation uid='low'><Items>"
                        "<AxisPlacement uid='s'><Position>0 0 0</Position></AxisPlacement></Items>"
                        "</Representation>" +
                        PartOf("a", UsedAs("o") + "<DefiningGeometry uidRef='low'/>") +
                        PartOf("b", "<DefiningGeometry uidRef='top'/>" +
                                        UseOf("o", "<Placement><Origin><AxisPlacement uidRef='" + origin +
                                                       "'/></Origin><Target><AxisPlacement uidRef='" +
                                                       target + "'/></Target></Placement>")));
    };
    EXPECT_THAT(UsesOf(read("s", "t")), ElementsAre("b>a 5,0,0"));
    EXPECT_THAT(UsesOf(read("t", "s")), ElementsAre("b>a 5,0,0"));
}

TEST(XmlStructure, AUseWithoutAPlacementStandsAtTheOriginAndIsTold) {
    const FileStructure structure =
        ReadData(PartOf("a", UsedAs("o")) + PartOf("b", UseOf("o", "") + UseOf("o", "<Placement/>")));
    EXPECT_THAT(UsesOf(structure), ElementsAre("b>a 0,0,0", "b>a 0,0,0"));
    ASSERT_EQ(structure.losses.size(), 2u);
    EXPECT_FALSE(structure.losses[0].isShape);
    EXPECT_EQ(structure.losses[0].product, "a");
}

TEST(XmlStructure, APlacementThatCantBeReadIsTold) {
    for (const char* const placement :
         {"<Placement uidRef='no'/>", "<Placement><RotationMatrix>1 0 0</RotationMatrix></Placement>",
          "<Placement><RotationMatrix>0 0 0 0 0 0 0 0 0</RotationMatrix></Placement>",
          "<Placement><TranslationVector>a b c</TranslationVector></Placement>",
          "<Placement><TranslationVector>1e300 1e400 0</TranslationVector></Placement>",
          "<Placement uid='x'><A uidRef='x'/></Placement>"}) {
        const FileStructure structure =
            ReadData(PartOf("a", UsedAs("o")) + PartOf("b", UseOf("o", placement)));
        EXPECT_THAT(UsesOf(structure), ElementsAre("b>a 0,0,0"));
        ASSERT_EQ(structure.losses.size(), 1u) << placement;
        EXPECT_TRUE(structure.losses[0].isShape);
    }
}

TEST(XmlStructure, AQuantityIsThatManyPieces) {
    const auto read = [](const std::string& quantity) {
        return ReadData(
                   PartOf("a", "<Occurrence uid='o'><Quantity>" + quantity + "</Quantity></Occurrence>") +
                   PartOf("b", UseOf("o", MovedBy("1 0 0"))))
            .products[1]
            .uses.size();
    };
    EXPECT_EQ(read("<ValueComponent>3</ValueComponent>"), 3u);
    EXPECT_EQ(read("<NumericalValue><Unit uidRef='u'/><ValueComponent>4.0</ValueComponent></NumericalValue>"),
              4u);
    EXPECT_EQ(read("5"), 5u);
    EXPECT_EQ(read("<ValueComponent>2.5</ValueComponent>"), 1u);
    EXPECT_EQ(read("<ValueComponent>0</ValueComponent>"), 1u);
    EXPECT_EQ(read("<ValueComponent>1000000000</ValueComponent>"), 1u);
    EXPECT_EQ(read("some"), 1u);
}

TEST(XmlStructure, OfSeveralVersionsTheUsedOneCounts) {
    const std::string versions =
        "<Part><Id id='a'/><Versions><PartVersion><Views><PartView>" + UsedAs("old") + Assigned("f1") +
        "</PartView></Views></PartVersion><PartVersion><Views><PartView>" + UsedAs("new") + Assigned("f2") +
        "</PartView></Views></PartVersion></Versions></Part>" + FileOf("f1", "old.stp") +
        FileOf("f2", "new.stp");
    const FileStructure structure = ReadData(versions + PartOf("b", UseOf("new", MovedBy("0 0 0"))));
    EXPECT_THAT(FilesOf(structure), ElementsAre("new.stp", ""));
    EXPECT_THAT(structure.roots, ElementsAre(1u));
    EXPECT_THAT(FilesOf(ReadData(versions)), ElementsAre("old.stp"));
}

TEST(XmlStructure, APartOfWhichOneVersionUsesAnotherIsARoot) {
    const FileStructure structure =
        ReadData("<Part><Name>a</Name><Versions><PartVersion><Views><PartView>" + UseOf("o", "") +
                 "</PartView></Views></PartVersion><PartVersion><Views><PartView>" + UsedAs("o") +
                 "</PartView></Views></PartVersion></Versions></Part>");
    EXPECT_THAT(NamesOf(structure), ElementsAre("a"));
    EXPECT_THAT(structure.roots, ElementsAre(0u));
}

TEST(XmlStructure, AUseThatLeadsToNoPartIsTold) {
    const FileStructure structure = ReadData(PartOf("b", UseOf("no", "") + "<ViewOccurrenceRelationship/>"));
    EXPECT_THAT(UsesOf(structure), IsEmpty());
    EXPECT_THAT(LossesOf(structure),
                ElementsAre("b: one of its uses leads to no part", "b: one of its uses leads to no part"));
}

TEST(XmlStructure, AnOccurrenceInAnotherIsOfTheSamePartAndOneInAUseOfNone) {
    EXPECT_THAT(UsesOf(ReadData(PartOf("a", "<Occurrence uid='o'><Occurrence uid='i'/></Occurrence>") +
                                PartOf("b", UseOf("i", MovedBy("1 0 0"))))),
                ElementsAre("b>a 1,0,0"));
    EXPECT_THAT(UsesOf(ReadData(PartOf("a", "") +
                                PartOf("b", "<ViewOccurrenceRelationship><Related><Occurrence uid='o'>"
                                            "<Definition uidRef='v-a'/></Occurrence></Related>" +
                                                MovedBy("1 0 0") + "</ViewOccurrenceRelationship>"))),
                ElementsAre("b>a 1,0,0"));
}

TEST(XmlStructure, AUseMayStandOutsideOfItsPartAndNameItsView) {
    EXPECT_THAT(
        UsesOf(ReadData(PartOf("a", "") + PartOf("b", "") +
                        "<ViewOccurrenceRelationship><Relating uidRef='v-b'/><Related uidRef='v-a'/>" +
                        MovedBy("7 0 0") + "</ViewOccurrenceRelationship>")),
        ElementsAre("b>a 7,0,0"));
}

TEST(XmlStructure, CirclesAreCut) {
    const FileStructure self = ReadData(PartOf("a", UsedAs("o") + UseOf("o", MovedBy("0 0 0"))));
    EXPECT_THAT(UsesOf(self), IsEmpty());
    EXPECT_THAT(self.roots, ElementsAre(0u));
    EXPECT_THAT(LossesOf(self), ElementsAre("a: it is used by itself, over others or not"));
    const FileStructure ring = ReadData(PartOf("a", UsedAs("oa") + UseOf("ob", MovedBy("1 0 0"))) +
                                        PartOf("b", UsedAs("ob") + UseOf("oc", MovedBy("2 0 0"))) +
                                        PartOf("c", UsedAs("oc") + UseOf("oa", MovedBy("3 0 0"))));
    EXPECT_THAT(UsesOf(ring), ElementsAre("a>b 1,0,0", "b>c 2,0,0"));
    EXPECT_THAT(ring.roots, ElementsAre(0u));
    const FileStructure below =
        ReadData(PartOf("a", UsedAs("oa") + UseOf("ob", MovedBy("1 0 0"))) +
                 PartOf("b", UsedAs("ob") + UseOf("oa", MovedBy("2 0 0"))) + PartOf("top", UseOf("ob", "")));
    EXPECT_THAT(UsesOf(below), ElementsAre("b>a 2,0,0", "top>b 0,0,0"));
    EXPECT_THAT(below.roots, ElementsAre(2u));
}

TEST(XmlStructure, CirclesOfReferencesAreHarmless) {
    ReadData("<Document uid='a'><DocumentVersion uidRef='a'/></Document><File uid='f'>"
             "<Locations><ExternalItem uidRef='f'/></Locations></File>" +
             PartOf("p", Assigned("a") + Assigned("f") + UsedAs("o")) +
             PartOf("q", UseOf("o", "<Placement><X uidRef='y'/></Placement>")) +
             "<Y uid='y' uidRef='z'/><Z uid='z' uidRef='y'/>");
}

TEST(XmlStructure, ADocumentThatIsCutGivesWhatStandsBefore) {
    const std::string whole = DocumentOf(PartOf("one", "") + PartOf("two", ""));
    FileStructure structure;
    std::string error;
    EXPECT_TRUE(ReadXmlStructure(whole.substr(0, whole.find("<PartView uid=\"v-two")), &structure, &error))
        << error;
    ASSERT_EQ(structure.products.size(), 2u);
    EXPECT_THAT(error, HasSubstr("line 5: "));
}

TEST(XmlStructure, WhatIsNoDocumentIsTold) {
    const auto errorOf = [](const std::string& text) {
        FileStructure structure;
        structure.unit = 7;
        std::string error;
        EXPECT_FALSE(ReadXmlStructure(text, &structure, &error));
        EXPECT_EQ(structure.unit, 7);
        return error;
    };
    EXPECT_THAT(errorOf("<a>\n<b>\n</c>\n</a>"), HasSubstr("line 3: "));
    EXPECT_THAT(errorOf(""), HasSubstr("line 1: "));
    EXPECT_THAT(errorOf("ISO-10303-21;"), HasSubstr("line 1: "));
    EXPECT_EQ(errorOf("<html/>"), "it has no DataContainer");
    EXPECT_THAT(ReadData("").products, IsEmpty());
}

TEST(XmlStructure, EveryCutOfADocumentIsHarmless) {
    const std::string text =
        DocumentOf(PartOf("wheel", UsedAs("o1") + Assigned("d")) +
                   "<Document uid='d'><Files><DigitalFile uid='f'><Id id='a.stp'/></DigitalFile></Files>"
                   "</Document>" +
                   PartOf("top", UseOf("o1", MovedBy("10 0 0"))));
    FileStructure structure;
    std::string error;
    const std::size_t whole = text.rfind('>') + 1;
    for (std::size_t length = 0; length < whole; ++length) {
        FileStructure before;
        EXPECT_TRUE(!ReadXmlStructure(text.substr(0, length), &before, &error) || !error.empty()) << length;
    }
    EXPECT_TRUE(ReadXmlStructure(text.substr(0, whole), &structure, &error));
}

TEST(XmlStructure, EveryDamagedByteIsHarmless) {
    std::string text =
        DocumentOf(PartOf("wheel", UsedAs("o1") + Assigned("f") + "<DefiningGeometry uidRef='g'/>") +
                   FileOf("f", "a.stp") + PartOf("top", UseOf("o1", MovedBy("10 0 0"))));
    FileStructure structure;
    std::string error;
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (const char c : {'<', '>', '/', '"', '\0', '&', '9'}) {
            const char kept = std::exchange(text[i], c);
            ReadXmlStructure(text, &structure, &error);
            text[i] = kept;
        }
    }
}

TEST(XmlStructure, DepthIsHarmless) {
    constexpr int kDepth = 200'000;
    for (const std::string name : {"a", "Part", "PartView", "Occurrence", "ViewOccurrenceRelationship",
                                   "Document", "File", "Representation", "Placement"}) {
        std::string text = "<DataContainer>";
        for (int i = 0; i < kDepth; ++i) { text += "<" + name + ">"; }
        for (int i = 0; i < kDepth; ++i) { text += "</" + name + ">"; }
        FileStructure structure;
        std::string error;
        EXPECT_TRUE(ReadXmlStructure(text + "</DataContainer>", &structure, &error)) << name << error;
    }
}

TEST(XmlStructure, AChainOfPartsIsAsDeepAsItIsLong) {
    constexpr int kLength = 20'000;
    std::string parts;
    for (int i = 0; i < kLength; ++i) {
        const std::string number = std::to_string(i);
        parts += PartOf(number, UsedAs("o" + number) + UseOf("o" + std::to_string(i + 1), MovedBy("1 0 0")));
    }
    const FileStructure structure = ReadData(parts + PartOf("last", UsedAs("o20000")));
    EXPECT_EQ(structure.products.size(), kLength + 1u);
    EXPECT_THAT(structure.roots, ElementsAre(0u));
    EXPECT_THAT(structure.losses, IsEmpty());
}

} // namespace
} // namespace tarnwick::prepare
