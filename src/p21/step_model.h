#pragma once

#include "p21/p42_ent.h"
#include "p21/text_walk.h"
#include "platform/arena.h"
#include "platform/helpers.h"
#include "text/text_file.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// What one reading thread keeps from file to file: the memory of the text, the marks of its lines and the
// memory of the entity index. A StepModel borrows it, and only one at a time.
struct ReaderWorkspace {
    TextMemory memory;
    LineMarks lines;
    Arena index;
    Helpers* helpers = nullptr; // may take part in the reading of a large file; null for none
};

// One opened ISO 10303-21 file: its whole text in one block, a record for each entity line, and a few ids and
// counters that the readers start from. The readers write into the text for a moment, so a model and its
// workspace belong to one thread. Nothing that outlives the model may point into its text or its index.
struct StepModel {
    // What Read returns.
    static constexpr int kRead = 0;
    static constexpr int kNotOpened = 1;
    static constexpr int kNotP21 = 5;

    static constexpr std::string_view kStart = "ISO-10303-21"; // of every P21 text
    static constexpr std::int32_t kFiniteElementSchema = 209;

    static constexpr int kBlocks = 10;

    // A model of the file at `path`; reads nothing yet.
    StepModel(ReaderWorkspace& workspace, std::string path);
    // A model of `size` compressed bytes in memory, which it takes over. With null it can't be opened.
    StepModel(ReaderWorkspace& workspace, std::unique_ptr<unsigned char[]> data, std::uint32_t size);
    StepModel(const StepModel&) = delete;
    StepModel& operator=(const StepModel&) = delete;
    ~StepModel();

    // Reads, inflates and indexes: kRead; kNotOpened when the file can be opened neither under its name nor
    // under that of its twin; kNotP21 when the text isn't an ISO 10303-21 file. `entityMap` is null unless
    // kRead is returned.
    int Read();

    // The two halves of Read, so that --check can look at the table before a name in it ends the process.
    int ReadIndex();
    // After ReadIndex: names the root among several products. kRead or kNotP21.
    int DiscoverRoot();

    // The record of an entity number, or null.
    P42Ent* Find(std::int32_t id) const { return entityMap->Find(id); }
    // The same for several threads at a time; see MapP42Ent::FindNear.
    bool FindNear(std::int32_t id, P42Ent** found) const { return entityMap->FindNear(id, found); }
    // Memory for what readers need for as long as the model lives.
    Arena* IndexArena() const { return &workspace_.index; }
    // The threads that may help to read this file; null when there are none or the file is too small.
    Helpers* HelpersForIt() const {
        Helpers* const helpers = workspace_.helpers;
        return helpers != nullptr && helpers->AreFor(static_cast<std::size_t>(textEnd - text)) ? helpers
                                                                                               : nullptr;
    }
    // A walk from the "#" of an entity's line.
    TextWalk WalkFrom(const P42Ent* entity) const {
        return {text + entity->offset, textEnd, false, far_.get()};
    }
    // The same, as if the text ended with the line. Several threads may walk so at a time.
    TextWalk WalkInLine(const P42Ent* entity) const {
        const char* const line = text + entity->offset;
        return {line, workspace_.lines.LineEnd(text, line, textEnd)};
    }
    // A walk from the "#" by the entity's number; false, with the walk as it was, for one that isn't there.
    bool OpenLine(std::int32_t id, TextWalk* walk) const {
        const P42Ent* const entity = Find(id);
        if (entity == nullptr) { return false; }
        *walk = WalkFrom(entity);
        return true;
    }
    // From the line's first "(" on past `commas` commas, wherever they are.
    bool OpenAfterCommas(std::int32_t id, int commas, TextWalk* walk) const {
        if (!OpenLine(id, walk)) { return false; }
        walk->GoTo('(');
        walk->PassCommas(commas);
        return true;
    }
    // From the line's first "(" on past `arguments` arguments.
    bool OpenAfterArguments(std::int32_t id, int arguments, TextWalk* walk) const {
        if (!OpenLine(id, walk)) { return false; }
        walk->Enter();
        walk->SkipArguments(arguments);
        return true;
    }
    // Writes `c` over a character of the text; neither of them is a blank or a line feed.
    void Overwrite(const char* place, char c) const {
        text[place - text] = c;
        if (far_ != nullptr) { far_->NoteWritten(place); }
    }
    // The record number `index` (from 0) in file order.
    P42Ent* EntityAt(std::int32_t index) const;

    double readSeconds = 0;
    double inflateSeconds = 0;
    const char* problem = nullptr; // why it wasn't read, when that was told; a phrase
    std::string fileName;          // as given, or that of its twin; only for messages in a model from memory
    char* text = nullptr;
    char* textEnd = nullptr; // the place of the NUL after the text
    std::unique_ptr<unsigned char[]> compressedData;
    std::uint32_t compressedSize = 0;
    // How the file's bytes are packed, see TextFile; decides the suffix of the files of an assembly.
    std::int32_t compression = TextFile::kPlain;
    std::int32_t isAssembly = 0;            // 1 when an entity's keyword starts "NEXT_ASS"
    std::int32_t apNumber = 0;              // 203, 209, 214, 242 ..., from FILE_SCHEMA
    P42Ent** entityBlocks[kBlocks] = {};    // all records in file order; block i has room for 10000 * 10^i
    std::int32_t entityCount = 0;           // records made
    MapP42Ent* entityMap = nullptr;         // all records by entity number
    ListP42Ent* structureList = nullptr;    // the records of codes 22, 28, 41 and 42 in file order
    std::int32_t shapeRepresentationId = 0; // last TESSELLATED_SHAPE_REPRESENTATION line
    std::int32_t presentationId = 0; // first MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION line
    std::vector<std::int32_t>
        colourIds;                  // lines of COLOUR_RGB and DRAUGHTING_PRE_DEFINED_COLOUR in file order
    std::int32_t rootProductId = 0; // last PRODUCT line, until root discovery replaces it
    std::int32_t productCount = 0;  // PRODUCT lines

private:
    int ReadFile();
    int InflateData();
    void TakeText(const TextFile& file);
    bool ScanEntities();
    bool ScanEntity(const char* line, bool complete);
    char* FindDataSection() const;
    bool AddBlock();
    bool AddRecords();
    bool AddEntity(std::int32_t id, const char* line, std::int32_t code, bool complete);
    bool BuildEntityMap();
    bool ReadSchemaNumber();
    bool FindRootProduct();
    int GiveUp(const char* reason);
    int GiveUpForMemory(const char* reason);

    ReaderWorkspace& workspace_;
    const bool isFile_;               // else `compressedData` is all there is, whatever the model's name
    std::unique_ptr<FarPlaces> far_;  // of the text, from the scan on
    std::optional<MapP42Ent> map_;    // what `entityMap` points to
    int blocks_ = 0;                  // blocks made
    P42Ent** currentBlock_ = nullptr; // the last of them
    std::int32_t blockRoom_ = 0;      // its room
    std::int32_t blockCount_ = 0;     // records in it
    P42Ent* nextRecord_ = nullptr;    // room for further records, up to
    P42Ent* recordLimit_ = nullptr;
};

} // namespace tarnwick
