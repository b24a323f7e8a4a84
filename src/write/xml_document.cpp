#include "write/xml_document.h"

namespace tarnwick {

// Some readers of such documents want a tag to end right after its last attribute, and all its attributes on
// one line.
void XmlDocument::Begin(std::string_view program) {
    Line(0, R"(<?xml version="1.0" encoding="UTF-8"?>)");
    Line(0,
         R"(<n0:Uos xmlns:n0="http://standards.iso.org/iso/ts/10303/-3001/-ed-1/tech/xml-schema/bo_model" )",
         R"(xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">)");
    Line(1, "<Header>");
    Line(2, "<TimeStamp>2024-01-01T00:00:00</TimeStamp>");
    Line(2, "<PreprocessorVersion>", EscapeXml(program), "</PreprocessorVersion>");
    Line(1, "</Header>");
    Line(1, R"(<DataContainer xsi:type="n0:AP242DataContainer">)");
}

void XmlDocument::AddPart(const XmlPart& part) {
    const std::size_t number = ++parts_;
    const std::string id = EscapeXml(part.id);
    Line(2, R"(<Part uid="p)", number, R"(">)");
    Line(3, R"(<Id id=")", id, R"("/>)");
    Line(3, "<Name>");
    Line(4, "<CharacterString>", id, "</CharacterString>");
    Line(3, "</Name>");
    Line(3, "<Versions>");
    Line(4, R"(<PartVersion uid="pv)", number, R"(">)");
    Line(5, "<Views>");
    Line(6, R"(<PartView uid="v)", number, R"(">)");
    for (const std::size_t occurrence : part.occurrences) {
        Line(7, R"(<Occurrence uid="o)", occurrence, R"(" xsi:type="n0:SingleOccurrence"><Id id=")",
             occurrence, R"("/></Occurrence>)");
    }
    if (part.file.empty()) {
        AddUses(part);
    } else {
        AddAssignment(number);
    }
    Line(6, "</PartView>");
    Line(5, "</Views>");
    Line(4, "</PartVersion>");
    Line(3, "</Versions>");
    Line(2, "</Part>");
    if (part.file.empty()) { return; }
    if (route_ == FileRoute::kDirect) {
        AddFile(number, part.file); // here a reader knows at once whose it is
    } else {
        files_.emplace_back(number, part.file);
    }
}

void XmlDocument::End() {
    for (const auto& [number, name] : files_) { AddDocument(number, name); }
    for (const auto& [number, name] : files_) { AddFile(number, name); }
    Line(1, "</DataContainer>");
    Line(0, "</n0:Uos>");
    out_.Flush();
}

void XmlDocument::Put(const Vec3& v) {
    out_.PutReal(v.x);
    out_.Put(' ');
    out_.PutReal(v.y);
    out_.Put(' ');
    out_.PutReal(v.z);
}

void XmlDocument::AddUses(const XmlPart& part) {
    std::size_t number = part.firstUse;
    for (const Placement& at : part.uses) {
        Line(7, R"(<ViewOccurrenceRelationship uid="u)", number,
             R"(" xsi:type="n0:NextAssemblyOccurrenceUsage">)");
        Line(8, R"(<Related uidRef="o)", number, R"("/>)");
        Line(8, "<Placement>");
        // Column by column.
        Line(9, "<RotationMatrix>", at.x, " ", Cross(at.z, at.x), " ", at.z, "</RotationMatrix>");
        Line(9, "<TranslationVector>", at.origin, "</TranslationVector>");
        Line(8, "</Placement>");
        Line(7, "</ViewOccurrenceRelationship>");
        ++number;
    }
}

void XmlDocument::AddAssignment(std::size_t number) {
    Line(7, R"(<DocumentAssignment uid="da)", number, R"(">)");
    Line(8, R"(<AssignedDocument uidRef=")", route_ == FileRoute::kDirect ? "f" : "dv", number, R"("/>)");
    Line(7, "</DocumentAssignment>");
}

void XmlDocument::AddFile(std::size_t number, std::string_view name) {
    Line(2, R"(<File uid="f)", number, R"(" xsi:type="n0:DigitalFile">)");
    Line(3, "<Id>");
    Line(4, R"(<Identifier id=")", EscapeXml(name), R"("/>)");
    Line(3, "</Id>");
    Line(2, "</File>");
}

void XmlDocument::AddDocument(std::size_t number, std::string_view name) {
    Line(2, R"(<Document uid="d)", number, R"(">)");
    Line(3, R"(<Id id=")", EscapeXml(name), R"("/>)");
    Line(3, "<Versions>");
    Line(4, R"(<DocumentVersion uid="dv)", number, R"(">)");
    Line(5, "<Views>");
    Line(6, R"(<DocumentDefinition uid="dd)", number, R"(" xsi:type="n0:DigitalDocumentDefinition">)");
    Line(7, "<Files>");
    Line(8, R"(<DigitalFile uidRef="f)", number, R"("/>)");
    Line(7, "</Files>");
    Line(6, "</DocumentDefinition>");
    Line(5, "</Views>");
    Line(4, "</DocumentVersion>");
    Line(3, "</Versions>");
    Line(2, "</Document>");
}

std::string EscapeXml(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

} // namespace tarnwick
