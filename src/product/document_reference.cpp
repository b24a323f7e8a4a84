// Which file has a product's geometry or structure, and the queue of the files to be read.

#include "product/assembly_reader.h"

#include <string>

namespace tarnwick {

namespace {

constexpr std::size_t kLongestFileName = kNameRoom - 1;

// The first string of the document's line, cut at the longest name and at a NUL in it.
bool ReadFileName(AssemblyReader& reader, const P42Ent* document, std::string* name) {
    TextWalk walk = reader.model.WalkFrom(document);
    walk.GoToFirstString();
    const std::string_view ahead = walk.Ahead(kLongestFileName);
    const std::size_t quote = ahead.find('\'');
    if (quote == std::string_view::npos && ahead.size() < kLongestFileName) { walk.overrun = true; }
    if (NoteOverrun(reader, walk, document->id)) { return false; }
    const std::string_view text = ahead.substr(0, quote);
    name->assign(text.substr(0, text.find('\0')));
    return true;
}

} // namespace

int ReadDocumentReference(AssemblyReader& reader, const P42Ent* entity) {
    TextWalk walk = reader.model.WalkFrom(entity);
    walk.GoTo('(');
    const std::int32_t documentId = ReadReference(&walk);
    walk.PassCommas(2);
    walk.GoTo('(');
    const std::int32_t definitionId = ReadReference(&walk);
    if (NoteOverrun(reader, walk, entity->id)) { return 1; }
    ProductNode* const* const known = reader.productMap.Find(definitionId);
    ProductNode* product = known != nullptr ? *known : nullptr;
    if (product == nullptr) {
        std::string_view name;
        std::int32_t formationId = 0;
        if (ReadProductName(reader, definitionId, &name, &formationId) != 0) { return 1; }
        // A product that another file has queued keeps its file.
        if (FindQueued(reader.tree, name) != nullptr) { return 0; }
        product = MakeProduct(reader, definitionId, name, formationId);
        if (product == nullptr) { return NoteNoMemory(reader); }
    }
    const P42Ent* const document = reader.model.Find(documentId);
    if (document == nullptr) { return 1; }
    std::string fileName;
    if (!ReadFileName(reader, document, &fileName)) { return 1; }
    if (fileName.ends_with(".cgr")) { fileName.replace(fileName.size() - 3, 3, "stp"); }
    if (fileName.find("...") != std::string::npos) { return 2; }
    const char* const copy = reader.arena.Copy(fileName.data(), fileName.size());
    if (copy == nullptr) { return NoteNoMemory(reader); }
    product->fileName = copy;
    return 0;
}

ProductNode* FindQueued(ProductTree& tree, std::string_view name) {
    ProductNode* const* const found = tree.queuedNames.Find(name);
    return found != nullptr ? *found : nullptr;
}

void PushPartQueue(ProductTree& tree, ProductNode* product) {
    tree.queuedNames.Add(product->name, product);
    tree.queue.Push(product);
}

} // namespace tarnwick
