// The solids of a part outlive their scene as far as there is memory for them.

#include "load/load_session.h"
#include "load/view_setup.h"
#include "support/address_space.h"
#include "support/capture.h"
#include "support/sanitized.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace tarnwick::test {
namespace {

constexpr const char* kNotKept = "<E> no memory to keep the solids and shells of the part before\n";

// A view with so many solids, every second of which has a material.
struct ViewOfSolids : SceneView {
    explicit ViewOfSolids(std::int32_t count) {
        loaded.scene = std::make_unique<SceneMemory>();
        Arena& arena = loaded.scene->Main();
        loaded.containers = arena.New<FaceContainer*>(static_cast<std::size_t>(count));
        loaded.containerCount = count;
        for (std::int32_t i = 0; i < count; ++i) {
            loaded.containers[i] = arena.New<FaceContainer>();
            loaded.containers[i]->containerId = i + 1;
            if (i % 2 == 0) {
                loaded.containers[i]->materialName = arena.Copy(kMaterial.data(), kMaterial.size());
            }
        }
    }
    // Takes the scene away when the process gets only so many bytes more; returns what that printed.
    std::string ResetWithin(std::size_t bytes) {
        LogCapture log;
        {
            const AddressSpaceLimit limit(bytes);
            ResetScene(*this, PartRecords::kKept);
        }
        return log.TakeConsole();
    }

    const std::string kMaterial = std::string(90, 'm');
};

class MissingMemory : public testing::Test {
protected:
    void SetUp() override {
        if (kSanitized) { GTEST_SKIP() << "a sanitizer takes memory of its own"; }
    }
};

TEST_F(MissingMemory, CostsTheSolidsOfTheSceneBefore) {
    // None at all, and enough for the list and not for the records.
    for (const auto& [count, bytes] : {std::pair{3, 0}, std::pair{2000, 96 << 10}}) {
        ViewOfSolids view(count);
        EXPECT_EQ(view.ResetWithin(static_cast<std::size_t>(bytes)), kNotKept);
        EXPECT_EQ(view.loaded.containers, nullptr);
        EXPECT_EQ(view.loaded.containerCount, 0);
    }
}

TEST_F(MissingMemory, CostsMaterialsOfTheSceneBefore) {
    // Their records take one chunk of 64 KB, all names a second one, of 128 KB.
    ViewOfSolids view(1000);
    EXPECT_EQ(view.ResetWithin(std::size_t{96} << 10), kNotKept);
    ASSERT_EQ(view.loaded.containerCount, 1000);
    int named = 0;
    for (std::int32_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(view.loaded.containers[i]->containerId, i + 1);
        if (view.loaded.containers[i]->materialName == nullptr) { continue; }
        EXPECT_EQ(view.loaded.containers[i]->materialName, view.kMaterial);
        ++named;
    }
    EXPECT_GT(named, 0);
    EXPECT_LT(named, 500);
}

} // namespace
} // namespace tarnwick::test
