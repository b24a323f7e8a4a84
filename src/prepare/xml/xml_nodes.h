#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// What the elements of a STEP XML document say. Texts are parts of the document's. Each function looks at a
// limited number of attributes, children and references, so that an element which many others lead to costs
// each of them little, whatever it holds.
namespace tarnwick::prepare {

// The elements of a document by their uid; the first counts.
using UidTable = std::unordered_map<std::string_view, pugi::xml_node>;

// Without the prefix of a namespace.
std::string_view LocalName(pugi::xml_node node);
// "SingleOccurrence" of xsi:type="n0:SingleOccurrence"; empty without one.
std::string_view TypeOf(pugi::xml_node node);
// Empty without one.
std::string_view AttributeOf(pugi::xml_node node, std::string_view name);
inline std::string_view UidOf(pugi::xml_node node) {
    return AttributeOf(node, "uid");
}
inline std::string_view UidRefOf(pugi::xml_node node) {
    return AttributeOf(node, "uidRef");
}

// The first child element with this local name; null where there is none.
pugi::xml_node ChildOf(pugi::xml_node node, std::string_view name);
pugi::xml_node FirstElement(pugi::xml_node node);
pugi::xml_node NextElement(pugi::xml_node node);

// What an element leads to: itself, or the element that its uidRef names. Null where that isn't there.
pugi::xml_node Referred(pugi::xml_node node, const UidTable& table);

// The text right inside an element, without blanks around it.
std::string_view OwnTextOf(pugi::xml_node node);
// The text of an element or of the first inside it that has one, as in <Name><CharacterString>.
std::string_view TextOf(pugi::xml_node node);
// The id of an element: <Id id="x"/>, <Id><Identifier id="x"/></Id> or <Id>x</Id>; empty without one.
std::string_view IdOf(pugi::xml_node node);

// The numbers of a text, at most `most`, up to the first that isn't one. Blanks, commas or semicolons
// separate them.
std::vector<double> NumbersOf(std::string_view text, std::size_t most);
// The numbers of an element, in its text or in those of the elements inside it.
std::vector<double> NumbersIn(pugi::xml_node node, std::size_t most, const UidTable& table);

} // namespace tarnwick::prepare
