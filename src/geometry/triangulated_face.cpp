// A scanner for text of one shape: one entity on one line, arguments in their standard places, no blanks
// between the lists of a list. Each list is read by a walk that expects its usual form; whatever has another
// form goes through the plain sequence of moves (find the parenthesis, find each comma, convert what is
// between), which defines the outcome.
//
// A line feed breaks a list off: the walk is then set back to the start of the line, which becomes a NUL.

#include "geometry/triangulated_face.h"

#include "p21/keyword_codes.h"
#include "platform/console.h"
#include "platform/fail_fast.h"
#include "text/parse_real.h"
#include "text/take_triples.h"

#include <algorithm>

namespace tarnwick {

namespace {

constexpr const char* kPastEnd = "runs past the end of the file";
constexpr const char* kOutOfTurn = "must be read in its turn"; // never printed

// A walk in the line of an entity. A move that finds no target fails it; a reader may fail it, too.
struct FaceWalk : TextWalk {
    // With `ahead` the walk keeps to the line, and fails where it would have to write to the text, print
    // something or end the process.
    FaceWalk(const StepModel& walked, const P42Ent* entity, bool ahead)
        : TextWalk(ahead ? walked.WalkInLine(entity) : walked.WalkFrom(entity)), model(walked), line(at),
          isAhead(ahead) {}

    bool Failed() const { return overrun; }
    // Why it failed.
    const char* Problem() const { return problem != nullptr ? problem : kPastEnd; }
    void Fail(const char* reason) {
        problem = reason;
        overrun = true;
        at = end;
    }

    // Forward by one character. At the end of the text it stays, without failing: the NUL there ends a line.
    void StepInLine() {
        if (at < end) { ++at; }
    }
    bool AtLineEnd() const { return *at == '\n' || *at == '\0'; }

    // Breaks a list off at the end of the line: back to the start of the line, which becomes a NUL. Prints
    // `message` unless it is null.
    void BreakOff(const char* message) {
        if (isAhead) { return Fail(kOutOfTurn); }
        brokeAt = at;
        at = line;
        model.Overwrite(line, '\0');
        if (message != nullptr) { OutputPrint("%s", message); }
    }

    const StepModel& model;
    const char* line; // its "#"
    const bool isAhead;
    const char* brokeAt = nullptr;
    const char* problem = nullptr;
};

// The usual form of an index, 1 to 7 digits; false, and nothing done, for any other text.
bool TakeIndex(const char*& p, std::uint32_t* value) {
    const std::uint64_t word = LoadEight(p);
    const unsigned count = real::LeadingDigits(word);
    if (count == 0 || count == 8) { return false; }
    *value = real::DigitsValue(word, count);
    p += count;
    return true;
}

// The numbers of a triple in its usual form, "(a,b,c)", of which `p` is the "(". Returns the place after the
// ")", or null for any other form.
const char* TakeTriple(const char* p, float* out) {
    const char* q = p + 1;
    out[0] = static_cast<float>(ParseReal(q, &q));
    if (*q != ',') { return nullptr; }
    out[1] = static_cast<float>(ParseReal(q + 1, &q));
    if (*q != ',') { return nullptr; }
    out[2] = static_cast<float>(ParseReal(q + 1, &q));
    return *q == ')' ? q + 1 : nullptr;
}

const char* TakeTriple(const char* p, std::uint32_t* out) {
    const char* q = p + 1;
    if (!TakeIndex(q, &out[0]) || *q != ',') { return nullptr; }
    ++q;
    if (!TakeIndex(q, &out[1]) || *q != ',') { return nullptr; }
    ++q;
    if (!TakeIndex(q, &out[2]) || *q != ')') { return nullptr; }
    for (int i = 0; i < 3; ++i) { --out[i]; }
    return q + 1;
}

void Convert(const char* p, float* out) {
    *out = static_cast<float>(ParseReal(p));
}
void Convert(const char* p, std::uint32_t* out) {
    *out = static_cast<std::uint32_t>(StringToInteger(p)) - 1;
}

// A triple by the plain moves: the next ")" closes it, wherever its two commas are. Null, with the walk
// failed, when the text ends before them.
template <class Number>
const char* FindTriple(FaceWalk* walk, Number* out) {
    const char* const start = walk->at;
    walk->StepInLine();
    walk->GoTo(')');
    const char* const close = walk->at;
    walk->at = std::min(start + 1, walk->end);
    walk->GoTo(',');
    const char* const first = walk->at;
    walk->StepInLine();
    walk->GoTo(',');
    if (walk->Failed()) { return nullptr; }
    Convert(start + 1, &out[0]);
    Convert(first + 1, &out[1]);
    Convert(walk->at + 1, &out[2]);
    return close + 1;
}

// Reads a list of the form ((a,b,c),(a,b,c),...), "$" for none, into `out`. The walk is left at the ")" of
// the list. False when the list breaks off, with `message` printed and what was read kept, or the walk fails.
template <class Array>
bool ReadTriples(FaceWalk* walk, Array* out, const char* message) {
    walk->SkipBlanks();
    if (*walk->at == '$') { return true; }
    walk->Enter();
    walk->SkipBlanks();
    if (walk->Failed()) { return false; }
    constexpr int kMostMisses = 2; // in a row, after which TakeTriples isn't called any more
    for (int misses = 0;;) {
        if (!out->Reserve(3)) {
            walk->Fail(kNoMemoryForFace);
            return false;
        }
        const char* p = walk->at;
        std::size_t taken = 0;
        if (misses < kMostMisses) {
            taken = TakeTriples(&p, out->Next(), out->Room() / 3);
            misses = taken > 0 ? 0 : misses + 1;
        }
        if (taken == 0) {
            p = TakeTriple(walk->at, out->Next());
            if (p == nullptr) {
                p = FindTriple(walk, out->Next());
                if (p == nullptr) { return false; }
            }
            taken = 1;
        }
        out->Advance(3 * taken);
        if (p[0] == ',' && p[1] == '(') {
            ++p;
        } else {
            p = walk->Next<'(', ')', '\n', '\0'>(p);
        }
        walk->at = p;
        if (*p == ')') { return true; }
        if (*p != '(') {
            walk->BreakOff(message);
            return false;
        }
    }
}

constexpr const char* kCoordsBrokeOff = "<E> StepFaceB::TraiteCoords: Fin de fichier\n";

template <class Array>
bool TraiteCoords(FaceWalk* walk, Array* out) {
    return ReadTriples(walk, out, kCoordsBrokeOff);
}

void TraiteTriangle(FaceWalk* walk, TipArray<std::uint32_t>* out) {
    ReadTriples(walk, out, "<E> StepFaceB::TraiteTriangle: Fin de fichier\n");
}

// Steps to the next argument, which is after the next comma at any depth. False when the line ends first.
bool ArgumentSuivant(FaceWalk* walk) {
    if (*walk->at != ',') {
        walk->StepInLine();
        walk->at = walk->Next<',', '\n', '\0'>(walk->at);
    }
    if (*walk->at == ',') {
        walk->StepInLine();
        walk->SkipBlanks();
    }
    if (!walk->AtLineEnd()) { return true; }
    walk->BreakOff("<E> StepFaceB::ArgumentSuivant: Fin de fichier\n");
    return false;
}

// Whether there are so many that ReadDigits ends the process.
bool AreTooMany(const char* digits) {
    std::size_t count = 0;
    while (count < kDigitRoom - 1 && real::IsDigit(digits[count])) { ++count; }
    return count == kDigitRoom - 1;
}

// The entity number of a reference; 0 when no digits follow the "#", -1 when a "," or ")" comes before it.
std::int32_t LitReference(FaceWalk* walk) {
    for (int steps = 0; *walk->at != '#' && steps < 100 && walk->at < walk->end; ++steps) {
        if (*walk->at == ',' || *walk->at == ')') { return -1; }
        ++walk->at;
    }
    walk->StepInLine();
    if (walk->isAhead && AreTooMany(walk->at)) {
        walk->Fail(kOutOfTurn);
        return 0;
    }
    return ReadDigits(walk);
}

// Reads a flat list of the form (i,j,k,...), with or without the "(", and appends the values minus 1. Returns
// their number, 0 at a ")", -1 where the line ends or the walk has failed; what was read stays. The walk is
// left after the list and its comma.
template <class Array>
std::int32_t LitEntiers(FaceWalk* walk, Array* list) {
    if (*walk->at == ')') { return 0; }
    if (*walk->at == '(') { ++walk->at; }
    std::int32_t count = 0;
    for (;;) {
        if (!list->Reserve(1)) {
            walk->Fail(kNoMemoryForFace);
            return -1;
        }
        const char* delimiter = walk->at;
        std::uint32_t value;
        if (!TakeIndex(delimiter, &value) || (*delimiter != ',' && *delimiter != ')')) {
            delimiter = walk->Next<',', ')'>(walk->at);
            if (delimiter == walk->end) {
                walk->Fail(kPastEnd);
                return -1;
            }
            value = static_cast<std::uint32_t>(StringToInteger(walk->at));
        }
        *list->Next() = static_cast<std::int32_t>(value - 1);
        list->Advance(1);
        ++count;
        walk->at = delimiter + 1;
        if (*delimiter == ')') { break; }
        if (walk->AtLineEnd()) {
            walk->BreakOff(nullptr);
            return -1;
        }
    }
    if (*walk->at == ',') { ++walk->at; }
    if (walk->AtLineEnd()) {
        walk->BreakOff(nullptr);
        return -1;
    }
    return count;
}

// A strip's triangles keep their winding: every other one is turned round.
void AppendStrip(const std::uint32_t* s, std::size_t count, std::uint32_t* out) {
    for (std::size_t i = 0; i + 2 < count; ++i, out += 3) {
        const bool turned = i % 2 != 0;
        out[0] = turned ? s[i + 2] : s[i];
        out[1] = s[i + 1];
        out[2] = turned ? s[i] : s[i + 2];
    }
}

void AppendFan(const std::uint32_t* s, std::size_t count, std::uint32_t* out) {
    for (std::size_t i = 1; i + 1 < count; ++i, out += 3) {
        out[0] = s[0];
        out[1] = s[i];
        out[2] = s[i + 1];
    }
}

// Reads strips or fans of the form ((i,j,k,...),(i,j,k,...),...), "$" or "()" for none; `append` turns the
// values of one into triangles. Fewer than 3 values add nothing.
template <class Append>
void ReadTriangleLists(FaceWalk* walk, ScratchArray<std::int32_t>* values, TipArray<std::uint32_t>* out,
                       Append append) {
    walk->SkipBlanks();
    if (*walk->at == '$') { return; }
    walk->Enter();
    walk->SkipBlanks();
    if (*walk->at == ')') { return; }
    for (bool brokeOff = false; !walk->Failed();) {
        values->Clear();
        const std::int32_t read = LitEntiers(walk, values);
        const std::size_t count = values->Count();
        if (count == 0 || walk->Failed()) { return; }
        if (read < 0) {
            // After the first break the walk starts over from the line's first character. A second one would
            // be followed by a third and so on, and fill the memory with the same triangles.
            if (brokeOff) {
                walk->Fail("has a list of strips or fans that is broken over lines");
                return;
            }
            brokeOff = true;
        }
        if (count < 3) { continue; }
        if (!out->Reserve(3 * (count - 2))) {
            walk->Fail(kNoMemoryForFace);
            return;
        }
        append(reinterpret_cast<const std::uint32_t*>(values->Data()), count, out->Next());
        out->Advance(3 * (count - 2));
    }
}

void TraiteStrip(FaceWalk* walk, ScratchArray<std::int32_t>* values, TipArray<std::uint32_t>* out) {
    ReadTriangleLists(walk, values, out, AppendStrip);
}

void TraiteFan(FaceWalk* walk, ScratchArray<std::int32_t>* values, TipArray<std::uint32_t>* out) {
    ReadTriangleLists(walk, values, out, AppendFan);
}

// Only those digits of pnmax count that are among the first 100 characters of the line.
std::int32_t ReadPnmax(FaceWalk* walk) {
    if (*walk->at == '$') { return 0; }
    const char* const limit = std::min(walk->line + 100, walk->end);
    while (walk->at < limit && !real::IsDigit(*walk->at)) { ++walk->at; }
    std::int64_t value = 0;
    for (const char* const start = walk->at; walk->at < limit && real::IsDigit(*walk->at); ++walk->at) {
        if (static_cast<std::size_t>(walk->at - start) == kDigitRoom - 1) {
            if (!walk->isAhead) { FailFast(); }
            walk->Fail(kOutOfTurn);
            return 0;
        }
        value = value * 10 + (*walk->at - '0');
    }
    return static_cast<std::int32_t>(std::min<std::int64_t>(value, INT32_MAX));
}

// The list that the vertices of a face come from.
struct PointSource {
    const StepModel& model;
    const P42Ent* list;
    bool isAhead; // as for the walk in the face's own line
};

// A walk to the points of a COORDINATES_LIST, its third argument.
FaceWalk WalkToPoints(const PointSource& source) {
    FaceWalk walk(source.model, source.list, source.isAhead);
    walk.GoTo('(');
    walk.PassCommas(2);
    return walk;
}

// The vertices of a face without pnindex: all points of the list. A list that was read whole before is
// copied. False when the walk fails.
bool ReadAllPoints(StepFaceB* face, const PointSource& source, Arena& arena, FaceScratch* scratch,
                   const char** problem) {
    const std::optional<CoordCache>& known = scratch->allPoints;
    TipArray<float> points(arena);
    if (known && known->coordinatesId == source.list->id) {
        const auto count = 3 * static_cast<std::size_t>(known->count);
        if (!points.Reserve(count)) {
            *problem = kNoMemoryForFace;
            return false;
        }
        std::copy_n(known->points, count, points.Next());
        points.Advance(count);
        face->vertices = points.Close();
        face->vertexCount = known->count;
        return true;
    }
    FaceWalk walk = WalkToPoints(source);
    const bool whole = !walk.Failed() && TraiteCoords(&walk, &points);
    if (walk.Failed()) {
        points.Drop();
        *problem = walk.Problem();
        return false;
    }
    face->vertexCount = static_cast<std::int32_t>(points.Count() / 3);
    face->vertices = points.Close();
    // One that broke off says so each time it is read.
    if (whole) { scratch->allPoints = CoordCache{source.list->id, face->vertexCount, face->vertices}; }
    return true;
}

// Keeps what the walk has read into `points`, if it didn't leave the line.
void KeepList(const FaceWalk& walk, bool isWhole, const ScratchArray<float>& points, KnownList* list) {
    const char* const end = isWhole ? walk.at : walk.brokeAt;
    if (end > walk.Next<'\n'>(walk.line)) { return; }
    list->points.assign(points.Data(), points.Data() + points.Count());
    list->isWhole = isWhole;
    list->end = static_cast<std::int32_t>(end - walk.model.text);
    list->isKept = true;
}

// Fills the cache from a list that it doesn't hold.
bool FillCoordCache(FaceScratch* scratch, const PointSource& source, const char** problem) {
    CoordCache& cache = scratch->coordCache;
    if (scratch->allPoints && scratch->allPoints->coordinatesId == source.list->id) {
        cache = *scratch->allPoints;
        return true;
    }
    KnownList& known = scratch->knownLists[source.list->offset];
    if (known.isKept) {
        if (!known.isWhole) { OutputPrint("%s", kCoordsBrokeOff); }
        cache = {source.list->id, static_cast<std::int32_t>(known.points.size() / 3), known.points.data()};
        return true;
    }
    scratch->list.Clear();
    FaceWalk walk = WalkToPoints(source);
    const bool isWhole = !walk.Failed() && TraiteCoords(&walk, &scratch->list);
    if (walk.Failed()) {
        cache = {};
        *problem = walk.Problem();
        return false;
    }
    cache = {source.list->id, static_cast<std::int32_t>(scratch->list.Count() / 3), scratch->list.Data()};
    if (known.wasRead) { KeepList(walk, isWhole, scratch->list, &known); }
    known.wasRead = true;
    return true;
}

// The vertices of a face with pnindex: the points at those places of the list. False when one isn't there,
// the list can't be read, or memory runs out.
bool TraiteIndexCoords(StepFaceB* face, const PointSource& source, Arena& arena, FaceScratch* scratch,
                       const char** problem) {
    const CoordCache* const cache = &scratch->coordCache;
    if (cache->coordinatesId != source.list->id && !FillCoordCache(scratch, source, problem)) {
        return false;
    }
    const std::size_t count = static_cast<std::size_t>(face->pnindexCount);
    TipArray<float> vertices(arena);
    if (!vertices.Reserve(3 * count)) {
        *problem = kNoMemoryForFace;
        return false;
    }
    float* out = vertices.Next();
    const std::uint32_t points = static_cast<std::uint32_t>(cache->count);
    for (std::size_t i = 0; i < count; ++i, out += 3) {
        const std::uint32_t place = static_cast<std::uint32_t>(face->pnindex[i]);
        if (place >= points) {
            vertices.Drop();
            *problem = "names a point that its COORDINATES_LIST doesn't have";
            return false;
        }
        const float* const point = cache->points + 3 * static_cast<std::size_t>(place);
        out[0] = point[0];
        out[1] = point[1];
        out[2] = point[2];
    }
    vertices.Advance(3 * count);
    face->vertices = vertices.Close();
    face->vertexCount = face->pnindexCount;
    return true;
}

void ComputeBox(StepFaceB* face) {
    const float* v = face->vertices;
    float low[3] = {v[0], v[1], v[2]};
    float high[3] = {v[0], v[1], v[2]};
    for (std::int32_t i = 1; i < face->vertexCount; ++i) {
        v += 3;
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = v[axis] < low[axis] ? v[axis] : low[axis];
            high[axis] = v[axis] > high[axis] ? v[axis] : high[axis];
        }
    }
    for (int axis = 0; axis < 3; ++axis) {
        face->box[2 * axis] = low[axis];
        face->box[2 * axis + 1] = high[axis];
    }
}

// Gives each vertex the one normal of a face. False when memory runs out.
bool RepeatNormal(StepFaceB* face, const float normal[3], Arena& arena) {
    const std::size_t count = static_cast<std::size_t>(face->vertexCount);
    TipArray<float> normals(arena);
    if (!normals.Reserve(3 * count)) { return false; }
    float* out = normals.Next();
    for (std::size_t i = 0; i < count; ++i, out += 3) { std::copy_n(normal, 3, out); }
    normals.Advance(3 * count);
    face->normals = normals.Close();
    face->normalCount = face->vertexCount;
    return true;
}

// The normals of a face, from the walk at their argument; the one of a flat face goes to `oneNormal`. False
// when the walk fails.
bool ReadNormals(FaceWalk* walk, Arena& arena, StepFaceB* face, float oneNormal[3]) {
    TipArray<float> normals(arena);
    if (walk->at[0] == '(' && walk->at[1] != ')') { TraiteCoords(walk, &normals); }
    face->normalCount = static_cast<std::int32_t>(normals.Count() / 3);
    if (face->normalCount == 1) {
        std::copy_n(normals.Data(), 3, oneNormal);
        normals.Drop();
    } else {
        face->normals = normals.Close();
    }
    return !walk->Failed();
}

// pnindex, from the walk at its argument. False when the walk fails.
bool ReadPnindex(FaceWalk* walk, Arena& arena, StepFaceB* face) {
    walk->SkipBlanks();
    if (*walk->at != '(') { return true; }
    ++walk->at;
    walk->SkipBlanks();
    if (*walk->at == '$' || *walk->at == ')') { return true; }
    TipArray<std::int32_t> pnindex(arena);
    LitEntiers(walk, &pnindex);
    face->pnindexCount = static_cast<std::int32_t>(pnindex.Count());
    face->pnindex = pnindex.Close();
    if (walk->Failed()) { return false; }
    walk->at -= 2; // back before the comma that the reader of the list has passed
    return true;
}

// The triangles, or strips and fans, from the walk at their first argument. False when the walk fails or the
// line ends before the fans.
bool ReadTriangles(FaceWalk* walk, std::int32_t code, Arena& arena, FaceScratch* scratch, StepFaceB* face) {
    TipArray<std::uint32_t> triangles(arena);
    bool read = true;
    if (code == code::kTriangulatedFace) {
        TraiteTriangle(walk, &triangles);
    } else {
        TraiteStrip(walk, &scratch->strip, &triangles);
        read = !walk->Failed() && ArgumentSuivant(walk);
        if (read) { TraiteFan(walk, &scratch->strip, &triangles); }
    }
    face->triangleCount = static_cast<std::int32_t>(triangles.Count() / 3);
    face->triangles = triangles.Close();
    return read && !walk->Failed();
}

// Reads the arguments of the face's own line; the number of its COORDINATES_LIST goes to `coordinatesId`.
// False when the walk fails or the line ends before an argument that must be there.
bool ReadArguments(FaceWalk* walk, std::int32_t code, Arena& arena, FaceScratch* scratch, StepFaceB* face,
                   std::int32_t* coordinatesId, float oneNormal[3]) {
    walk->GoTo('(');
    walk->PassCommas(1);
    *coordinatesId = LitReference(walk);
    walk->PassCommas(1);
    if (walk->Failed()) { return false; }
    face->pnmax = ReadPnmax(walk);
    if (!ArgumentSuivant(walk) || !ReadNormals(walk, arena, face, oneNormal)) { return false; }
    if (code != code::kComplexTriangulatedSurfaceSet) {
        ArgumentSuivant(walk);
        if (*walk->at == '#') { face->exactFaceId = LitReference(walk); }
    }
    ArgumentSuivant(walk);
    return ReadPnindex(walk, arena, face) && ArgumentSuivant(walk) &&
           ReadTriangles(walk, code, arena, scratch, face);
}

// The record that a face names as its points; null where there is none. It may be of any kind, but ahead only
// a COORDINATES_LIST will do: other readers may write to other lines.
const P42Ent* FindPoints(const FaceWalk& walk, std::int32_t id) {
    if (!walk.isAhead) { return walk.model.Find(id); }
    P42Ent* found = nullptr;
    const bool isHere = walk.model.FindNear(id, &found);
    return isHere && found != nullptr && found->code == code::kCoordinatesList ? found : nullptr;
}

// TraiteFace by a walk at the start of the face's line.
int ReadFace(StepFaceB* face, const P42Ent* entity, FaceWalk* walk, Arena& arena, FaceScratch* scratch,
             FaceProblem* problem) {
    face->faceId = entity->id;
    std::int32_t coordinatesId = 0;
    float oneNormal[3] = {};
    if (!ReadArguments(walk, entity->code, arena, scratch, face, &coordinatesId, oneNormal)) {
        problem->reason = walk->Failed() ? walk->Problem() : nullptr;
        return -1;
    }
    const P42Ent* const list = FindPoints(*walk, coordinatesId);
    if (list == nullptr) {
        problem->reason = "has no COORDINATES_LIST";
        return -1;
    }
    const PointSource source{walk->model, list, walk->isAhead};
    const bool read = face->pnindexCount != 0
                          ? TraiteIndexCoords(face, source, arena, scratch, &problem->reason)
                          : ReadAllPoints(face, source, arena, scratch, &problem->reason);
    if (!read) { return -1; }
    if (face->vertexCount == 0) {
        problem->reason = "has no vertices";
        return -1;
    }
    ComputeBox(face);
    if (face->normalCount == 1 && !RepeatNormal(face, oneNormal, arena)) {
        problem->reason = kNoMemoryForFace;
        return -1;
    }
    return face->vertexCount < face->normalCount ? 1 : 0;
}

} // namespace

int TraiteFace(StepFaceB* face, const P42Ent* entity, StepModel& model, Arena& arena, FaceScratch* scratch,
               FaceProblem* problem) {
    FaceWalk walk(model, entity, false);
    return ReadFace(face, entity, &walk, arena, scratch, problem);
}

bool ReadFaceAhead(StepFaceB* face, const P42Ent* entity, const StepModel& model, Arena& arena,
                   FaceScratch* scratch) {
    FaceWalk walk(model, entity, true);
    FaceProblem problem;
    return ReadFace(face, entity, &walk, arena, scratch, &problem) == 0;
}

} // namespace tarnwick
