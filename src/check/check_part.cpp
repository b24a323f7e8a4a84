// From the representation that is read to its faces, by the same steps as the part reader, and then what else
// the file holds.

#include "check/check_file.h"
#include "check/entity_text.h"
#include "check/line_breaks.h"
#include "p21/keyword_codes.h"
#include "p21/text_walk.h"
#include "text/parse_real.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace tarnwick {

namespace {

bool IsContainer(std::int32_t entityCode) {
    return entityCode == code::kTessellatedSolid || entityCode == code::kTessellatedShell;
}

bool IsFace(std::int32_t entityCode) {
    return entityCode == code::kTriangulatedFace || entityCode == code::kComplexTriangulatedFace;
}

// The first number of a list that isn't from 1 to `most`, and how many there are up to it; null when all are.
const char* PlaceOutside(std::string_view list, std::int64_t most, std::int64_t* count) {
    const char* const end = list.data() + list.size();
    for (const char* p = list.data(); p < end;) {
        if (!real::IsDigit(*p) && *p != '-') {
            ++p;
            continue;
        }
        const std::int32_t number = StringToInteger(p);
        if (number < 1 || number > most) { return p; }
        ++*count;
        for (++p; p < end && real::IsDigit(*p);) { ++p; }
    }
    return nullptr;
}

class PartCheck {
public:
    explicit PartCheck(CheckedFile& file) : file_(file), model_(file.model) {}

    void Run() {
        const P42Ent* const representation = model_.Find(model_.shapeRepresentationId);
        if (representation != nullptr) { CheckItems(representation); }
        CheckRepresentations();
        CheckLeftOut();
    }

    // Checks the items of all products, each as the representation that lists it demands.
    void RunOnOwnShapes() {
        std::unordered_set<std::uint64_t> told; // representations
        for (const prepare::FileProduct& product : file_.structure.products) {
            if (!product.files.empty()) { continue; } // that file is drawn
            const P42Ent* counts = nullptr; // the first representation of the product that can be read
            for (const prepare::ShapeItem& item : product.shape) {
                const P42Ent* const entity = model_.Find(static_cast<std::int32_t>(item.item));
                if (item.kind != prepare::ShapeKind::kTessellated || entity == nullptr) { continue; }
                const P42Ent* const listing = model_.Find(static_cast<std::int32_t>(item.representation));
                if (listing == nullptr) { continue; }
                if (listing->code != code::kTessellatedShapeRepresentation) {
                    if (IsFace(entity->code)) {
                        NoteItem(entity);
                    } else if (told.insert(item.representation).second) {
                        file_.Add(FindingKind::kNotDrawn, listing,
                                  Keyword(listing) +
                                      " isn't read: only a TESSELLATED_SHAPE_REPRESENTATION is");
                    }
                } else if (counts != nullptr && counts != listing) {
                    if (told.insert(item.representation).second) {
                        file_.Add(FindingKind::kSeveralRepresentations, listing,
                                  "is one more of the product of " + Number(counts->id) +
                                      ": only the last one of a part counts");
                    }
                } else {
                    counts = listing;
                }
                CheckItem(entity);
            }
        }
    }

private:
    std::string Keyword(const P42Ent* entity) const {
        return std::string(KeywordOf(EntityText(model_, entity)));
    }

    // Tells of representations that don't count, where they hold a shape that the one which counts doesn't
    // lead to.
    void CheckRepresentations() {
        for (std::int32_t i = 0; i < model_.entityCount; ++i) {
            const P42Ent* const entity = model_.EntityAt(i);
            if (entity->code != code::kTessellatedShapeRepresentation ||
                entity->id == model_.shapeRepresentationId) {
                continue;
            }
            bool isLost = false;
            const auto arguments = ArgumentsOf(EntityText(model_, entity));
            if (arguments.size() < 2) { continue; }
            for (const std::int32_t id : ReferencesIn(arguments[1])) {
                const P42Ent* const item = model_.Find(id);
                if (item == nullptr || !IsShape(item) || seen_.contains(item)) { continue; }
                isLost = true;
                MarkSeen(item);
            }
            if (isLost) {
                file_.Add(FindingKind::kSeveralRepresentations, entity,
                          "isn't read: only the last one, " + Number(model_.shapeRepresentationId) +
                              ", counts");
            }
        }
    }

    bool IsShape(const P42Ent* item) {
        return (IsContainer(item->code) || IsFace(item->code) ||
                item->code == code::kTriangulatedSurfaceSet ||
                item->code == code::kComplexTriangulatedSurfaceSet) &&
               !file_.annotations.Contains(static_cast<std::uint64_t>(item->id));
    }

    // Also what the item lists, so that nothing of it is told again.
    void MarkSeen(const P42Ent* item) {
        seen_.insert(item);
        if (!IsContainer(item->code)) { return; }
        const auto arguments = ArgumentsOf(EntityText(model_, item));
        if (arguments.size() < 2) { return; }
        for (const std::int32_t id : ReferencesIn(arguments[1])) { seen_.insert(model_.Find(id)); }
    }

    void CheckItems(const P42Ent* representation) {
        for (const P42Ent* const item : Listed(representation)) { CheckItem(item); }
    }

    void CheckItem(const P42Ent* item) {
        if (IsContainer(item->code)) {
            CheckContainer(item);
        } else if (item->code == code::kComplexTriangulatedSurfaceSet) {
            CheckFace(item);
        } else {
            NoteItem(item);
        }
    }

    // The entities of the list that is the second argument.
    std::vector<const P42Ent*> Listed(const P42Ent* entity) {
        std::vector<const P42Ent*> items;
        const std::string_view text = EntityText(model_, entity);
        const auto arguments = ArgumentsOf(text);
        if (arguments.size() < 2) {
            file_.Add(FindingKind::kDamaged, entity, "has no list as its second argument");
            return items;
        }
        if (file_.IsMissed(entity, text, 1, '(', arguments[1], "what it lists isn't drawn")) { return items; }
        file_.CheckReferenceList(entity, arguments[1]);
        for (const std::int32_t id : ReferencesIn(arguments[1])) {
            const P42Ent* const item = model_.Find(id);
            if (item != nullptr) { items.push_back(item); }
        }
        return items;
    }

    // An item of the representation that isn't read.
    void NoteItem(const P42Ent* item) {
        if (!noted_.insert(item).second) { return; }
        const std::string keyword = Keyword(item);
        // Placements and points without faces are no shape.
        if (keyword.starts_with("AXIS2_PLACEMENT") || item->code == code::kCoordinatesList ||
            file_.annotations.Contains(static_cast<std::uint64_t>(item->id)) || !seen_.insert(item).second) {
            return;
        }
        file_.Add(FindingKind::kNotDrawn, item,
                  IsFace(item->code) ? keyword + " directly under the representation isn't drawn"
                                     : (keyword.empty() ? "a complex instance" : keyword) + " isn't drawn");
        if (IsFace(item->code)) { CheckFaceText(item); }
    }

    void CheckContainer(const P42Ent* container) {
        if (!seen_.insert(container).second) { return; }
        file_.drawn.AddNew(container->id);
        for (const P42Ent* const face : Listed(container)) {
            if (IsFace(face->code)) {
                CheckFace(face);
            } else if (seen_.insert(face).second) {
                file_.Add(FindingKind::kNotDrawn, face,
                          Keyword(face) + " in " + Number(container->id) +
                              " isn't drawn: only faces of a solid or shell are");
            }
        }
    }

    void CheckFace(const P42Ent* face) {
        if (!seen_.insert(face).second) { return; }
        file_.drawn.AddNew(face->id);
        CheckFaceText(face);
    }

    void CheckFaceText(const P42Ent* face) {
        const bool isSet = face->code == code::kComplexTriangulatedSurfaceSet;
        const bool isComplex = face->code != code::kTriangulatedFace;
        const std::string_view text = EntityText(model_, face);
        const auto arguments = ArgumentsOf(text);
        const std::size_t pnindex = isSet ? 4 : 5;
        const std::size_t wanted = pnindex + (isComplex ? 3 : 2);
        if (arguments.size() < wanted) {
            file_.Add(FindingKind::kDamaged, face,
                      "has " + std::to_string(arguments.size()) + " arguments where " +
                          std::to_string(wanted) + " are read");
            return;
        }
        // The reader of a last list with blanks after it goes on to the end of the entity.
        if (arguments.back().data() + arguments.back().size() >= text.data() + text.size()) {
            file_.Add(FindingKind::kDamaged, face, "ends without its last parenthesis");
            return;
        }
        if (file_.HasComma(face, arguments[0],
                           "its arguments are taken one place off, and the whole part is mostly given up")) {
            return;
        }
        if (!CheckSingleArguments(face, arguments)) { return; }
        if (!CheckBreaks(face, arguments, pnindex, wanted)) { return; }
        const std::int64_t vertices = CheckPoints(face, arguments[1], arguments[pnindex]);
        if (vertices >= 0) { CheckNormals(face, arguments[3], vertices); }
        CheckTriangles(face, arguments, pnindex + 1, vertices);
    }

    void AddBreak(const P42Ent* entity, const LineBreak& found, std::string text) {
        if (found.count > 1) {
            text += ", here and at " + std::to_string(found.count - 1) + " more line ends";
        }
        file_.AddAt(FindingKind::kBrokenList, entity, found.place, std::move(text));
    }

    // Tells of line ends in a face's lists that do harm; false when nothing more can be said of the face.
    bool CheckBreaks(const P42Ent* face, const std::vector<std::string_view>& arguments, std::size_t pnindex,
                     std::size_t wanted) {
        const bool isComplex = face->code != code::kTriangulatedFace;
        LineBreak walk;
        const auto take = [&walk](const LineBreak& found) {
            if (found.kind == BreakKind::kWalk && walk.place == nullptr) { walk = found; }
        };
        LineBreak normals;
        LineBreak triangles;
        for (std::size_t i = 3; i < wanted; ++i) {
            const std::string_view before = Trimmed(arguments[i - 1]);
            const std::string_view list = Trimmed(arguments[i]);
            const char* const after = before.data() + before.size();
            const Between kind = i == 3 && before != "$"                ? Between::kAfterNumber
                                 : i > pnindex && list.starts_with('(') ? Between::kBeforeTriangles
                                                                        : Between::kAny;
            take(BreakBetween({after, static_cast<std::size_t>(list.data() - after)}, kind));
            if (i == 3) { take(normals = BreakInTriples(list, true, false)); }
            if (i == pnindex) { take(BreakInNumbers(list)); }
            if (i <= pnindex) { continue; }
            if (isComplex) {
                take(BreakInStrips(list, i + 1 == wanted));
            } else {
                triangles = BreakInTriples(list, false, true);
            }
        }
        if (walk.kind == BreakKind::kWalk) {
            file_.AddAt(FindingKind::kBrokenList, face, walk.place,
                        "its lists are broken here: what follows is taken for something else, and mostly the "
                        "whole part is given up");
            return false;
        }
        if (normals.kind == BreakKind::kNumber) {
            AddBreak(face, normals, "the number after this line end reads as 0: a normal is another");
        }
        if (triangles.kind == BreakKind::kNumber) {
            AddBreak(face, triangles, "the number after this line end reads as 0: a triangle isn't drawn");
        } else if (triangles.kind == BreakKind::kEnd) {
            AddBreak(face, triangles,
                     "its list ends here: " + std::to_string(triangles.triplesBefore) + " of " +
                         std::to_string(ShapeOf(arguments[wanted - 1]).inner) + " triangles are drawn");
        }
        return true;
    }

    // The arguments that are no lists: pnmax, and the link of a face.
    bool CheckSingleArguments(const P42Ent* face, const std::vector<std::string_view>& arguments) {
        const std::string_view pnmax = Trimmed(arguments[2]);
        const bool isNumber = !pnmax.empty() && std::all_of(pnmax.begin(), pnmax.end(), real::IsDigit);
        if (!isNumber && pnmax != "$") {
            file_.Add(FindingKind::kDamaged, face, "its third argument is neither a number nor $");
            return false;
        }
        if (pnmax.size() >= kDigitRoom) {
            file_.Add(FindingKind::kTooLong, face,
                      "its third argument has more than " + std::to_string(kDigitRoom - 1) + " digits");
        }
        if (IsFace(face->code) && Trimmed(arguments[4]) != "$" && IdIn(arguments[4]) == 0) {
            file_.Add(FindingKind::kDamaged, face, "its fifth argument is neither a reference nor $");
            return false;
        }
        return true;
    }

    // The number of points of a list; -1 for one that can't be read.
    std::int64_t PointsOf(const P42Ent* list) {
        const auto known = points_.find(list);
        if (known != points_.end()) { return known->second; }
        std::int64_t& points = points_[list];
        points = -1;
        const std::string_view text = EntityText(model_, list);
        const auto arguments = ArgumentsOf(text);
        if (arguments.size() < 3) {
            file_.Add(FindingKind::kDamaged, list, "has no list of points as its third argument");
            return -1;
        }
        if (file_.IsMissed(list, text, 2, '(', arguments[2], "its points aren't found")) { return -1; }
        const ListShape shape = ShapeOf(arguments[2]);
        const LineBreak found = BreakInTriples(Trimmed(arguments[2]), true, true);
        if (found.kind == BreakKind::kNumber) {
            AddBreak(list, found, "the number after this line end reads as 0: a point is moved");
        } else if (found.kind == BreakKind::kEnd) {
            AddBreak(list, found,
                     "its list ends here: " + std::to_string(found.triplesBefore) + " of " +
                         std::to_string(shape.inner) + " points are read");
            return -1;
        }
        if (!shape.triples || !shape.sound) {
            file_.Add(FindingKind::kDamaged, list, "has a point that isn't three numbers");
            return -1;
        }
        points = shape.inner;
        return points;
    }

    // The number of vertices that a face has; -1 when it can't be told.
    std::int64_t CheckPoints(const P42Ent* face, std::string_view coordinates, std::string_view pnindex) {
        const std::int32_t id = IdIn(coordinates);
        const P42Ent* const list = model_.Find(id);
        if (list == nullptr) {
            if (id == 0) { file_.Add(FindingKind::kDamaged, face, "names no COORDINATES_LIST"); }
            return -1;
        }
        const std::int64_t points = PointsOf(list);
        if (points < 0) { return -1; }
        if (!ShapeOf(pnindex).sound) {
            file_.AddAt(FindingKind::kDamaged, face, pnindex.data(),
                        "has a pnindex that isn't a list of numbers");
            return -1;
        }
        std::int64_t picked = 0;
        const char* const outside = PlaceOutside(pnindex, points, &picked);
        if (outside != nullptr) {
            file_.AddAt(FindingKind::kDamaged, face, outside,
                        "names point " + std::to_string(StringToInteger(outside)) + ", but " + Number(id) +
                            " has " + std::to_string(points));
            return -1;
        }
        const std::int64_t vertices = picked > 0 ? picked : points;
        if (vertices == 0) { file_.Add(FindingKind::kDamaged, face, "has no points"); }
        return vertices;
    }

    void CheckNormals(const P42Ent* face, std::string_view normals, std::int64_t vertices) {
        const ListShape shape = ShapeOf(normals);
        if (shape.inner == 0) {
            file_.Add(FindingKind::kNoNormals, face, "has no normals: it is lit as if they were 0, 0, 1");
        } else if (!shape.triples || !shape.sound) {
            file_.Add(FindingKind::kDamaged, face, "has a normal that isn't three numbers");
        } else if (shape.inner > 1 && shape.inner > vertices) {
            file_.Add(FindingKind::kManyNormals, face,
                      "has " + std::to_string(shape.inner) + " normals for " + std::to_string(vertices) +
                          " points: the whole part is given up");
        } else if (shape.inner > 1 && shape.inner < vertices) {
            file_.Add(FindingKind::kNoNormals, face,
                      "has " + std::to_string(shape.inner) + " normals for " + std::to_string(vertices) +
                          " points: it is lit as if they were 0, 0, 1");
        }
    }

    void CheckTriangles(const P42Ent* face, const std::vector<std::string_view>& arguments, std::size_t first,
                        std::int64_t vertices) {
        const bool isComplex = face->code != code::kTriangulatedFace;
        std::int64_t values = 0;
        for (std::size_t i = first; i < first + (isComplex ? 2 : 1); ++i) {
            const ListShape shape = ShapeOf(arguments[i]);
            values += shape.values;
            std::int64_t sound = 0;
            const char* const outside = vertices > 0 ? PlaceOutside(arguments[i], vertices, &sound) : nullptr;
            if (outside != nullptr) {
                file_.AddAt(FindingKind::kNotDrawn, face, outside,
                            "has a triangle with vertex " + std::to_string(StringToInteger(outside)) +
                                " of " + std::to_string(vertices) + ": it isn't drawn");
            }
            if (isComplex && (shape.blankBetween || (shape.blankAtEnd && i == first))) {
                file_.AddAt(
                    FindingKind::kBlank, face, arguments[i].data(),
                    "has a blank between or after its strips or fans: what follows becomes other triangles");
            }
            if (isComplex && !shape.sound) {
                file_.AddAt(FindingKind::kDamaged, face, arguments[i].data(),
                            "has strips or fans that aren't lists of numbers");
            }
            if (!isComplex && !(shape.triples && shape.sound)) {
                file_.AddAt(FindingKind::kDamaged, face, arguments[i].data(),
                            "has a triangle that isn't three numbers");
            }
        }
        if (values < 3) { file_.Add(FindingKind::kNotDrawn, face, "has no triangles"); }
    }

    // Tessellated shapes that the representation doesn't lead to.
    void CheckLeftOut() {
        for (const bool isContainer : {true, false}) {
            for (std::int32_t i = 0; i < model_.entityCount; ++i) {
                const P42Ent* const entity = model_.EntityAt(i);
                if (IsContainer(entity->code) == isContainer && !seen_.contains(entity) && IsShape(entity)) {
                    MarkSeen(entity);
                    NoteLeftOut(entity);
                }
            }
        }
    }

    void NoteLeftOut(const P42Ent* entity) {
        const char* const why = model_.shapeRepresentationId != 0
                                    ? " isn't drawn: the TESSELLATED_SHAPE_REPRESENTATION that counts "
                                      "doesn't lead to it"
                                    : " isn't drawn: no TESSELLATED_SHAPE_REPRESENTATION leads to it";
        file_.Add(FindingKind::kNotListed, entity, Keyword(entity) + why);
    }

    CheckedFile& file_;
    const StepModel& model_;
    std::unordered_set<const P42Ent*> seen_;
    std::unordered_set<const P42Ent*> noted_; // items that aren't read
    std::unordered_map<const P42Ent*, std::int64_t> points_;
};

} // namespace

void CheckPart(CheckedFile& file) {
    PartCheck(file).Run();
}

void CheckOwnShapes(CheckedFile& file) {
    PartCheck(file).RunOnOwnShapes();
}

} // namespace tarnwick
