#include "support/strict_p21.h"
#include "write/json_summary.h"
#include "write/p21_assembly.h"
#include "write/p21_faces.h"
#include "write/p21_style.h"
#include "write/xml_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

// Whole small files, written as a program does that knows nothing of the sample maker.
namespace tarnwick::test {
namespace {

using testing::HasSubstr;

std::string PartText() {
    std::string text;
    StringSink sink(&text);
    P21Writer out(&sink);
    out.Header({"a part", "it's", kAp242.schema, "test"});
    const ContextIds contexts = WriteContexts(&out);
    const ProductIds product = WriteProduct(&out, contexts, "P1", "Part 1", "part");
    const EntityId style = WriteStyle(&out, {0, 0.5, 1}, 0.25);
    const std::vector<Vec3> points{{0, 0, 0}, {1, 0, 0}, {1, 1.5, 0}};
    const std::vector<Vec3> normals{{0, 0, 1}};
    const std::vector<int> pnindex{3, 1, 2};
    const FaceEntity face{WriteCoordinates(&out, points), points.size(), normals, {}, pnindex};
    const std::vector<Triangle> triangles{{0, 1, 2}};
    const IndexLists strips{{0, 1, 2}, {3}};
    const std::vector<EntityId> faces{WriteFace(&out, face, triangles),
                                      WriteComplexFace(&out, face, strips, {})};
    const EntityId set = WriteSurfaceSet(&out, face, {}, strips);
    const EntityId solid = out.Add("TESSELLATED_SOLID", "", faces, EntityId{});
    const EntityId styled = WriteStyledItem(&out, style, solid);
    const EntityId overriding = WriteOverridingStyle(&out, style, faces[0], styled);
    WriteRepresentations(&out, contexts, product.shape, {{solid, set}, {}, {styled, overriding}});
    out.Footer();
    return text;
}

TEST(WrittenP21, PartIsValidToTheLetter) {
    const std::string text = PartText();
    EXPECT_EQ(ReadP21(text).faults, std::vector<std::string>());
    EXPECT_THAT(text, HasSubstr("FILE_NAME('it''s','2024-01-01T00:00:00',(''),(''),'test','test','');\n"));
    EXPECT_THAT(text, HasSubstr("=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.5,0.)));\n"));
    EXPECT_THAT(text, HasSubstr(",3,((0.,0.,1.)),$,(3,1,2),((1,2,3)));\n"));
    EXPECT_THAT(text, HasSubstr(",3,((0.,0.,1.)),$,(3,1,2),((1,2,3)),());\n"));
    EXPECT_THAT(text, HasSubstr(",3,((0.,0.,1.)),(3,1,2),(),((1,2,3)));\n"));
}

TEST(WrittenP21, AssemblyIsValidToTheLetter) {
    std::string text;
    StringSink sink(&text);
    P21Writer out(&sink);
    out.Header({"an assembly", "A", kAp242.schema, "test"});
    const ContextIds contexts = WriteContexts(&out);
    const ReferenceIds references = WriteReferenceRoles(&out);
    ComponentIds top;
    top.product = WriteProduct(&out, contexts, "A", "Assembly", "part");
    top.origin = WritePlacement(&out, {});
    const EntityId place = WritePlacement(&out, {{1, 2, 3}, {1, 0, 0}, {0, 1, 0}});
    const ComponentIds part = WriteExternal(&out, contexts, references, "P1", "Part 1", "p1.stp");
    top.representation = WriteShape(&out, contexts, top.product.shape, {top.origin, place});
    WriteUse(&out, 1, top, part, place);
    out.Footer();
    EXPECT_EQ(ReadP21(text).faults, std::vector<std::string>());
    EXPECT_THAT(text, HasSubstr("=DOCUMENT_FILE('p1.stp','','',"));
    EXPECT_THAT(text, HasSubstr("=NEXT_ASSEMBLY_USAGE_OCCURRENCE('1','use 1','',"));
}

std::string XmlText(FileRoute route) {
    std::string text;
    StringSink sink(&text);
    XmlDocument out(route, &sink);
    out.Begin("test");
    out.AddPart({"A & B", {}, "", 1, {Placement{{1, 2, 3}}}});
    out.AddPart({"\"C\"", {1}, "c<1>.stp", 0, {}});
    out.End();
    return text;
}

TEST(WrittenXml, NamesAreEscaped) {
    const std::string text = XmlText(FileRoute::kDirect);
    EXPECT_THAT(text, HasSubstr("<Id id=\"A &amp; B\"/>"));
    EXPECT_THAT(text, HasSubstr("<CharacterString>&quot;C&quot;</CharacterString>"));
    EXPECT_THAT(text, HasSubstr("<Identifier id=\"c&lt;1&gt;.stp\"/>"));
}

TEST(WrittenXml, FilesStandBehindTheirPartOrBehindTheirDocuments) {
    const std::string direct = XmlText(FileRoute::kDirect);
    EXPECT_THAT(direct, HasSubstr("<AssignedDocument uidRef=\"f2\"/>"));
    EXPECT_THAT(direct, HasSubstr("    </Part>\n    <File uid=\"f2\""));
    const std::string documents = XmlText(FileRoute::kDocuments);
    EXPECT_THAT(documents, HasSubstr("<AssignedDocument uidRef=\"dv2\"/>"));
    EXPECT_THAT(documents, HasSubstr("    </Document>\n    <File uid=\"f2\""));
}

TEST(WrittenXml, UsesAreThoseOfTheOccurrencesThatTheyName) {
    const std::string text = XmlText(FileRoute::kDirect);
    EXPECT_THAT(text, HasSubstr("<Occurrence uid=\"o1\""));
    EXPECT_THAT(text, HasSubstr("<Related uidRef=\"o1\"/>"));
    EXPECT_THAT(text, HasSubstr("<RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix>"));
    EXPECT_THAT(text, HasSubstr("<TranslationVector>1 2 3</TranslationVector>"));
}

TEST(WrittenJson, NamesAreEscaped) {
    EXPECT_EQ(EscapeJson("a \"b\" \\ c\n\x1F"), "a \\\"b\\\" \\\\ c\\u000a\\u001f");
}

TEST(WrittenJson, SummaryHasItsTables) {
    std::string text;
    StringSink sink(&text);
    JsonSummary out(&sink);
    out.BeginProducts(2);
    out.AddProduct("A", "", {0, 1, 0, 1.5, 0, 2});
    out.AddProduct("B", "b.stp", {0, 1, 0, 1, 0, 1});
    out.BeginOccurrences(1, 0);
    out.AddOccurrence(0, 1, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1});
    out.End();
    EXPECT_EQ(text, "{\n\"products_table\": {\n\"nb_products\": 2,\n\"products\": [\n"
                    "{\"idx\": 1, \"name\": \"A\", \"bbox\": [0, 1, 0, 1.5, 0, 2]},\n"
                    "{\"idx\": 2, \"name\": \"B\", \"filename\": \"b.stp\", \"bbox\": [0, 1, 0, 1, 0, 1]}\n"
                    "]\n},\n\"occurrences_table\": {\n\"nb_occurrences\": 1,\n\"max_depth\": 0,\n"
                    "\"occurrences\": [\n"
                    "{\"depth\": 0, \"idx_prd\": 1, \"rotation\": [1, 0, 0, 0, 1, 0, 0, 0, 1], "
                    "\"translation\": [5, 6, 7]}\n]\n}\n}\n");
}

} // namespace
} // namespace tarnwick::test
