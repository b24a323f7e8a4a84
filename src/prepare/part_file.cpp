#include "prepare/part_file.h"

#include "exchange/arguments.h"
#include "prepare/shape/tessellation.h"
#include "write/p21_product.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

namespace tarnwick::prepare {

namespace {

class PartWriter {
public:
    PartWriter(const PartSource& source, const PartOptions& options, ByteSink* sink)
        : source_(source), options_(options), out_(sink),
          faceWriter_(source.file, &out_,
                      [this](std::uint64_t entity, std::string why) { Tell(entity, std::move(why)); }) {}

    PartResult Run() {
        out_.Header({"a part, prepared for viewing", options_.name, kAp242.schema, "tarnwick-prepare"});
        const ContextIds contexts = WriteContexts(&out_, kAp242, options_.unit);
        const ProductIds product = WriteProduct(&out_, contexts, options_.name, options_.name, "part");
        WriteTessellated();
        WriteExact();
        WriteStyles();
        WriteRepresentations(&out_, contexts, product.shape, items_);
        out_.Footer();
        result_.triangles += faceWriter_.Triangles();
        return std::move(result_);
    }

private:
    // Index in palette_, or kPlain.
    using StyleNumber = std::size_t;
    static constexpr StyleNumber kPlain = static_cast<StyleNumber>(-1);
    struct StyledFace {
        EntityId id;
        StyleNumber style = kPlain;
    };

    void Tell(std::uint64_t entity, std::string why) {
        result_.losses.push_back({options_.name, entity, std::move(why)});
    }

    // From the shape's own length unit into what is written.
    Transform PlaceOf(const ShapeItem& item) const {
        const double scale = item.unit / options_.unit;
        const bool isPlain = IsIdentity(item.at) && IsIdentity(options_.turn);
        if (isPlain) { return scale == 1 ? Transform{} : Scaling(scale); }
        return Scaling(1 / options_.unit) * options_.turn * item.at * Scaling(item.unit);
    }

    // ---- tessellated

    void WriteTessellated() {
        // Goes over the items twice: which lists are shared must be known first, and a file may have too many
        // faces to keep what was found of each.
        const TellLoss silent = [](std::uint64_t, const std::string&) {};
        for (const ShapeItem& item : options_.shape) {
            if (item.kind == ShapeKind::kTessellated) {
                faceWriter_.Announce(FacesOf(source_.file, item.item, silent).faces);
            }
        }
        const TellLoss tell = [this](std::uint64_t entity, std::string why) { Tell(entity, std::move(why)); };
        std::vector<StyledFace> loose; // faces that are items of the representation themselves
        for (const ShapeItem& item : options_.shape) {
            if (item.kind != ShapeKind::kTessellated) { continue; }
            const SourceBody body = FacesOf(source_.file, item.item, tell);
            const bool isLoose = body.faces.size() == 1 && body.faces[0].entity == item.item;
            const StyleNumber below = StyleBelow(item, {item.item, body.link});
            const Transform at = PlaceOf(item);
            std::vector<StyledFace> faces;
            for (const SourceFace& face : body.faces) {
                const std::optional<EntityId> id = faceWriter_.Write(face, at);
                if (id) { faces.push_back({*id, FirstStyle({face.entity, face.link}, below)}); }
            }
            if (isLoose) {
                loose.insert(loose.end(), faces.begin(), faces.end());
            } else {
                AddBody(faces, body.isSolid);
            }
        }
        AddBody(loose, false);
    }

    // ---- exact

    void WriteExact() {
        // Bodies of one context are triangulated together.
        std::map<std::uint64_t, std::vector<const ShapeItem*>> groups;
        for (const ShapeItem& item : options_.shape) {
            if (item.kind == ShapeKind::kExact) { groups[item.context].push_back(&item); }
        }
        for (const auto& [context, items] : groups) {
            if (options_.mesher == nullptr) {
                for (const ShapeItem* const item : items) {
                    Tell(item->item, "its shape is exact, and tarnwick-mesh isn't installed");
                }
                continue;
            }
            std::vector<std::uint64_t> numbers;
            LookUp<std::uint64_t, std::size_t> places; // in what comes back
            for (const ShapeItem* const item : items) {
                if (places.AddNew(item->item, numbers.size())) { numbers.push_back(item->item); }
            }
            const MeshResult meshed = options_.mesher->Mesh(source_.file, numbers, context);
            result_.isCancelled = result_.isCancelled || meshed.isCancelled;
            for (const std::string& loss : meshed.losses) { Tell(0, loss); }
            for (const std::string& note : meshed.notes) {
                result_.losses.push_back({options_.name, 0, note, false});
            }
            for (const ShapeItem* const item : items) {
                const std::size_t place = *places.Find(item->item);
                if (place < meshed.bodies.size()) { WriteMeshes(*item, meshed.bodies[place]); }
            }
        }
    }

    void WriteMeshes(const ShapeItem& item, const MeshBody& body) {
        const Transform at = PlaceOf(item);
        const StyleNumber below = StyleBelow(item, ShellsOf(item.item));
        std::vector<StyledFace> faces;
        for (MeshFace face : body.faces) {
            MoveFace(at, &face);
            const std::optional<EntityId> id = WriteMeshFace(&out_, face);
            if (!id) { continue; }
            result_.triangles += face.triangles.size();
            faces.push_back({*id, FirstStyle({face.entity, 0}, below)});
        }
        AddBody(faces, IsSolid(item.item));
    }

    bool IsSolid(std::uint64_t body) const {
        const Instance* const instance = source_.file.Find(body);
        return instance != nullptr &&
               source_.file.KeywordOf(*instance).find("BREP") != std::string_view::npos;
    }

    // The body itself, and the shells in it.
    std::vector<std::uint64_t> ShellsOf(std::uint64_t body) const {
        std::vector<std::uint64_t> all{body};
        const Instance* const instance = source_.file.Find(body);
        if (instance != nullptr) { AppendReferences(source_.file.TextOf(*instance), &all); }
        return all;
    }

    // ---- styles

    StyleNumber NumberOf(const SurfaceStyle& style) {
        const std::array<double, 4> key{style.colour.red, style.colour.green, style.colour.blue,
                                        style.transparency};
        const auto [place, isNew] = palette_.emplace(key, styles_.size());
        if (isNew) { styles_.push_back(style); }
        return place->second;
    }
    template <class Items>
    StyleNumber FirstStyle(const Items& items, StyleNumber otherwise) {
        if (source_.styles.IsEmpty()) { return otherwise; }
        for (const std::uint64_t item : items) {
            const SurfaceStyle* const style = item != 0 ? source_.styles.Of(item, options_.context) : nullptr;
            if (style != nullptr) { return NumberOf(*style); }
        }
        return otherwise;
    }
    StyleNumber FirstStyle(std::initializer_list<std::uint64_t> items, StyleNumber otherwise) {
        return FirstStyle<std::initializer_list<std::uint64_t>>(items, otherwise);
    }
    // That of the body, or of what the item and the part came through, the innermost first.
    template <class Items>
    StyleNumber StyleBelow(const ShapeItem& item, const Items& own) {
        std::vector<std::uint64_t> way = source_.structure.paths[item.path];
        std::reverse(way.begin(), way.end());
        way.push_back(options_.style);
        return FirstStyle(own, FirstStyle(way, kPlain));
    }
    StyleNumber StyleBelow(const ShapeItem& item, std::initializer_list<std::uint64_t> own) {
        return StyleBelow<std::initializer_list<std::uint64_t>>(item, own);
    }

    void AddBody(const std::vector<StyledFace>& faces, bool isSolid) {
        if (faces.empty()) { return; }
        ++result_.bodies;
        result_.faces += faces.size();
        std::vector<EntityId> ids;
        ids.reserve(faces.size());
        for (const StyledFace& face : faces) { ids.push_back(face.id); }
        const EntityId body =
            out_.Add(isSolid ? "TESSELLATED_SOLID" : "TESSELLATED_SHELL", "", ids, EntityId{});
        items_.tessellated.push_back(body);
        const StyleNumber first = faces.front().style;
        const bool isOne = std::all_of(faces.begin(), faces.end(),
                                       [first](const StyledFace& face) { return face.style == first; });
        if (isOne) {
            if (first != kPlain) { styled_.push_back({body, first}); }
            return;
        }
        for (const StyledFace& face : faces) {
            if (face.style != kPlain) { styled_.push_back(face); }
        }
    }

    void WriteStyles() {
        std::vector<EntityId> written;
        written.reserve(styles_.size());
        for (const SurfaceStyle& style : styles_) {
            // The viewer's readers take this number for the opacity.
            const std::optional<double> opacity =
                style.transparency > 0 ? std::optional<double>(1 - style.transparency) : std::nullopt;
            written.push_back(WriteStyle(&out_, style.colour, opacity));
        }
        for (const StyledFace& item : styled_) {
            items_.styled.push_back(WriteStyledItem(&out_, written[item.style], item.id));
        }
    }

    const PartSource& source_;
    const PartOptions& options_;
    P21Writer out_;
    FaceWriter faceWriter_;
    PartItems items_;
    PartResult result_;
    std::map<std::array<double, 4>, StyleNumber> palette_;
    std::vector<SurfaceStyle> styles_; // by their numbers
    std::vector<StyledFace> styled_;
};

} // namespace

PartResult WritePart(const PartSource& source, const PartOptions& options, ByteSink* sink) {
    return PartWriter(source, options, sink).Run();
}

} // namespace tarnwick::prepare
