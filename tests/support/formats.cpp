#include "support/formats.h"

#include "formats/load_commands.h"
#include "load/view_setup.h"
#include "platform/console.h"
#include "report/report.h"

#include <zlib.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace tarnwick::test {

std::string TestFolder::Write(const std::string& name, std::string_view content) const {
    std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
    return folder_.Write(name, content);
}

std::string TestFolder::WriteGzip(const std::string& name, std::string_view content) const {
    gzFile file = gzopen(Path(name).c_str(), "wb");
    gzwrite(file, content.data(), static_cast<unsigned>(content.size()));
    gzclose(file);
    return Path(name);
}

ConsoleText::ConsoleText() {
    SetConsoleSink(Take, this);
}

ConsoleText::~ConsoleText() {
    SetConsoleSink(nullptr, nullptr);
}

void ConsoleText::Take(void* context, const char* text, std::size_t length) {
    static_cast<ConsoleText*>(context)->text_.append(text, length);
}

int ConsoleText::Count(std::string_view part) const {
    int count = 0;
    for (std::size_t at = text_.find(part); at != std::string::npos; at = text_.find(part, at + 1)) {
        ++count;
    }
    return count;
}

Tables::Tables() {
    assemblies.Allocate();
    parts.Allocate();
}

ReadDocument::ReadDocument(Tables& tables, std::string_view text, int boxMode, bool plainly) {
    document.plainly = plainly;
    Read(tables, text, boxMode);
}

ReadDocument::ReadDocument(Tables& tables, std::string_view text, int boxMode, Helpers& helpers,
                           std::size_t pieceBytes) {
    document.helpers = &helpers;
    document.pieceBytes = pieceBytes;
    Read(tables, text, boxMode);
}

void ReadDocument::Read(Tables& tables, std::string_view text, int boxMode) {
    document.text = block.Get(text.size());
    std::memcpy(document.text, text.data(), text.size());
    document.size = text.size();
    document.name = "test.stpx";
    problem = ReadStpxDocument(document, boxMode, tables.assemblies, tables.parts, tables.arena);
}

ProductNode* ReadDocument::Product(std::string_view name) const {
    for (ProductNode* const product : document.products) {
        if (product != nullptr && product->name == name) { return product; }
    }
    return nullptr;
}

nlohmann::json Report(const SceneView& view) {
    return ParseJson(SceneReport(view, "", nullptr, true));
}

void LoadByEnding(SceneView& view, const std::string& path, const char* rootName, bool useThreads) {
    if (path.ends_with(".stpx") || path.ends_with(".stpxz")) {
        LoadStpxFile(view, path.c_str(), rootName, useThreads);
    } else if (path.ends_with(".stpj")) {
        LoadStpjFile(view, path.c_str());
    } else if (path.ends_with(".stpa")) {
        LoadZIPFile(view, path.c_str(), rootName, useThreads);
    } else {
        LoadStepFile(view, path.c_str(), useThreads);
    }
}

nlohmann::json LoadReport(const std::string& path, const char* rootName, bool useThreads) {
    SceneView view;
    LoadByEnding(view, path, rootName, useThreads);
    return Report(view);
}

std::string PartFile(const std::string& productName, int size) {
    const std::string x = std::to_string(size) + ".";
    return "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF'));\n"
           "ENDSEC;\nDATA;\n#1=PRODUCT('" +
           productName + "','','',(#2));\n#10=COORDINATES_LIST('',4,((0.,0.,0.),(" + x + ",0.,0.),(" + x +
           ",2.,0.),(0.,2.,3.)));\n"
           "#11=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),$,(1,2,3,4),((1,2,3),(1,3,4)));\n"
           "#12=TESSELLATED_SOLID('',(#11),$);\n#13=TESSELLATED_SHAPE_REPRESENTATION('',(#12),#3);\n"
           "ENDSEC;\nEND-ISO-10303-21;\n";
}

std::string Document(const std::string& content) {
    return "<?xml version=\"1.0\"?>\n<n0:Uos>\n<DataContainer>\n" + content + "</DataContainer>\n</n0:Uos>\n";
}

std::string Use(const std::string& uid, const std::string& translation, const std::string& rotation) {
    return "<ViewOccurrenceRelationship><Related uidRef=\"" + uid + "\"/>\n<Placement><RotationMatrix>" +
           rotation + "</RotationMatrix><TranslationVector>" + translation +
           "</TranslationVector></Placement></ViewOccurrenceRelationship>\n";
}

std::string Part(const std::string& name, const std::string& view) {
    return "<Part><Name><CharacterString>" + name + "</CharacterString></Name>\n<PartView>" + view +
           "</PartView></Part>\n";
}

std::string UsedAs(const std::string& uid) {
    return "<Occurrence uid=\"" + uid + "\"></Occurrence>\n";
}

std::string Assigned(const std::string& uid) {
    return "<DocumentAssignment><AssignedDocument uidRef=\"" + uid + "\"/></DocumentAssignment>\n";
}

std::string File(const std::string& uid, const std::string& name) {
    return "<File uid=\"" + uid + "\"><Id><Identifier id=\"" + name + "\"/></Id></File>\n";
}

} // namespace tarnwick::test
