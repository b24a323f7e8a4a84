// Exact bodies without tessellation, and files without any shape, as the full readers see them.

#include "check/check_file.h"
#include "exchange/arguments.h"
#include "text/look_up.h"

#include <algorithm>

namespace tarnwick {

namespace {

std::string Counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

// Tells what a file without bodies holds instead.
void CheckFaces(CheckedFile& file) {
    const auto faces = file.exchange.OfKeyword("ADVANCED_FACE");
    if (faces.empty()) {
        file.Add(FindingKind::kNoShape, "the file holds no shape, neither tessellated nor exact");
    } else {
        file.AddAt(FindingKind::kExactOnly, file.exchange.Instances()[faces[0]].number,
                   Counted(faces.size(), "exact face", "exact faces") +
                       ", in no solid or surface, without tessellation");
    }
}

// The exact bodies and shells that the tessellated ones of a file link to. Where one has no link, it may
// stand for any.
class Links {
public:
    explicit Links(const ExchangeFile& file) : file_(file) {
        for (const char* const keyword : {"TESSELLATED_SOLID", "TESSELLATED_SHELL"}) {
            for (const std::uint32_t place : file.OfKeyword(keyword)) {
                const Arguments arguments(RecordOf(file.TextOf(file.Instances()[place])).arguments);
                const std::uint64_t link = ReferenceOf(arguments[2]);
                isAllLinked_ = isAllLinked_ && link != 0;
                linked_.AddNew(link);
            }
        }
    }

    // Whether some tessellation may stand for a body.
    bool MayTell(std::uint64_t body) {
        if (!isAllLinked_ || linked_.Contains(body)) { return true; }
        const Instance* const instance = file_.Find(body);
        std::vector<std::uint64_t> shells;
        if (instance != nullptr) { AppendReferences(file_.TextOf(*instance), &shells); }
        return std::any_of(shells.begin(), shells.end(),
                           [this](std::uint64_t shell) { return linked_.Contains(shell); });
    }

private:
    const ExchangeFile& file_;
    LookUp<std::uint64_t, char> linked_;
    bool isAllLinked_ = true;
};

} // namespace

bool HasTessellation(CheckedFile& file) {
    const auto isShape = [&file](std::uint32_t place) {
        return !file.annotations.Contains(file.exchange.Instances()[place].number);
    };
    for (const char* const keyword :
         {"TESSELLATED_SOLID", "TESSELLATED_SHELL", "TRIANGULATED_FACE", "COMPLEX_TRIANGULATED_FACE",
          "TRIANGULATED_SURFACE_SET", "COMPLEX_TRIANGULATED_SURFACE_SET"}) {
        const auto places = file.exchange.OfKeyword(keyword);
        if (std::any_of(places.begin(), places.end(), isShape)) { return true; }
    }
    return false;
}

std::string ExactShapeText(std::size_t solids, std::size_t surfaces) {
    if (solids == 0) { return Counted(surfaces, "exact surface", "exact surfaces"); }
    const std::string text = Counted(solids, "exact solid", "exact solids");
    return surfaces == 0 ? text : text + " and " + Counted(surfaces, "exact surface", "exact surfaces");
}

void CheckExactShape(CheckedFile& file, bool isAssembly) {
    std::vector<std::uint64_t> solids;
    std::vector<std::uint64_t> surfaces;
    bool hasOther = HasTessellation(file); // or finite elements
    for (const prepare::FileProduct& product : file.structure.products) {
        for (const prepare::ShapeItem& item : product.shape) {
            if (item.kind != prepare::ShapeKind::kExact) {
                hasOther = true;
            } else {
                (item.isSurface ? surfaces : solids).push_back(item.item);
            }
        }
    }
    Links links(file.exchange);
    for (std::vector<std::uint64_t>* const items : {&solids, &surfaces}) {
        std::erase_if(*items, [&](std::uint64_t item) { return hasOther && links.MayTell(item); });
        std::sort(items->begin(), items->end());
        items->erase(std::unique(items->begin(), items->end()), items->end());
    }
    if (solids.empty() && surfaces.empty()) {
        if (!hasOther && !isAssembly) { CheckFaces(file); }
        return;
    }
    const std::uint64_t first = solids.empty() ? surfaces.front() : solids.front();
    const std::string what = ExactShapeText(solids.size(), surfaces.size());
    const bool isOne = solids.size() + surfaces.size() == 1;
    file.AddAt(FindingKind::kExactOnly, first,
               what + (hasOther ? isOne ? " has no tessellation that stands for it"
                                        : " have no tessellation that stands for them"
                       : isOne  ? " isn't drawn, since it has no tessellation"
                                : " aren't drawn, since they have no tessellation"));
}

} // namespace tarnwick
