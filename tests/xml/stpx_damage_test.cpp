// A good document, cut at every byte and with every byte damaged in turn: under AddressSanitizer nothing
// reads past its end, and none is taken that lacks its end.

#include "support/formats.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick {
namespace {

using namespace test;

std::string GoodText() {
    return Document(
        "<!-- comment -->\n<Document><DocumentVersion uid=\"v1\"><DocumentDefinition><Files><DigitalFile "
        "uidRef=\"f1\"/></Files></DocumentDefinition></DocumentVersion></Document>\n" +
        Part("top", "<ShapeDependentProperty xsi:type=\"n0:BoundingBox\"><PointMin uidRef=\"a\"/><PointMax "
                    "uidRef=\"b\"/></ShapeDependentProperty>" +
                        Use("o1", "1 2.5 -3e2")) +
        Part("wheel", UsedAs("o1") + Assigned("v1")) + File("f1", "wheel.stp") +
        "<RepresentationContext uid=\"c\"><RepresentationItem uid=\"a\"><P>0 1 2</P></RepresentationItem>"
        "<RepresentationItem uid=\"b\"><P>3 4 5</P></RepresentationItem></RepresentationContext>\n");
}

TEST(StpxDamage, APrefixOfADocumentIsGivenUpUnlessItHasTheContainersEnd) {
    const std::string text = GoodText();
    const std::size_t end = text.find("</DataContainer>") + 16;
    for (const int boxMode : {0, 1}) {
        for (std::size_t cut = 0; cut <= text.size(); ++cut) {
            Tables tables;
            const ReadDocument read(tables, std::string_view(text).substr(0, cut), boxMode);
            ASSERT_EQ(read.problem == nullptr, cut >= end) << cut;
        }
    }
}

TEST(StpxDamage, ADamagedByteNeverLeadsOutOfTheText) {
    const std::string text = GoodText();
    const std::string letters("<>=\"/ \n\rx\0Z", 11); // no "&", which is never got past
    for (const int boxMode : {0, 1}) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            for (const char c : letters) {
                std::string damaged = text;
                damaged[i] = c;
                Tables tables;
                const ReadDocument read(tables, damaged, boxMode);
                if (read.problem != nullptr) { ASSERT_EQ(read.document.root, nullptr); }
            }
        }
    }
}

} // namespace
} // namespace tarnwick
