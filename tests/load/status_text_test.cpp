#include "load/load_file.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace tarnwick::test {
namespace {

std::string Text(std::int32_t triangles, double seconds, bool withWords = true) {
    SceneView view;
    view.loaded.drawnTriangles = triangles;
    view.loadSeconds = seconds;
    return StatusText(view, withWords);
}

TEST(StatusText, HasTheTrianglesAndTheSeconds) {
    EXPECT_EQ(Text(1024, 0.125), "Nb Triangles: 1024  CPU tot: 0.125s ");
    EXPECT_EQ(Text(0, 0), "Nb Triangles: 0  CPU tot: 0.000s ");
    EXPECT_EQ(Text(2147483647, 12345.6784), "Nb Triangles: 2147483647  CPU tot: 12345.678s ");
    EXPECT_EQ(Text(-1, 1), "Nb Triangles: -1  CPU tot: 1.000s ");
}

TEST(StatusText, RoundsTheSecondsLikeTheCLibrary) {
    for (const double seconds : {0.0005, 0.0015, 0.0004999, 0.9995, 9.9995, 1.0625, 1.03125, 99.9999, 1e9}) {
        char expected[100];
        std::snprintf(expected, sizeof expected, "Nb Triangles: 7  CPU tot: %5.3fs ", seconds);
        EXPECT_EQ(Text(7, seconds), expected);
    }
}

TEST(StatusText, HasNoWordsForASummary) {
    EXPECT_EQ(Text(1024, 0.125, false), "1024  CPU tot: 0.125s ");
}

TEST(StatusText, HasAPointInEveryLocale) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) { GTEST_SKIP() << "no locale with a comma here"; }
    EXPECT_EQ(Text(1, 1.5), "Nb Triangles: 1  CPU tot: 1.500s ");
    std::setlocale(LC_ALL, "C");
}

} // namespace
} // namespace tarnwick::test
