// Reading takes steps as the text grows, whatever is in it.

#include "exchange/padded.h"
#include "growth/step_counter.h"
#include "prepare/elements/finite_elements.h"
#include "prepare/shape/styles.h"
#include "prepare/shape/tessellation.h"
#include "prepare/structure/p21_structure.h"
#include "prepare/xml/xml_structure.h"
#include "write/byte_sink.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace tarnwick::prepare {
namespace {

using namespace test;

struct Case {
    const char* name;
    std::string (*text)(int n);
};

std::string Times(int n, const std::function<std::string(const std::string&)>& text) {
    std::string all;
    for (int i = 0; i < n; ++i) { all += text(std::to_string(i)); }
    return all;
}
std::string PartOf(const std::string& name, const std::string& view) {
    return "<Part uid='p" + name + "'><Id id='" + name + "'/><Versions><PartVersion><Views><PartView uid='v" +
           name + "'><Occurrence uid='o" + name + "'/>" + view +
           "</PartView></Views></PartVersion></Versions></Part>";
}
std::string UseOf(const std::string& name, const std::string& placement = "") {
    return "<ViewOccurrenceRelationship><Related uidRef='o" + name + "'/>" + placement +
           "</ViewOccurrenceRelationship>";
}
std::string Assigned(const std::string& uid) {
    return "<DocumentAssignment><AssignedDocument uidRef='" + uid + "'/></DocumentAssignment>";
}
std::string Nested(const std::string& name, int n) {
    std::string text;
    for (int i = 0; i < n; ++i) { text += "<" + name + ">"; }
    for (int i = 0; i < n; ++i) { text += "</" + name + ">"; }
    return text;
}

constexpr Case kDocuments[] = {
    {"parts", [](int n) { return Times(n, [](const auto& i) { return PartOf(i, ""); }); }},
    {"uses of one part",
     [](int n) { return PartOf("a", "") + PartOf("b", Times(n, [](const auto&) { return UseOf("a"); })); }},
    {"a chain of parts",
     [](int n) {
         return Times(n, [](const auto& i) { return PartOf(i, UseOf(std::to_string(std::stoi(i) + 1))); });
     }},
    {"a circle of parts",
     [](int n) {
         return Times(
             n, [n](const auto& i) { return PartOf(i, UseOf(std::to_string((std::stoi(i) + 1) % n))); });
     }},
    {"uses of a placement with many elements",
     [](int n) {
         return "<X uid='x'>" + Times(n, [](const auto&) { return "<Y/>"; }) + "</X>" + PartOf("a", "") +
                PartOf("b", Times(n, [](const auto&) { return UseOf("a", "<Placement uidRef='x'/>"); }));
     }},
    {"parts of a document with many files",
     [](int n) {
         return "<Document uid='d'>" + Times(n, [](const auto& i) { return "<File uid='f" + i + "'/>"; }) +
                "</Document>" + Times(n, [](const auto& i) { return PartOf(i, Assigned("d")); });
     }},
    {"a chain of documents",
     [](int n) {
         return Times(n, [](const auto& i) {
             return "<Document uid='d" + i + "'><Document uidRef='d" + std::to_string(std::stoi(i) + 1) +
                    "'/></Document>" + PartOf(i, Assigned("d" + i));
         });
     }},
    {"views of a part",
     [](int n) {
         return "<Part><Versions>" +
                Times(n, [](const auto&) { return "<PartView>" + Assigned("f") + "</PartView>"; }) +
                "</Versions></Part><File uid='f'><Id id='a.stp'/></File>";
     }},
    {"units", [](int n) { return Times(n, [](const auto&) { return "<Unit><Name>metre</Name></Unit>"; }); }},
    {"nested parts", [](int n) { return Nested("Part", n); }},
    {"nested views", [](int n) { return "<Part>" + Nested("PartView", n) + "</Part>"; }},
    {"nested documents", [](int n) { return Nested("Document", n); }},
    {"nested placements", [](int n) {
         return PartOf("a", "") +
                PartOf("b", Times(n / 10, [](const auto&) { return UseOf("a", Nested("Placement", 10)); }));
     }}};

constexpr const char* kNodes =
    "#1=CARTESIAN_POINT('',(0.,0.,0.));#2=CARTESIAN_POINT('',(1.,0.,0.));#3=CARTESIAN_POINT('',(0.,1.,0.));"
    "#4=NODE('',(#1),$,$);#5=NODE('',(#2),$,$);#6=NODE('',(#3),$,$);";
std::string Number(const std::string& i) {
    return "#" + std::to_string(1000 + std::stoi(i));
}
std::string Shells(int n, const std::string& property) {
    return Times(n, [&](const auto& i) {
        return Number(i) + "=SURFACE_3D_ELEMENT_REPRESENTATION('',(),$,(#4,#5,#6),$,$," + property + ",$);";
    });
}

constexpr Case kElementFiles[] = {
    {"shells", [](int n) { return kNodes + Shells(n, "$"); }},
    {"shells of one long field",
     [](int n) {
         return kNodes + Shells(n, "#7") +
                "#7=SURFACE_ELEMENT_PROPERTY('','',#8);#8=SURFACE_SECTION_FIELD_VARYING((" +
                Times(n, [](const auto&) { return "#9,"; }) +
                "#9),.F.);#9=UNIFORM_SURFACE_SECTION($,$,$,1.,$,$);";
     }},
    {"nodes of one long point",
     [](int n) {
         return "#1=CARTESIAN_POINT('',(" + Times(n, [](const auto&) { return "0.,"; }) + "0.));" +
                Times(n, [](const auto& i) {
                    return Number(i) + "=NODE('',(#1),$,$);" + "#9" + i +
                           "=SURFACE_3D_ELEMENT_REPRESENTATION('',(),$,(" + Number(i) + "," + Number(i) +
                           "," + Number(i) + "),$,$,$,$);";
                });
     }},
    {"representations of one set of nodes",
     [](int n) {
         return "#1=NODE_SET('',(" + Times(n, [](const auto& i) { return Number(i) + ","; }) + "#1));" +
                "#2=FEA_AXIS2_PLACEMENT_3D('',#3,$,$,.CYLINDRICAL.,'');#3=CARTESIAN_POINT('',(1.,0.,0.));" +
                Times(n, [](const auto& i) { return Number(i) + "=POINT_REPRESENTATION('',(#1,#2),$);"; });
     }},
    {"volumes", [](int n) {
         return kNodes + std::string("#7=CARTESIAN_POINT('',(0.,0.,1.));#8=NODE('',(#7),$,$);") +
                Times(n, [](const auto& i) {
                    return Number(i) + "=VOLUME_3D_ELEMENT_REPRESENTATION('',(),$,(#4,#5,#6,#8),$,$,$);";
                });
     }}};

// A shell #1 of n faces that have three points each, of one list #2.
std::string FacesOfOneList(int n, const std::string& normals, bool isNumbered) {
    const auto first = [](const std::string& i) { return 1 + 3 * std::stoi(i); };
    const auto three = [](int i) {
        return std::to_string(i) + "," + std::to_string(i + 1) + "," + std::to_string(i + 2);
    };
    return "#1=TESSELLATED_SHELL('',(" + Times(n, [](const auto& i) { return Number(i) + ","; }) +
           "#1000),$);" + "#2=COORDINATES_LIST('',9,(" +
           Times(n, [](const auto& i) { return "(0.,0.,0.),(1.,0.,0.),(0.,1.," + i + ".),"; }) +
           "(0.,0.,0.)));" + Times(n, [&](const auto& i) {
               const std::string numbers = three(first(i));
               return Number(i) + "=TRIANGULATED_FACE('',#2,3," + normals + ",$," +
                      (isNumbered ? "(" + numbers + "),((1,2,3)));" : "(),((" + numbers + ")));");
           });
}

constexpr Case kShells[] = {
    {"faces that number points of one list", [](int n) { return FacesOfOneList(n, "((0.,0.,1.))", true); }},
    {"the same without normals", [](int n) { return FacesOfOneList(n, "()", true); }},
    {"faces that take points of one list", [](int n) { return FacesOfOneList(n, "((0.,0.,1.))", false); }},
    {"the same without normals", [](int n) { return FacesOfOneList(n, "()", false); }}};

constexpr const char* kContext =
    "#1=(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.));#2=(GEOMETRIC_REPRESENTATION_CONTEXT(3)"
    "GLOBAL_UNIT_ASSIGNED_CONTEXT((#1))REPRESENTATION_CONTEXT('',''));#3=CARTESIAN_POINT('',(0.,0.,0.));"
    "#4=AXIS2_PLACEMENT_3D('',#3,$,$);#5=ITEM_DEFINED_TRANSFORMATION('','',#4,#4);";
// Product i with the representation #4i and the items.
std::string ProductOf(const std::string& i, const std::string& items) {
    return "#1" + i + "=PRODUCT('p" + i + "','','',());#2" + i + "=PRODUCT_DEFINITION_FORMATION('','',#1" +
           i + ");#3" + i + "=PRODUCT_DEFINITION('','',#2" + i + ",$);#4" + i + "=SHAPE_REPRESENTATION('',(" +
           items + "),#2);#5" + i + "=PRODUCT_DEFINITION_SHAPE('','',#3" + i + ");#6" + i +
           "=SHAPE_DEFINITION_REPRESENTATION(#5" + i + ",#4" + i + ");";
}
// Use number `i`, of one product in another.
std::string UseBetween(const std::string& i, const std::string& parent, const std::string& child) {
    return "#7" + i + "=(REPRESENTATION_RELATIONSHIP('','',#4" + child + ",#4" + parent +
           ")REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(#5)SHAPE_REPRESENTATION_RELATIONSHIP());#8" + i +
           "=NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',#3" + parent + ",#3" + child + ",$);#9" + i +
           "=PRODUCT_DEFINITION_SHAPE('','',#8" + i + ");#95" + i +
           "=CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(#7" + i + ",#9" + i + ");";
}
// A number of four digits, so that none is the start of another.
std::string Four(const std::string& i) {
    return std::to_string(4000 + std::stoi(i));
}
std::string Next(const std::string& i) {
    return std::to_string(4001 + std::stoi(i));
}

constexpr Case kStructures[] = {
    {"products", [](int n) { return Times(n, [](const auto& i) { return ProductOf(Four(i), "#4"); }); }},
    {"uses of one product",
     [](int n) {
         return ProductOf("1111", "#4") + ProductOf("2222", "#4") +
                Times(n, [](const auto& i) { return UseBetween(Four(i), "1111", "2222"); });
     }},
    {"a chain of products",
     [](int n) {
         return Times(n, [](const auto& i) {
             return ProductOf(Four(i), "#4") + UseBetween(Four(i), Four(i), Next(i));
         });
     }},
    {"circles of two products",
     [](int n) {
         return Times(n, [](const auto& i) {
             const std::string other = std::stoi(i) % 2 == 0 ? Next(i) : std::to_string(3999 + std::stoi(i));
             return ProductOf(Four(i), "#4") + UseBetween(Four(i), Four(i), other);
         });
     }},
    {"mapped items",
     [](int n) {
         return ProductOf("1111", Times(n, [](const auto& i) { return "#7" + Four(i) + ","; }) + "#4") +
                ProductOf("2222", "#4") + "#6=REPRESENTATION_MAP(#4,#42222);" +
                Times(n, [](const auto& i) { return "#7" + Four(i) + "=MAPPED_ITEM('',#6,#4);"; });
     }},
    {"representations in one another",
     [](int n) {
         return ProductOf("1111", "#4") + Times(n, [](const auto& i) {
                    return "#7" + Four(i) + "=SHAPE_REPRESENTATION('',(#4),#2);#8" + Four(i) +
                           "=(REPRESENTATION_RELATIONSHIP('','',#7" + Four(i) +
                           ",#41111)REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(#5)"
                           "SHAPE_REPRESENTATION_RELATIONSHIP());";
                });
     }},
    {"documents of one product", [](int n) {
         return ProductOf("1111", "#4") + Times(n, [](const auto& i) {
                    return "#7" + Four(i) + "=DOCUMENT_FILE('a.stp','','',$,'',$);#8" + Four(i) +
                           "=APPLIED_DOCUMENT_REFERENCE(#7" + Four(i) + ",'',(#31111));";
                });
     }}};

std::uint64_t StepsOfShell(const std::string& data) {
    const Padded text("ISO-10303-21;DATA;" + data + "ENDSEC;");
    const std::uint64_t before = StepsTaken();
    const ExchangeFile file(text.Text());
    const TellLoss silent = [](std::uint64_t, const std::string&) {};
    const SourceBody body = FacesOf(file, 1, silent);
    std::string written;
    StringSink sink(&written);
    P21Writer out(&sink);
    FaceWriter writer(file, &out, silent);
    writer.Announce(body.faces);
    for (const SourceFace& face : body.faces) { EXPECT_TRUE(writer.Write(face, {})); }
    return StepsTaken() - before;
}
std::uint64_t StepsOfStructure(const std::string& data) {
    const Padded text("ISO-10303-21;DATA;" + std::string(kContext) + data + "ENDSEC;");
    const std::uint64_t before = StepsTaken();
    const ExchangeFile file(text.Text());
    ReadP21Structure(file);
    return StepsTaken() - before;
}
std::uint64_t StepsOfDocument(const std::string& content) {
    const std::string text = "<DataContainer>" + content + "</DataContainer>";
    FileStructure structure;
    std::string error;
    const std::uint64_t before = StepsTaken();
    EXPECT_TRUE(ReadXmlStructure(text, &structure, &error)) << error;
    return StepsTaken() - before;
}
std::uint64_t StepsOfElements(const std::string& data) {
    const Padded text("ISO-10303-21;DATA;" + data + "ENDSEC;");
    const std::uint64_t before = StepsTaken();
    const ExchangeFile file(text.Text());
    ReadElements(file);
    return StepsTaken() - before;
}

TEST(PrepareGrowth, OfADocumentIsThatOfItsText) {
    for (const Case& tried : kDocuments) {
        const std::uint64_t once = StepsOfDocument(tried.text(500));
        EXPECT_GT(once, 1000u) << tried.name;
        EXPECT_LT(StepsOfDocument(tried.text(2000)), 6 * once) << tried.name;
    }
}

TEST(PrepareGrowth, OfAShellIsThatOfItsText) {
    for (const Case& tried : kShells) {
        const std::uint64_t once = StepsOfShell(tried.text(300));
        EXPECT_GT(once, 1000u) << tried.name;
        EXPECT_LT(StepsOfShell(tried.text(1200)), 6 * once) << tried.name;
    }
}

TEST(PrepareGrowth, OfAStructureIsThatOfItsText) {
    for (const Case& tried : kStructures) {
        const std::uint64_t once = StepsOfStructure(tried.text(300));
        EXPECT_GT(once, 1000u) << tried.name;
        EXPECT_LT(StepsOfStructure(tried.text(1200)), 6 * once) << tried.name;
    }
}

TEST(PrepareGrowth, OfElementsIsThatOfTheirText) {
    for (const Case& tried : kElementFiles) {
        const std::uint64_t once = StepsOfElements(tried.text(500));
        EXPECT_GT(once, 1000u) << tried.name;
        EXPECT_LT(StepsOfElements(tried.text(2000)), 6 * once) << tried.name;
    }
}

} // namespace
} // namespace tarnwick::prepare
