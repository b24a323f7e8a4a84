#pragma once

#include "load/scene_view.h"
#include "platform/text_block.h"
#include "support/archive.h"
#include "support/json.h"
#include "support/loaded_file.h"
#include "support/temp_folder.h"
#include "xml/stpx_document.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

// A folder of its own for each test, gone with it.
class TestFolder {
public:
    // Writes a file and returns its path.
    std::string Write(const std::string& name, std::string_view content) const;
    std::string WriteGzip(const std::string& name, std::string_view content) const;
    std::string Path(const std::string& name) const { return folder_.Path(name); }

private:
    TempFolder folder_;
};

// What the console says while this lives.
class ConsoleText {
public:
    ConsoleText();
    ~ConsoleText();
    const std::string& Text() const { return text_; }
    bool Has(std::string_view part) const { return text_.find(part) != std::string::npos; }
    int Count(std::string_view part) const;

private:
    static void Take(void* context, const char* text, std::size_t length);
    std::string text_;
};

// One document read on its own, or after others into the same tables.
struct Tables {
    Tables();
    NamedProductTable assemblies;
    ProductTable parts;
    Arena arena;
};
struct ReadDocument {
    ReadDocument(Tables& tables, std::string_view text, int boxMode = 0, bool plainly = false);
    // With helpers, which read so many bytes at a time.
    ReadDocument(Tables& tables, std::string_view text, int boxMode, Helpers& helpers,
                 std::size_t pieceBytes);
    const char* problem;
    StpxDocument document;
    TextBlock block;
    // The product of this name in the document, or null.
    ProductNode* Product(std::string_view name) const;

private:
    void Read(Tables& tables, std::string_view text, int boxMode);
};

// The scene in the view, with all arrays.
nlohmann::json Report(const SceneView& view);
// Loads a file of any format into the view, by the ending of its name.
void LoadByEnding(SceneView& view, const std::string& path, const char* rootName, bool useThreads);
// The scene of a file that a new view has loaded.
nlohmann::json LoadReport(const std::string& path, const char* rootName, bool useThreads);

// A part of two triangles in a P21 file, its box from 0 to `size`, 2 and 3.
std::string PartFile(const std::string& productName, int size = 1);

// Elements of STEP XML.
std::string Document(const std::string& content);
std::string Use(const std::string& uid, const std::string& translation = "0 0 0",
                const std::string& rotation = "1 0 0 0 1 0 0 0 1");
std::string Part(const std::string& name, const std::string& view);
std::string UsedAs(const std::string& uid);
std::string Assigned(const std::string& uid);
std::string File(const std::string& uid, const std::string& name);

} // namespace tarnwick::test
