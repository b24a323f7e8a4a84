#include "prepare/xml/xml_nodes.h"

#include <charconv>
#include <cmath>

namespace tarnwick::prepare {

namespace {

constexpr int kMostSteps = 16;
constexpr int kMostAttributes = 64;
constexpr int kMostChildren = 256;

std::string_view AfterLast(std::string_view text, char c) {
    const std::size_t at = text.rfind(c);
    return at == std::string_view::npos ? text : text.substr(at + 1);
}

bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) { text.remove_prefix(1); }
    while (!text.empty() && IsBlank(text.back())) { text.remove_suffix(1); }
    return text;
}

pugi::xml_node ElementFrom(pugi::xml_node node) {
    for (int i = 0; i < kMostChildren; ++i, node = node.next_sibling()) {
        if (!node || node.type() == pugi::node_element) { return node; }
    }
    return {};
}

} // namespace

std::string_view LocalName(pugi::xml_node node) {
    return AfterLast(node.name(), ':');
}

std::string_view AttributeOf(pugi::xml_node node, std::string_view name) {
    pugi::xml_attribute attribute = node.first_attribute();
    for (int i = 0; attribute && i < kMostAttributes; ++i, attribute = attribute.next_attribute()) {
        if (AfterLast(attribute.name(), ':') == name) { return attribute.value(); }
    }
    return {};
}

std::string_view TypeOf(pugi::xml_node node) {
    return AfterLast(AttributeOf(node, "type"), ':');
}

pugi::xml_node FirstElement(pugi::xml_node node) {
    return ElementFrom(node.first_child());
}

pugi::xml_node NextElement(pugi::xml_node node) {
    return ElementFrom(node.next_sibling());
}

pugi::xml_node ChildOf(pugi::xml_node node, std::string_view name) {
    pugi::xml_node child = FirstElement(node);
    for (int i = 0; child && i < kMostChildren; ++i, child = NextElement(child)) {
        if (LocalName(child) == name) { return child; }
    }
    return {};
}

pugi::xml_node Referred(pugi::xml_node node, const UidTable& table) {
    for (int step = 0; node && step < kMostSteps; ++step) {
        const std::string_view reference = UidRefOf(node);
        if (reference.empty()) { return node; }
        const auto found = table.find(reference);
        node = found == table.end() ? pugi::xml_node() : found->second;
    }
    return {};
}

std::string_view OwnTextOf(pugi::xml_node node) {
    pugi::xml_node child = node.first_child();
    for (int i = 0; child && i < kMostChildren; ++i, child = child.next_sibling()) {
        const bool isText = child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata;
        const std::string_view text = isText ? Trimmed(child.value()) : std::string_view{};
        if (!text.empty()) { return text; }
    }
    return {};
}

std::string_view TextOf(pugi::xml_node node) {
    for (int step = 0; node && step < kMostSteps; ++step) {
        const std::string_view text = OwnTextOf(node);
        if (!text.empty()) { return text; }
        node = FirstElement(node);
    }
    return {};
}

std::string_view IdOf(pugi::xml_node node) {
    pugi::xml_node id = ChildOf(node, "Id");
    for (int step = 0; id && step < kMostSteps; ++step) {
        const std::string_view value = Trimmed(AttributeOf(id, "id"));
        if (!value.empty()) { return value; }
        const std::string_view text = OwnTextOf(id);
        if (!text.empty()) { return text; }
        id = FirstElement(id);
    }
    return {};
}

std::vector<double> NumbersOf(std::string_view text, std::size_t most) {
    std::vector<double> numbers;
    const char* p = text.data();
    const char* const end = p + text.size();
    while (numbers.size() < most) {
        while (p < end && (IsBlank(*p) || *p == ',' || *p == ';')) { ++p; }
        if (p < end && *p == '+') { ++p; }
        double value = 0;
        const auto [after, error] = std::from_chars(p, end, value);
        if (error != std::errc() || !std::isfinite(value)) { return numbers; }
        numbers.push_back(value);
        p = after;
    }
    return numbers;
}

std::vector<double> NumbersIn(pugi::xml_node node, std::size_t most, const UidTable& table) {
    for (int step = 0; step < kMostSteps; ++step) {
        node = Referred(node, table);
        if (!node) { return {}; }
        std::vector<double> numbers = NumbersOf(OwnTextOf(node), most);
        if (!numbers.empty()) { return numbers; }
        // One number in each element, or all in one.
        std::size_t elements = 0;
        for (pugi::xml_node child = FirstElement(node); child && ++elements <= most;
             child = NextElement(child)) {
            for (const double number : NumbersOf(OwnTextOf(child), most)) {
                if (numbers.size() < most) { numbers.push_back(number); }
            }
        }
        if (!numbers.empty()) { return numbers; }
        node = FirstElement(node);
    }
    return {};
}

} // namespace tarnwick::prepare
