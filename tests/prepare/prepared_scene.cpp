#include "prepare/prepared_scene.h"

#include "support/json.h"
#include "support/loaded_file.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tarnwick::test {

namespace {

std::string Number(float value) {
    char text[32];
    // Rounded, so that noise of rotations doesn't show.
    std::snprintf(text, sizeof text, "%g", std::round(static_cast<double>(value) * 1000) / 1000 + 0.0);
    return text;
}

template <class Numbers>
std::string Spaced(const Numbers& numbers) {
    std::string text;
    for (const float number : numbers) { text += (text.empty() ? "" : " ") + Number(number); }
    return text;
}

std::array<float, 3> Placed(const nlohmann::json& matrix, const std::array<float, 3>& p) {
    if (matrix.is_null()) { return p; }
    const auto m = matrix.get<std::vector<float>>();
    std::array<float, 3> q{};
    for (std::size_t r = 0; r < 3; ++r) {
        q[r] = m[r] * p[0] + m[4 + r] * p[1] + m[8 + r] * p[2] + m[12 + r];
    }
    return q;
}

} // namespace

std::vector<std::string> PreparedScene::Losses() const {
    std::vector<std::string> lines;
    for (const prepare::Loss& loss : result.losses) {
        lines.push_back((loss.product.empty() ? "" : loss.product + ": ") + loss.why);
    }
    return lines;
}

std::vector<std::string> PreparedScene::Corners() const {
    std::vector<std::string> texts;
    for (const Triangle& t : triangles) {
        texts.push_back(Spaced(t.corners[0]) + ", " + Spaced(t.corners[1]) + ", " + Spaced(t.corners[2]));
    }
    return texts;
}

std::vector<std::string> PreparedScene::Colours() const {
    std::vector<std::string> texts;
    for (const Triangle& t : triangles) { texts.push_back(Spaced(t.colour)); }
    return texts;
}

prepare::PrepareOptions PlainOptions(const std::string& folder) {
    prepare::PrepareOptions options;
    options.folder = folder;
    options.jobs = 2;
    return options;
}

PreparedScene PrepareText(const TempFolder& folder, std::string_view text, std::string_view name) {
    return PrepareFile(folder.Write(name, text), PlainOptions(folder.Path("out")));
}

PreparedScene PrepareFile(const std::string& path, const prepare::PrepareOptions& options) {
    PreparedScene scene;
    scene.result = prepare::Prepare(path, options, {}, nullptr);
    if (!scene.result.error.empty()) { return scene; }
    const nlohmann::json report = ParseJson(ReportOf(scene.result.output, false));
    for (const nlohmann::json& product : report["products"]) { scene.products.push_back(product["name"]); }
    for (const nlohmann::json& item : report["drawList"]) {
        ++scene.placed;
        for (const std::size_t number : item["meshes"]) {
            const nlohmann::json& mesh = report["meshes"][number];
            const auto vertices = mesh["vertices"].get<std::vector<float>>();
            const auto indices = mesh["triangles"].get<std::vector<std::size_t>>();
            const auto colour = mesh["colour"].get<std::array<float, 4>>();
            for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
                PreparedScene::Triangle triangle{{}, colour};
                for (std::size_t k = 0; k < 3; ++k) {
                    const float* const v = &vertices[3 * indices[i + k]];
                    triangle.corners[k] = Placed(item["matrix"], {v[0], v[1], v[2]});
                }
                scene.triangles.push_back(triangle);
            }
        }
    }
    std::sort(scene.triangles.begin(), scene.triangles.end());
    return scene;
}

} // namespace tarnwick::test
