#include "prepare/xml/xml_placement.h"

#include <gmock/gmock.h>

#include <string>

namespace tarnwick::prepare {
namespace {

using testing::ElementsAre;

std::optional<Transform> Read(const std::string& placement, double unit = 1) {
    pugi::xml_document document;
    document.load_buffer(placement.data(), placement.size());
    UidTable uids;
    for (const pugi::xpath_node& found : document.select_nodes("//*[@uid]")) {
        uids.try_emplace(UidOf(found.node()), found.node());
    }
    PlacementContext context;
    context.uids = &uids;
    context.unitOf = [unit](pugi::xml_node) { return unit; };
    context.isTurnedAround = [](const AxisPair&) { return false; };
    return ReadPlacement(document.document_element(), context);
}

// A quarter turn about z: x becomes y, y becomes -x.
const Transform kQuarter{{0, -1, 0, 1, 0, 0, 0, 0, 1}, {1, 2, 3}};

void ExpectNear(const std::optional<Transform>& t, const Transform& wanted) {
    ASSERT_TRUE(t);
    for (std::size_t i = 0; i < 9; ++i) { EXPECT_NEAR(t->linear[i], wanted.linear[i], 1e-12) << i; }
    EXPECT_NEAR(Length(t->move - wanted.move), 0, 1e-12);
}

TEST(XmlPlacement, NineNumbersAreTheColumns) {
    const std::string text =
        "<Placement><CartesianTransformation><TranslationVector>1 2 3</TranslationVector>"
        "<RotationMatrix>0 1 0 -1 0 0 0 0 1</RotationMatrix></CartesianTransformation>"
        "</Placement>";
    ExpectNear(Read(text), kQuarter);
    ExpectNear(Read(text, 10), {kQuarter.linear, {10, 20, 30}});
}

TEST(XmlPlacement, NumbersMayBeApartByCommasOrInElements) {
    ExpectNear(Read("<P><TranslationVector>\n +1.,2e0\t3 </TranslationVector><RotationMatrix><n>0</n><n>1</n>"
                    "<n>0</n><n>-1</n><n>0</n><n>0</n><n>0</n><n>0</n><n>1</n></RotationMatrix></P>"),
               kQuarter);
}

TEST(XmlPlacement, TwelveAndSixteenNumbersAreColumnsOrRows) {
    for (const char* const numbers :
         {"0 1 0 -1 0 0 0 0 1 1 2 3", "0 -1 0 1 1 0 0 2 0 0 1 3", "0 1 0 0 -1 0 0 0 0 0 1 0 1 2 3 1",
          "0 -1 0 1 1 0 0 2 0 0 1 3 0 0 0 1"}) {
        ExpectNear(Read("<P><TransformationMatrix>" + std::string(numbers) + "</TransformationMatrix></P>"),
                   kQuarter);
    }
    EXPECT_FALSE(MatrixOf(std::vector<double>(16, 1)));
    EXPECT_FALSE(MatrixOf(std::vector<double>(10, 1)));
}

TEST(XmlPlacement, AnAxisPlacementIsOneByItself) {
    ExpectNear(Read("<P><AxisPlacement><Position>1 2 3</Position><Axis>0 0 5</Axis><RefDirection>0 2 1"
                    "</RefDirection></AxisPlacement></P>"),
               kQuarter);
    ExpectNear(
        Read("<P><AxisPlacement uidRef='a'/><X uid='a'><Position><Point uidRef='p'/></Position>"
             "<RefDirection>0 1 0</RefDirection></X><Y uid='p'><Coordinates>1 2 3</Coordinates></Y></P>"),
        kQuarter);
}

TEST(XmlPlacement, OfTwoAxisPlacementsTheTargetIsWhereTheOriginGoes) {
    ExpectNear(Read("<P><R><Origin uidRef='a'/><Target uidRef='b'/></R><A uid='a'><Position>1 0 0</Position>"
                    "</A><B uid='b'><Position>1 3 3</Position><Axis>0 0 1</Axis><RefDirection>0 1 0"
                    "</RefDirection></B></P>"),
               kQuarter);
}

TEST(XmlPlacement, WhatCantBeReadIsNone) {
    for (const char* const text : {"<P/>", "<P>text</P>", "<P uidRef='x'/>", "<P><Origin/><Target/></P>",
                                   "<P><RotationMatrix>1 0 0 0 1 0 0 0</RotationMatrix></P>",
                                   "<P><RotationMatrix>1 0 0 1 0 0 1 0 0</RotationMatrix></P>",
                                   "<P><RotationMatrix>nan 0 0 0 1 0 0 0 1</RotationMatrix></P>",
                                   "<P><TranslationVector>1 2</TranslationVector></P>",
                                   "<P><AxisPlacement><Position>x</Position></AxisPlacement></P>"}) {
        EXPECT_FALSE(Read(text)) << text;
    }
}

} // namespace
} // namespace tarnwick::prepare
