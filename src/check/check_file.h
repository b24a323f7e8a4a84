#pragma once

#include "check/findings.h"
#include "exchange/exchange_file.h"
#include "p21/step_model.h"
#include "prepare/structure/annotations.h"
#include "prepare/structure/structure.h"
#include "text/look_up.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// How many entities there are of each keyword.
using KeywordCounts = std::map<std::string, std::int64_t, std::less<>>;

// What one file tells about itself and about other files.
struct FileReferences {
    // A document reference: the name of a file and the product that it belongs to, by their places in
    // `names`.
    struct Reference {
        std::size_t file;
        std::size_t product;
    };
    std::vector<Reference> references;
    std::vector<std::string> names;        // each once, however often it is referred to
    std::vector<std::string> bareProducts; // that have no file here
    std::vector<Finding> bareFindings;     // on each of them; it holds unless another file names one
    std::vector<std::string> parents;      // products that use others
    // By the places of files in `names`: other names that a file may have, and the finding for one that is
    // there under such a name.
    struct OtherNames {
        std::vector<std::string> names;
        Finding finding;
    };
    std::map<std::size_t, OtherNames> otherNames;
    prepare::FileStructure structure; // what the file really holds
    std::int64_t elements = 0;        // finite elements
    std::int64_t elementsDrawn = 0;
    bool hasElementSurface = false; // elements that aren't drawn have one
    bool isAssembly = false;
    bool hasTessellation = false;
    bool isDrawn = false; // it has a solid, shell or set that is read
};

// The check of one P21 file: what its pieces share. Used by one thread, as the model is.
struct CheckedFile {
    const StepModel& model;
    std::vector<Finding>& findings;
    const ExchangeFile& exchange; // the same text, read as the standard defines it
    const prepare::FileStructure& structure;
    prepare::Annotations annotations{exchange};
    LookUp<std::int32_t, bool> drawn = {}; // solids, shells, surface sets and faces that are read

    // Adds a finding at the line of an entity.
    void Add(FindingKind kind, const P42Ent* entity, std::string text);
    // The same at another place in the file's text.
    void AddAt(FindingKind kind, const P42Ent* entity, const char* place, std::string text);
    // The same at an entity that the readers may not know.
    void AddAt(FindingKind kind, std::uint64_t entity, std::string text);
    // Adds one on the whole file.
    void Add(FindingKind kind, std::string text);

    // Whether a name holds a comma, at which readers that skip the name stop too early; adds that finding,
    // with the outcome.
    bool HasComma(const P42Ent* entity, std::string_view name, const char* outcome);
    // Whether a reader that goes past `commas` commas to the next `target`, even inside strings, misses the
    // first one in `argument`; adds that finding, with the outcome.
    bool IsMissed(const P42Ent* entity, std::string_view entityText, int commas, char target,
                  std::string_view argument, const char* outcome);
    // Adds a finding for a list of references that is damaged, or in which a line ends before a reference.
    void CheckReferenceList(const P42Ent* entity, std::string_view list);
    // Adds a finding when the first string of an entity is so long that the program ends on it. Returns
    // whether it is short enough.
    bool CheckName(const P42Ent* entity);
    // Adds a finding for a product or material that isn't there, or whose name ends the program.
    void CheckRootProduct();
    void CheckMaterials();
};

// What a file is in a load.
enum class FileRole { kTop, kPartOrAssembly, kPart };

// Reads the model as StepModel::Read does. Where that would end the process on the name of a category, it
// adds a finding and leaves the root as the scan found it.
int ReadToCheck(StepModel& model, std::vector<Finding>* findings);

// Checks one file that ReadToCheck returned `result` for. `references` takes what an assembly says of others.
void CheckStepFile(const StepModel& model, int result, FileRole role, KeywordCounts* counts,
                   std::vector<Finding>* findings, FileReferences* references);

// One function for each stage of reading. None of them changes the model's text.

// How entities are laid out on their lines, and which of them the scan doesn't see.
void CheckLines(CheckedFile& file);
// Keywords, numbers and references of all entities.
void CheckEntities(CheckedFile& file, KeywordCounts* counts);
// The way from the representation to the faces, and what it leaves out.
void CheckPart(CheckedFile& file);
// What would keep the shapes in an assembly's own file from being drawn if each part had a file of its own.
void CheckOwnShapes(CheckedFile& file);
// Exact shape without tessellation, and files without any shape, which an assembly may be.
void CheckExactShape(CheckedFile& file, bool isAssembly);
// The way from the faces that are drawn to their colours.
void CheckColours(CheckedFile& file);
// Products, their placements and their files.
void CheckAssembly(CheckedFile& file, bool isTop, FileReferences* references);
// Elements of a finite element mesh.
void CheckFiniteElements(CheckedFile& file, FileReferences* references);

// Whether the file has tessellation that is no annotation.
bool HasTessellation(CheckedFile& file);

// "22 exact solids and 1 exact surface"
std::string ExactShapeText(std::size_t solids, std::size_t surfaces);

// "#12"
std::string Number(std::int32_t id);

} // namespace tarnwick
