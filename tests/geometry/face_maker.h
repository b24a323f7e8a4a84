#pragma once

#include "geometry/face_outcome.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarnwick::test {

// Faces and lists in the forms that files have them in, and damage to them; the same for the same seed.
class Maker {
public:
    explicit Maker(std::uint32_t seed) : random_(seed) {}

    int Below(int limit) { return static_cast<int>(random_() % static_cast<std::uint32_t>(limit)); }
    bool OneIn(int n) { return Below(n) == 0; }

    std::string Real() {
        std::string text = OneIn(3) ? "-" : OneIn(20) ? "+" : "";
        text += std::to_string(Below(OneIn(3) ? 100000 : 10));
        if (!OneIn(10)) {
            text += ".";
            for (int digits = Below(9); digits > 0; --digits) { text += static_cast<char>('0' + Below(10)); }
        }
        if (OneIn(6)) {
            text += OneIn(2) ? "E-" : OneIn(2) ? "E+" : "E";
            text += std::to_string(Below(11));
        }
        return text;
    }
    std::string Blank(int oneIn = 12) { return OneIn(oneIn) ? (OneIn(3) ? "  " : " ") : ""; }
    std::string Triple(const std::string& a, const std::string& b, const std::string& c) {
        return "(" + Blank() + a + Blank() + "," + Blank() + b + "," + Blank() + c + Blank() + ")";
    }
    std::string Triples(int count) {
        std::string text = "(" + Blank();
        for (int i = 0; i < count; ++i) {
            text += (i > 0 ? "," + Blank(20) : "") + Triple(Real(), Real(), Real());
        }
        return text + ")";
    }
    std::string Index(int most) {
        return std::to_string(OneIn(60) ? Below(3 * most) - most : 1 + Below(most));
    }
    std::string Indices(int count, int most) {
        std::string text = "(";
        for (int i = 0; i < count; ++i) { text += (i > 0 ? "," + Blank(20) : "") + Index(most); }
        return text + Blank(30) + ")";
    }
    std::string IndexLists(int most) {
        if (OneIn(4)) { return OneIn(2) ? "$" : "()"; }
        std::string text = "(";
        for (int lists = 1 + Below(4), i = 0; i < lists; ++i) {
            text += (i > 0 ? "," : "") + Indices(1 + Below(7), most);
        }
        return text + ")";
    }
    std::string Triangles(int most) {
        std::string text = "(" + Blank();
        for (int count = 1 + Below(8), i = 0; i < count; ++i) {
            text += (i > 0 ? "," + Blank(20) : "") + Triple(Index(most), Index(most), Index(most));
        }
        return text + ")";
    }
    std::string CoordinatesList(int id, int points) {
        return "#" + std::to_string(id) + "=COORDINATES_LIST(''," + std::to_string(points) + "," + Blank() +
               Triples(points) + ");";
    }
    std::string Face(int id, int listId, int points) {
        const int code = Below(3);
        std::string text = "#" + std::to_string(id) + "=";
        text += code == 0   ? "TRIANGULATED_FACE("
                : code == 1 ? "COMPLEX_TRIANGULATED_FACE("
                            : "COMPLEX_TRIANGULATED_SURFACE_SET(";
        text += OneIn(30)   ? "'a,b'"
                : OneIn(30) ? "'a name that is rather long and says nothing at all about it'"
                            : "''";
        text += "," + Blank() + "#" + std::to_string(OneIn(60) ? 99 : listId);
        // A blank before the "$" would send the walk for pnmax to the next digit.
        text += OneIn(4) ? ",$" : "," + Blank() + std::to_string(Below(2 * points));
        int vertices = points;
        std::string pnindex = OneIn(2) ? "$" : "()";
        if (OneIn(2)) {
            vertices = 1 + Below(points);
            pnindex = "(";
            for (int i = 0; i < vertices; ++i) {
                pnindex += (i > 0 ? "," : "") + std::to_string(1 + Below(points));
            }
            pnindex += ")";
        }
        const int normals = Below(6);
        text += "," + Blank();
        text += normals == 0   ? "$"
                : normals == 1 ? "()"
                : normals == 2 ? Triples(1)
                : normals == 3 ? Triples(1 + Below(points + 1))
                               : Triples(vertices);
        if (code != 2) { text += "," + Blank() + (OneIn(2) ? "$" : "#" + std::to_string(Below(500))); }
        text += "," + Blank() + pnindex;
        text += "," + Blank() + (code == 0 ? Triangles(vertices) : IndexLists(vertices));
        if (code != 0) { text += "," + Blank() + IndexLists(vertices); }
        return text + ");";
    }
    // Deletes, inserts or replaces a character after the line's number.
    void Damage(std::string* line) {
        static constexpr std::string_view kCharacters = "  \n\n\r\t(())),,,$#'0123456789.-E;\x80";
        const std::size_t start = line->find('=') + 1;
        const std::size_t place =
            start + static_cast<std::size_t>(Below(static_cast<int>(line->size() - start)));
        const char c =
            OneIn(40) ? '\0'
                      : kCharacters[static_cast<std::size_t>(Below(static_cast<int>(kCharacters.size())))];
        switch (Below(3)) {
        case 0:
            line->erase(place, 1 + static_cast<std::size_t>(OneIn(10) ? Below(20) : 0));
            break;
        case 1:
            line->insert(place, 1, c);
            break;
        default:
            (*line)[place] = c;
        }
    }

private:
    std::mt19937 random_;
};

// A text of one or two lists and up to four faces. The lists stand before or after their faces.
inline std::vector<EntityLine> RandomLines(Maker& maker, int damages) {
    const int lists = 1 + maker.Below(2);
    int points[2];
    std::vector<std::string> lines;
    for (int list = 0; list < lists; ++list) {
        points[list] = 1 + maker.Below(12);
        lines.push_back(maker.CoordinatesList(10 + list, points[list]));
    }
    const int faces = 1 + maker.Below(4);
    for (int face = 0; face < faces; ++face) {
        const int list = maker.Below(lists);
        lines.push_back(maker.Face(20 + face, 10 + list, points[list]));
    }
    if (maker.OneIn(2)) { std::swap(lines.front(), lines.back()); }
    std::vector<EntityLine> entities(lines.begin(), lines.end());
    for (; damages > 0; --damages) {
        maker.Damage(
            &entities[static_cast<std::size_t>(maker.Below(static_cast<int>(entities.size())))].text);
    }
    return entities;
}

} // namespace tarnwick::test
