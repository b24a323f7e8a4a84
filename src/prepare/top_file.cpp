#include "prepare/top_file.h"

#include "write/p21_assembly.h"

#include <utility>

namespace tarnwick::prepare {

namespace {

class TopWriter {
public:
    TopWriter(const Whole& whole, const std::vector<std::string>& files, ByteSink* sink)
        : whole_(whole), files_(files), out_(sink), written_(whole.products.size()) {}

    void Run() {
        out_.Header({"an assembly, prepared for viewing", whole_.products[whole_.root].name, kAp242.schema,
                     "tarnwick-prepare"});
        contexts_ = WriteContexts(&out_, kAp242, whole_.unit);
        references_ = WriteReferenceRoles(&out_);
        // Children before their parents; a tree may be deeper than a stack.
        std::vector<std::pair<std::size_t, std::size_t>> path{{whole_.root, 0}};
        while (!path.empty()) {
            auto& [product, next] = path.back();
            const std::vector<WholeUse>& uses = whole_.products[product].uses;
            if (next < uses.size()) {
                const std::size_t child = uses[next++].child;
                if (written_[child].representation == EntityId{}) { path.emplace_back(child, 0); }
                continue;
            }
            if (written_[product].representation == EntityId{}) { Write(product); }
            path.pop_back();
        }
        out_.Footer();
    }

private:
    void Write(std::size_t place) {
        const WholeProduct& product = whole_.products[place];
        if (!files_[place].empty()) {
            written_[place] =
                WriteExternal(&out_, contexts_, references_, product.name, product.name, files_[place]);
            return;
        }
        ComponentIds own;
        own.product = WriteProduct(&out_, contexts_, product.name, product.name, "part");
        own.origin = WritePlacement(&out_, {});
        std::vector<EntityId> places{own.origin};
        for (const WholeUse& use : product.uses) {
            Placement at = ToPlacement(use.at);
            at.origin = at.origin * (1 / whole_.unit);
            places.push_back(WritePlacement(&out_, at));
        }
        own.representation = WriteShape(&out_, contexts_, own.product.shape, places);
        for (std::size_t i = 0; i < product.uses.size(); ++i) {
            WriteUse(&out_, ++uses_, own, written_[product.uses[i].child], places[i + 1]);
        }
        written_[place] = own;
    }

    const Whole& whole_;
    const std::vector<std::string>& files_;
    P21Writer out_;
    ContextIds contexts_;
    ReferenceIds references_;
    std::vector<ComponentIds> written_; // by product; no representation yet for those to come
    int uses_ = 0;
};

} // namespace

void WriteTopFile(const Whole& whole, const std::vector<std::string>& files, ByteSink* sink) {
    TopWriter(whole, files, sink).Run();
}

} // namespace tarnwick::prepare
