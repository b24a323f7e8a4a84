#include "prepare/use_styles.h"

#include "prepare/shape/styles.h"
#include "text/look_up.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>
#include <vector>

namespace tarnwick::prepare {

namespace {

// Each look may cost a copy of a shape.
constexpr std::size_t kMostLooks = 1000;

// Items with their colours and transparencies.
using Look = std::vector<std::pair<std::uint64_t, std::array<double, 4>>>;

std::array<double, 4> NumbersOf(const SurfaceStyle& style) {
    return {style.colour.red, style.colour.green, style.colour.blue, style.transparency};
}

bool HasStyle(const FileUse& use) {
    return use.style != 0 || use.context != 0;
}

// Replaces each entity by the first of those that look alike.
class SharedLooks {
public:
    explicit SharedLooks(const ExchangeFile& file) : styles_(file) {}

    std::uint64_t OfStyle(std::uint64_t item) {
        return Shared(item, &items_, [&] {
            const SurfaceStyle* const style = styles_.Of(item);
            return style != nullptr ? Look{{0, NumbersOf(*style)}} : Look{};
        });
    }
    std::uint64_t OfContext(std::uint64_t context) {
        return Shared(context, &contexts_, [&] {
            Look look;
            for (const auto& [item, style] : styles_.In(context)) {
                look.emplace_back(item, NumbersOf(style));
            }
            return look;
        });
    }
    // Whether some look has no number, since there were too many.
    bool IsOneLost() const { return isOneLost_; }

private:
    struct Looks {
        LookUp<std::uint64_t, std::uint64_t> known;
        std::map<Look, std::uint64_t> first;
    };
    template <class MakeLook>
    std::uint64_t Shared(std::uint64_t number, Looks* looks, MakeLook makeLook) {
        if (number == 0) { return 0; }
        if (const std::uint64_t* const known = looks->known.Find(number)) { return *known; }
        const Look look = makeLook();
        std::uint64_t shared = 0;
        if (const auto first = looks->first.find(look); first != looks->first.end()) {
            shared = first->second;
        } else if (looks->first.size() == kMostLooks) {
            isOneLost_ = true;
        } else if (!look.empty()) {
            shared = number;
            looks->first.emplace(look, number);
        }
        looks->known.Add(number, shared);
        return shared;
    }

    Styles styles_;
    Looks items_;
    Looks contexts_;
    bool isOneLost_ = false;
};

} // namespace

void ShareUseStyles(const ExchangeFile& file, FileStructure* structure) {
    const bool isAny =
        std::any_of(structure->products.begin(), structure->products.end(), [](const FileProduct& product) {
            return std::any_of(product.uses.begin(), product.uses.end(), HasStyle);
        });
    if (!isAny) { return; }
    SharedLooks looks(file);
    for (FileProduct& product : structure->products) {
        for (FileUse& use : product.uses) {
            use.style = looks.OfStyle(use.style);
            use.context = looks.OfContext(use.context);
        }
    }
    if (looks.IsOneLost()) {
        structure->losses.push_back(
            {"", 0, "more uses have colours of their own than can be kept apart", false});
    }
}

} // namespace tarnwick::prepare
