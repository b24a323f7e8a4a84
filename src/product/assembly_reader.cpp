// The product tree of one file, read by hopping from line to line of the raw text. Only one way to put a
// product under another is known, that of the exporters, and nothing else is parsed.

#include "product/assembly_reader.h"

#include "p21/keyword_codes.h"
#include "platform/append_pointer.h"
#include "platform/console.h"
#include "text/one_line.h"

#include <algorithm>

namespace tarnwick {

namespace {

// The reference after the next comma.
std::int32_t NextReference(TextWalk* walk) {
    walk->GoTo(',');
    return ReadReference(walk);
}

// Three numbers of a CARTESIAN_POINT or DIRECTION, whose list must begin right after the first comma of the
// line.
bool ReadTriple(AssemblyReader& reader, std::int32_t id, double values[3]) {
    TextWalk walk;
    if (!reader.model.OpenAfterCommas(id, 1, &walk)) { return false; }
    walk.Step();
    ReadReals(&walk, values, 3);
    return !NoteOverrun(reader, walk, id);
}

void ScanAssemblyEntities(AssemblyReader& reader) {
    MapP42Ent& entities = *reader.model.entityMap;
    for (const P42Ent* entity = entities.First(); entity != nullptr && !reader.overrun && !reader.noMemory;
         entity = entities.Next()) {
        if (entity->code == code::kContextDependentShapeRepresentation) {
            ReadOccurrence(reader, entity);
        } else if (entity->code == code::kAppliedDocumentReference) {
            ReadDocumentReference(reader, entity);
        }
    }
}

// The tree's list has room for all products of a file before the first of them is appended.
void MakeRoom(ProductArray& products, std::int32_t more) {
    if (products.count + more <= products.capacity) { return; }
    const std::int32_t capacity = products.capacity;
    products.Allocate(more > capacity ? capacity + more : 2 * capacity);
}

// inverse(a) times b, row by row, by the adjugate over the determinant; false for a singular `a`.
bool Combine(const double a[9], const double b[9], double out[9]) {
    const double c00 = a[4] * a[8] - a[5] * a[7];
    const double c01 = a[5] * a[6] - a[3] * a[8];
    const double c02 = a[3] * a[7] - a[4] * a[6];
    const double determinant = a[0] * c00 + a[1] * c01 + a[2] * c02;
    if (determinant == 0.0) { return false; }
    const double inverse[9] = {c00 / determinant,
                               (a[2] * a[7] - a[1] * a[8]) / determinant,
                               (a[1] * a[5] - a[2] * a[4]) / determinant,
                               c01 / determinant,
                               (a[0] * a[8] - a[2] * a[6]) / determinant,
                               (a[2] * a[3] - a[0] * a[5]) / determinant,
                               c02 / determinant,
                               (a[1] * a[6] - a[0] * a[7]) / determinant,
                               (a[0] * a[4] - a[1] * a[3]) / determinant};
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            out[3 * r + c] =
                inverse[3 * r] * b[c] + inverse[3 * r + 1] * b[3 + c] + inverse[3 * r + 2] * b[6 + c];
        }
    }
    return true;
}

// The rows X, W, Z of a frame from its axis and reference direction. W is Z by X with the sign of its y
// reversed; the sign flips of the draw lists cancel that.
void FrameRows(const double axis[3], const double reference[3], double rows[9]) {
    const double* const z = axis;
    const double* const x = reference;
    const double w[3] = {x[2] * z[1] - x[1] * z[2], x[2] * z[0] - x[0] * z[2], x[1] * z[0] - x[0] * z[1]};
    std::copy_n(x, 3, rows);
    std::copy_n(w, 3, rows + 3);
    std::copy_n(z, 3, rows + 6);
}

} // namespace

int ReadAssemblyStructure(ProductTree& tree, StepModel& model, bool isTopFile, Arena& arena) {
    AssemblyReader reader{model, tree, arena, {}, {}, {}};
    reader.products.reserve(static_cast<std::size_t>(model.productCount) + 5);
    ScanAssemblyEntities(reader);
    if (reader.overrun) { return kStructureBreaksOff; }
    if (reader.noMemory) { return kStructureNeedsMemory; }
    MakeRoom(tree.products, static_cast<std::int32_t>(reader.products.size()));
    for (const auto& [parent, occurrence] : reader.uses) {
        occurrence->child->isRoot = 0;
        if (!AddOccurrence(arena, parent, occurrence)) { NoteNoMemory(reader); }
    }
    for (ProductNode* const product : reader.products) {
        tree.products[tree.products.count++] = product;
        if (isTopFile && product->isRoot == 1) { tree.root = product; }
        if (product->fileName != nullptr) { PushPartQueue(tree, product); }
    }
    return reader.noMemory ? kStructureNeedsMemory : 0;
}

int ReadOccurrence(AssemblyReader& reader, const P42Ent* entity) {
    TextWalk walk = reader.model.WalkFrom(entity);
    walk.GoTo('(');
    const std::int32_t relationshipId = ReadReference(&walk);
    const std::int32_t shapeId = NextReference(&walk);
    if (NoteOverrun(reader, walk, entity->id) || !reader.model.OpenAfterCommas(shapeId, 0, &walk)) {
        return 1;
    }
    const std::int32_t usageId = ReadReference(&walk);
    if (NoteOverrun(reader, walk, shapeId) || !reader.model.OpenAfterCommas(usageId, 2, &walk)) { return 1; }
    const std::int32_t parentId = ReadReference(&walk);
    const std::int32_t childId = NextReference(&walk);
    if (NoteOverrun(reader, walk, usageId)) { return 1; }
    std::string_view parentName;
    std::string_view childName;
    std::int32_t parentFormation = 0;
    std::int32_t childFormation = 0;
    // Both are read in any case: a missing parent must not hide a name that ends the process.
    const int parentResult = ReadProductName(reader, parentId, &parentName, &parentFormation);
    const int childResult = ReadProductName(reader, childId, &childName, &childFormation);
    if (parentResult != 0 || childResult != 0) { return 1; }
    // A complex instance: the transformation comes after its third opening parenthesis.
    if (!reader.model.OpenAfterCommas(relationshipId, 0, &walk)) { return 1; }
    for (int i = 0; i < 2; ++i) {
        walk.Step();
        walk.GoTo('(');
    }
    const std::int32_t transformId = ReadReference(&walk);
    if (NoteOverrun(reader, walk, relationshipId)) { return 1; }
    double rotation[9];
    double translation[3];
    ReadTransform(reader, transformId, rotation, translation);
    if (reader.overrun) { return 1; }

    ProductNode* const parent = IdentifyProduct(reader, parentId, parentName, parentFormation);
    ProductNode* const child = IdentifyProduct(reader, childId, childName, childFormation);
    Occurrence* const occurrence = reader.arena.New<Occurrence>();
    if (parent == nullptr || child == nullptr || occurrence == nullptr) { return NoteNoMemory(reader); }
    std::copy_n(rotation, 9, occurrence->rotation);
    std::copy_n(translation, 3, occurrence->translation);
    occurrence->child = child;
    reader.uses.emplace_back(parent, occurrence);
    return 0;
}

bool AddOccurrence(Arena& arena, ProductNode* product, Occurrence* occurrence) {
    return AppendPointer(arena, &product->occurrences, &product->occurrenceCapacity,
                         &product->occurrenceCount, occurrence);
}

int ReadProductName(AssemblyReader& reader, std::int32_t definitionId, std::string_view* name,
                    std::int32_t* formationId) {
    TextWalk walk;
    if (!reader.model.OpenAfterCommas(definitionId, 2, &walk)) { return 1; }
    *formationId = ReadReference(&walk);
    if (NoteOverrun(reader, walk, definitionId) || !reader.model.OpenAfterCommas(*formationId, 2, &walk)) {
        return 1;
    }
    const std::int32_t productId = ReadReference(&walk);
    if (NoteOverrun(reader, walk, *formationId) || !reader.model.OpenLine(productId, &walk)) { return 1; }
    *name = ReadFirstString(&walk, kNameRoom);
    *name = name->substr(0, name->find('\0')); // what the kept copy will have
    return NoteOverrun(reader, walk, productId) ? 1 : 0;
}

int ReadPlacement(AssemblyReader& reader, std::int32_t placementId, double values[9]) {
    TextWalk walk;
    if (!reader.model.OpenAfterCommas(placementId, 1, &walk)) { return 1; }
    std::int32_t ids[3];
    ids[0] = ReadReference(&walk);
    ids[1] = NextReference(&walk);
    ids[2] = NextReference(&walk);
    if (NoteOverrun(reader, walk, placementId)) { return 1; }
    for (int i = 0; i < 3; ++i) {
        if (!ReadTriple(reader, ids[i], values + 3 * i)) { return 1; }
    }
    return 0;
}

int ReadTransform(AssemblyReader& reader, std::int32_t transformId, double rotation[9],
                  double translation[3]) {
    constexpr double kIdentity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    std::copy_n(kIdentity, 9, rotation);
    std::fill_n(translation, 3, 0.0);
    TextWalk walk;
    if (!reader.model.OpenAfterCommas(transformId, 2, &walk)) { return 1; }
    const std::int32_t sourceId = ReadReference(&walk);
    const std::int32_t targetId = NextReference(&walk);
    if (NoteOverrun(reader, walk, transformId)) { return 1; }
    double source[9] = {}; // location, axis, reference direction; what a placement lacks is 0
    double target[9] = {};
    ReadPlacement(reader, sourceId, source);
    ReadPlacement(reader, targetId, target);
    for (int i = 0; i < 3; ++i) { translation[i] = target[i] - source[i]; }
    double a[9];
    double b[9];
    FrameRows(source + 3, source + 6, a);
    FrameRows(target + 3, target + 6, b);
    return Combine(a, b, rotation) ? 0 : 1;
}

ProductNode* IdentifyProduct(AssemblyReader& reader, std::int32_t definitionId, std::string_view name,
                             std::int32_t formationId) {
    if (ProductNode* const* const known = reader.productMap.Find(definitionId)) { return *known; }
    if (ProductNode* const queued = FindQueued(reader.tree, name)) { return queued; }
    return MakeProduct(reader, definitionId, name, formationId);
}

ProductNode* MakeProduct(AssemblyReader& reader, std::int32_t definitionId, std::string_view name,
                         std::int32_t formationId) {
    ProductNode* const product = reader.arena.New<ProductNode>();
    const char* const copy = reader.arena.Copy(name.data(), name.size());
    if (product == nullptr || copy == nullptr) { return nullptr; }
    product->isRoot = 1;
    product->name = copy;
    product->definitionId = definitionId;
    product->formationId = formationId;
    reader.products.push_back(product);
    reader.productMap.Add(definitionId, product);
    return product;
}

int NoteNoMemory(AssemblyReader& reader) {
    if (!reader.noMemory) {
        reader.noMemory = true;
        ConsolePrint("<E> %s: no memory for its structure\n", OneLine(reader.model.fileName).Text());
    }
    return 1;
}

bool NoteOverrun(AssemblyReader& reader, const TextWalk& walk, std::int32_t entityId) {
    if (walk.overrun && !reader.overrun) {
        reader.overrun = true;
        ConsolePrint("<E> %s: its structure is given up, #%d runs past the end of the file\n",
                     OneLine(reader.model.fileName).Text(), entityId);
    }
    return walk.overrun;
}

} // namespace tarnwick
