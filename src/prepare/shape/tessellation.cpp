#include "prepare/shape/tessellation.h"

#include "exchange/arguments.h"
#include "prepare/placement/placements.h"
#include "prepare/shape/list_text.h"
#include "prepare/shape/mesh_normals.h"
#include "prepare/structure/shape_kinds.h"
#include "write/p21_faces.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarnwick::prepare {

namespace {

// How often one body may list items, as a multiple of the file's instances: sets may list the same items
// again at every level.
constexpr std::size_t kMostTimes = 16;

// ---- which faces an item has

class FaceSearch {
public:
    FaceSearch(const ExchangeFile& file, const TellLoss& tell) : file_(file), tell_(tell) {}

    SourceBody Run(std::uint64_t item) {
        open_.push_back({item, {}, 0, kNone});
        const std::size_t most = kMostTimes * (file_.Instances().size() + 1);
        for (std::size_t i = 0; i < most && !open_.empty(); ++i) {
            const Open next = open_.back();
            open_.pop_back();
            const Instance* const instance = file_.Find(next.item);
            if (instance == nullptr) {
                tell_(next.item, "a face isn't in the file");
            } else if (file_.KeywordOf(*instance).empty()) {
                Complex(*instance, next);
            } else {
                Simple(*instance, next);
            }
        }
        if (!open_.empty()) { tell_(item, "sets in it list the same faces too often"); }
        return std::move(body_);
    }

private:
    static constexpr int kMostLevels = 16; // of sets in sets
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    struct Open {
        std::uint64_t item = 0;
        Transform at;
        int level = 0;
        std::size_t holder = kNone; // in holders_
    };
    struct Holder {
        std::uint64_t item = 0;
        std::size_t above = kNone; // its own holder
    };

    void Simple(const Instance& instance, const Open& open) {
        const std::string_view keyword = file_.KeywordOf(instance);
        const Arguments arguments(RecordOf(file_.TextOf(instance)).arguments);
        SourceFace face;
        face.entity = instance.number;
        face.at = open.at;
        face.coordinates = ReferenceOf(arguments[1]);
        face.normals = arguments[3];
        const bool isFace = keyword.ends_with("_FACE");
        if (isFace) { face.link = ReferenceOf(arguments[4]); }
        const std::size_t own = isFace ? 5 : 4; // of the arguments that the kinds of faces differ in
        if (keyword == "TRIANGULATED_FACE" || keyword == "TRIANGULATED_SURFACE_SET") {
            AddFace(&face, arguments[own], arguments[own + 1], {}, SourceFace::Form::kTriangles);
        } else if (keyword == "COMPLEX_TRIANGULATED_FACE" || keyword == "COMPLEX_TRIANGULATED_SURFACE_SET") {
            AddFace(&face, arguments[own], arguments[own + 1], arguments[own + 2],
                    SourceFace::Form::kStripsAndFans);
        } else if (keyword == "CUBIC_BEZIER_TRIANGULATED_FACE") {
            AddFace(&face, {}, arguments[own], {}, SourceFace::Form::kBezier);
        } else if (keyword == "TESSELLATED_SOLID" || keyword == "TESSELLATED_SHELL") {
            if (open.level == 0) { NoteBody(keyword, ReferenceOf(arguments[2])); }
            OpenItems(arguments[1], open);
        } else if (keyword == "TESSELLATED_GEOMETRIC_SET") {
            OpenItems(arguments[1], open);
        }
        // Curves, wires, edges, vertices and points are no faces.
    }

    // A repositioned item, or one whose attributes are in the records of its supertypes.
    void Complex(const Instance& instance, Open open) {
        const std::string_view text = file_.TextOf(instance);
        const auto of = [&](std::string_view keyword) { return FindRecord(text, keyword); };
        if (const Record moved = of("REPOSITIONED_TESSELLATED_ITEM"); moved.IsFound()) {
            const std::optional<Transform> at =
                ReadPlacement(file_, ReferenceOf(Arguments(moved.arguments)[0]), 1);
            if (at) {
                open.at = open.at * *at;
            } else {
                tell_(instance.number, "its placement can't be read");
            }
        }
        SourceFace face;
        face.entity = instance.number;
        face.at = open.at;
        for (const char* const keyword : {"TESSELLATED_FACE", "TESSELLATED_SURFACE_SET"}) {
            if (const Record record = of(keyword); record.IsFound()) {
                const Arguments arguments(record.arguments);
                face.coordinates = ReferenceOf(arguments[0]);
                face.normals = arguments[2];
                face.link = ReferenceOf(arguments[3]);
            }
        }
        for (const Record& record : RecordsOf(text)) {
            const Arguments arguments(record.arguments);
            if (record.keyword == "TRIANGULATED_FACE" || record.keyword == "TRIANGULATED_SURFACE_SET") {
                AddFace(&face, arguments[0], arguments[1], {}, SourceFace::Form::kTriangles);
            } else if (record.keyword == "COMPLEX_TRIANGULATED_FACE" ||
                       record.keyword == "COMPLEX_TRIANGULATED_SURFACE_SET") {
                AddFace(&face, arguments[0], arguments[1], arguments[2], SourceFace::Form::kStripsAndFans);
            } else if (record.keyword == "CUBIC_BEZIER_TRIANGULATED_FACE") {
                AddFace(&face, {}, arguments[0], {}, SourceFace::Form::kBezier);
            } else if (record.keyword == "TESSELLATED_SOLID" || record.keyword == "TESSELLATED_SHELL") {
                if (open.level == 0) { NoteBody(record.keyword, ReferenceOf(arguments[1])); }
                OpenItems(arguments[0], open);
            } else if (record.keyword == "TESSELLATED_GEOMETRIC_SET") {
                OpenItems(arguments[0], open);
            }
        }
    }

    void NoteBody(std::string_view keyword, std::uint64_t link) {
        body_.isSolid = keyword == "TESSELLATED_SOLID";
        body_.link = link;
    }
    void AddFace(SourceFace* face, std::string_view pnindex, std::string_view first, std::string_view second,
                 SourceFace::Form form) {
        const bool hasNumbers = pnindex.find_first_of("0123456789") != std::string_view::npos;
        face->pnindex = hasNumbers ? pnindex : std::string_view{};
        face->lists[0] = first;
        face->lists[1] = second;
        face->form = form;
        body_.faces.push_back(*face);
    }
    void OpenItems(std::string_view list, const Open& open) {
        if (open.level == kMostLevels) { return tell_(open.item, "sets hold each other too deeply"); }
        for (std::size_t i = open.holder; i != kNone; i = holders_[i].above) {
            if (holders_[i].item == open.item) { return tell_(open.item, "it is a set that holds itself"); }
        }
        holders_.push_back({open.item, open.holder});
        std::vector<std::uint64_t> items;
        AppendReferences(list, &items);
        for (std::size_t i = items.size(); i-- > 0;) {
            open_.push_back({items[i], open.at, open.level + 1, holders_.size() - 1});
        }
    }

    const ExchangeFile& file_;
    const TellLoss& tell_;
    SourceBody body_;
    std::vector<Open> open_;
    std::vector<Holder> holders_; // those that were opened
};

// ---- triangles of strips, fans and curved triangles; indices from 1, and 0 for what is no index

void AppendTriangle(std::array<Index, 3> t, std::size_t most, std::vector<Triangle>* triangles,
                    std::size_t* dropped) {
    for (const Index index : t) {
        if (index == 0 || index > most) {
            ++*dropped;
            return;
        }
    }
    triangles->push_back({t[0] - 1, t[1] - 1, t[2] - 1});
}

void AppendStrips(const IndexLists& strips, std::size_t most, std::vector<Triangle>* triangles,
                  std::size_t* dropped) {
    for (std::size_t k = 0; k < strips.Count(); ++k) {
        const auto s = strips.List(k);
        if (s.size() < 3) { ++*dropped; }
        for (std::size_t i = 2; i < s.size(); ++i) {
            const bool isOdd = i % 2 == 1;
            AppendTriangle({s[isOdd ? i - 1 : i - 2], s[isOdd ? i - 2 : i - 1], s[i]}, most, triangles,
                           dropped);
        }
    }
}

void AppendFans(const IndexLists& fans, std::size_t most, std::vector<Triangle>* triangles,
                std::size_t* dropped) {
    for (std::size_t k = 0; k < fans.Count(); ++k) {
        const auto f = fans.List(k);
        if (f.size() < 3) { ++*dropped; }
        for (std::size_t i = 2; i < f.size(); ++i) {
            AppendTriangle({f[0], f[i - 1], f[i]}, most, triangles, dropped);
        }
    }
}

void AppendTriangles(const IndexLists& lists, std::size_t most, std::vector<Triangle>* triangles,
                     std::size_t* dropped) {
    for (std::size_t k = 0; k < lists.Count(); ++k) {
        const auto t = lists.List(k);
        if (t.size() != 3) {
            ++*dropped;
        } else {
            AppendTriangle({t[0], t[1], t[2]}, most, triangles, dropped);
        }
    }
}

// Each patch has ten control points, row by row from its first corner; it becomes 16 flat triangles.
void AppendPatches(const IndexLists& patches, const std::vector<Vec3>& control, MeshFace* face,
                   std::size_t* dropped) {
    constexpr int kSteps = 4;
    for (std::size_t k = 0; k < patches.Count(); ++k) {
        const auto c = patches.List(k);
        if (c.size() != 10 ||
            std::any_of(c.begin(), c.end(), [&](Index i) { return i == 0 || i > control.size(); })) {
            ++*dropped;
            continue;
        }
        const auto first = static_cast<Index>(face->points.size());
        for (int row = 0; row <= kSteps; ++row) {
            for (int column = 0; column <= row; ++column) {
                const double u = 1 - static_cast<double>(row) / kSteps;
                const double w = static_cast<double>(column) / kSteps;
                const double v = 1 - u - w;
                const std::array<double, 10> weights{
                    u * u * u,     3 * u * u * v, 3 * u * u * w, 3 * u * v * v, 6 * u * v * w,
                    3 * u * w * w, v * v * v,     3 * v * v * w, 3 * v * w * w, w * w * w};
                Vec3 point;
                for (std::size_t i = 0; i < 10; ++i) { point = point + control[c[i] - 1] * weights[i]; }
                face->points.push_back(point);
            }
        }
        const auto at = [first](int row, int column) {
            return first + static_cast<Index>(row * (row + 1) / 2 + column);
        };
        for (int row = 0; row < kSteps; ++row) {
            for (int column = 0; column <= row; ++column) {
                face->triangles.push_back({at(row, column), at(row + 1, column), at(row + 1, column + 1)});
                if (column < row) {
                    face->triangles.push_back(
                        {at(row, column), at(row + 1, column + 1), at(row, column + 1)});
                }
            }
        }
    }
}

// Gives a face only those of the points, and of its normals, that its triangles use, in the order in which
// they come up: many faces may share one long list.
void TakeUsed(const std::vector<Vec3>& points, MeshFace* face) {
    const bool hasNormals = face->normals.size() == points.size() && points.size() > 1;
    std::vector<Vec3> normals;
    LookUp<Index, Index> places;
    for (Triangle& t : face->triangles) {
        for (Index& i : t) {
            const Index* const known = places.Find(i);
            const Index place = known != nullptr ? *known : static_cast<Index>(face->points.size());
            if (known == nullptr) {
                places.Add(i, place);
                face->points.push_back(points[i]);
                if (hasNormals) { normals.push_back(face->normals[i]); }
            }
            i = place;
        }
    }
    if (hasNormals) { face->normals = std::move(normals); }
}

} // namespace

SourceBody FacesOf(const ExchangeFile& file, std::uint64_t item, const TellLoss& tell) {
    return FaceSearch(file, tell).Run(item);
}

void MoveFace(const Transform& at, MeshFace* face) {
    if (IsIdentity(at)) { return; }
    for (Vec3& p : face->points) { p = Apply(at, p); }
    // The inverse transposed turns normals.
    Transform turn = at;
    if (const std::optional<Transform> inverse = Inverse(at)) {
        const auto& m = inverse->linear;
        turn.linear = {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]};
    }
    for (Vec3& n : face->normals) {
        n = TurnBy(turn, n);
        const double length = Length(n);
        if (length > 0) { n = n * (1 / length); }
    }
    if (Determinant(at) < 0) {
        for (Triangle& t : face->triangles) { std::swap(t[1], t[2]); }
    }
}

std::optional<EntityId> WriteMeshFace(P21Writer* out, const MeshFace& face) {
    if (face.triangles.empty()) { return std::nullopt; }
    FaceEntity entity;
    entity.coordinates = WriteCoordinates(out, face.points);
    entity.points = face.points.size();
    entity.normals = face.normals;
    return WriteFace(out, entity, face.triangles);
}

void FaceWriter::Announce(std::span<const SourceFace> faces) {
    for (const SourceFace& face : faces) {
        PointList& list = lists_.At(face.coordinates);
        if (face.pnindex.empty()) { ++list.faces; }
        list.isShared = ++list.toCome > 1;
    }
}

std::string_view FaceWriter::PointsText(std::uint64_t coordinates) const {
    const Instance* const instance = file_.Find(coordinates);
    if (instance == nullptr) { return {}; }
    const Record record = FindRecord(file_.TextOf(*instance), "COORDINATES_LIST");
    const Arguments arguments(record.arguments);
    return arguments[arguments.Count() == 3 ? 2 : 1]; // without a name in a complex instance
}

bool FaceWriter::WritePoints(std::uint64_t coordinates, PointList* list) {
    list->isWritten = true;
    std::string& text = scratch_[0];
    text.clear();
    bool isWhole = false;
    list->points = CopyTriples(PointsText(coordinates), &text, &isWhole);
    if (!isWhole) {
        tell_(coordinates, "the list of points is broken after " + std::to_string(list->points) + " of them");
    }
    if (list->points == 0) { return false; }
    list->id = out_.Add("COORDINATES_LIST", "", list->points, P21Literal{text});
    return true;
}

std::optional<EntityId> FaceWriter::Write(const SourceFace& face, const Transform& at) {
    const Transform whole = at * face.at;
    const bool stays = IsIdentity(whole) && face.form != SourceFace::Form::kBezier;
    // A list that several faces number directly would be read once for each of them.
    const bool isShared = face.pnindex.empty() && lists_.At(face.coordinates).faces > 1;
    const bool mayCopy = stays && !isShared && ListOf(face.normals).find('(') != std::string_view::npos;
    const std::optional<EntityId> id = mayCopy ? Copy(face) : Make(face, whole);
    LetGo(face.coordinates);
    return id;
}

void FaceWriter::LetGo(std::uint64_t coordinates) {
    PointList& list = lists_.At(coordinates);
    if (list.toCome > 0 && --list.toCome == 0) {
        if (std::vector<Vec3>* const points = parsed_.Find(coordinates)) {
            std::vector<Vec3>().swap(*points);
        }
    }
}

std::optional<EntityId> FaceWriter::Copy(const SourceFace& face) {
    PointList& list = lists_.At(face.coordinates);
    if (!list.isWritten) { WritePoints(face.coordinates, &list); }
    if (list.points == 0) { return std::nullopt; }
    for (std::string& text : scratch_) { text.clear(); }
    std::string& pnindex = scratch_[1];
    std::size_t points = list.points;
    bool isWhole = true;
    if (!face.pnindex.empty()) {
        points = CopyIndices(face.pnindex, list.points, &pnindex, &isWhole);
    } else {
        pnindex = "()";
    }
    if (!isWhole) { tell_(face.entity, "its list of point numbers is broken or leads beyond the points"); }
    std::string& normals = scratch_[2];
    const std::size_t normalCount = CopyTriples(face.normals, &normals, &isWhole);
    if (normalCount != 1 && normalCount != points) { return Make(face, {}); }
    std::size_t dropped = 0;
    std::size_t droppedSecond = 0;
    const bool hasStrips = face.form == SourceFace::Form::kStripsAndFans;
    std::size_t triangles = CopyLists(face.lists[0], hasStrips ? ListForm::kStrips : ListForm::kTriangles,
                                      points, &scratch_[3], &dropped);
    if (hasStrips) {
        triangles += CopyLists(face.lists[1], ListForm::kStrips, points, &scratch_[4], &droppedSecond);
    }
    dropped += droppedSecond;
    if (dropped > 0) {
        tell_(face.entity, std::to_string(dropped) + " of its lists of triangles are broken");
    }
    if (triangles == 0) { return std::nullopt; }
    triangles_ += triangles;
    const EntityId none;
    if (!hasStrips) {
        return out_.Add("TRIANGULATED_FACE", "", list.id, points, P21Literal{normals}, none,
                        P21Literal{pnindex}, P21Literal{scratch_[3]});
    }
    return out_.Add("COMPLEX_TRIANGULATED_FACE", "", list.id, points, P21Literal{normals}, none,
                    P21Literal{pnindex}, P21Literal{scratch_[3]}, P21Literal{scratch_[4]});
}

const std::vector<Vec3>& FaceWriter::PointsOf(std::uint64_t coordinates) {
    const bool isShared = lists_.At(coordinates).isShared;
    if (const std::vector<Vec3>* const known = isShared ? parsed_.Find(coordinates) : nullptr) {
        return *known;
    }
    bool isWhole = true;
    std::vector<Vec3> points = ReadTriples(PointsText(coordinates), &isWhole);
    if (!isWhole) {
        tell_(coordinates,
              "the list of points is broken after " + std::to_string(points.size()) + " of them");
    }
    if (!isShared) { return lastParsed_ = std::move(points); }
    return parsed_.At(coordinates) = std::move(points);
}

std::optional<EntityId> FaceWriter::Make(const SourceFace& source, const Transform& at) {
    bool isWhole = true;
    const std::vector<Vec3>& points = PointsOf(source.coordinates);
    MeshFace face;
    face.entity = source.entity;
    std::size_t dropped = 0;
    const IndexLists first = ReadLists(source.lists[0]);
    if (source.form == SourceFace::Form::kBezier) {
        AppendPatches(first, points, &face, &dropped);
    } else {
        std::vector<Index> numbers;
        if (!source.pnindex.empty()) {
            numbers = ReadIndices(source.pnindex, &isWhole);
            if (!isWhole) { tell_(source.entity, "its list of point numbers is broken"); }
        }
        const std::size_t most = numbers.empty() ? points.size() : numbers.size();
        if (source.form == SourceFace::Form::kTriangles) {
            AppendTriangles(first, most, &face.triangles, &dropped);
        } else {
            AppendStrips(first, most, &face.triangles, &dropped);
            AppendFans(ReadLists(source.lists[1]), most, &face.triangles, &dropped);
        }
        face.normals = ReadTriples(source.normals, &isWhole);
        if (face.normals.size() != 1 && face.normals.size() != most) { face.normals.clear(); }
        if (numbers.empty()) {
            TakeUsed(points, &face);
        } else {
            face.points.reserve(most);
            for (const Index number : numbers) {
                if (number > points.size()) {
                    tell_(source.entity, "its list of point numbers leads beyond the points");
                    return std::nullopt;
                }
                face.points.push_back(points[number - 1]);
            }
        }
    }
    if (dropped > 0) {
        tell_(source.entity, std::to_string(dropped) + " of its triangles lead beyond the points");
    }
    MoveFace(at, &face);
    if (face.normals.empty()) { AddNormals(&face); }
    triangles_ += face.triangles.size();
    return WriteMeshFace(&out_, face);
}

} // namespace tarnwick::prepare
