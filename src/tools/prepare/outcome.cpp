#include "tools/prepare/outcome.h"

#include "exchange/string_text.h"
#include "report/json_writer.h"
#include "text/one_line.h"

#include <cstdio>

namespace tarnwick::tools {

namespace {

// The most losses that are told of one file.
constexpr std::size_t kMostLines = 50;

std::string Counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

} // namespace

std::string LossText(const prepare::Loss& loss) {
    std::string text;
    if (!loss.product.empty()) { text += loss.product + ": "; }
    if (loss.entity != 0) {
        text += '#';
        text += std::to_string(loss.entity);
        text += ": ";
    }
    text += loss.why;
    return OnOneLine(text);
}

std::string OutcomeText(const prepare::PrepareResult& result) {
    std::string text = OnOneLine(result.input) + ": ";
    if (result.isCancelled) {
        text += "cancelled\n";
        return text;
    }
    if (!result.error.empty()) {
        text += OnOneLine(result.error) + "\n";
    } else {
        char seconds[32];
        std::snprintf(seconds, sizeof seconds, "%.2f s", result.seconds);
        text += Counted(result.parts, "part", "parts") + ", placed " +
                Counted(result.placedParts, "time", "times") + ", " +
                Counted(result.placedTriangles, "triangle", "triangles") + ", " + seconds +
                (result.isUnchanged ? " (was there already)" : "") + " -> " + OnOneLine(result.output) + "\n";
    }
    std::size_t told = 0;
    for (const prepare::Loss& loss : result.losses) {
        if (told == kMostLines) {
            text +=
                "  and " + std::to_string(result.losses.size() - told) + " more: --json FILE has them all\n";
            break;
        }
        text += (loss.isShape ? "  missing: " : "  note: ") + LossText(loss) + "\n";
        ++told;
    }
    return text;
}

std::string OutcomeJson(const std::vector<prepare::PrepareResult>& results) {
    JsonWriter json;
    const auto integer = [&json](const char* key, std::size_t value) {
        json.Key(key);
        json.Integer(static_cast<std::int64_t>(value));
    };
    const auto flag = [&json](const char* key, bool value) {
        json.Key(key);
        json.Boolean(value);
    };
    json.BeginArray();
    for (const prepare::PrepareResult& result : results) {
        json.BeginObject();
        json.Key("input");
        json.Utf8(AsUtf8(result.input));
        json.Key("output");
        if (result.error.empty() && !result.isCancelled) {
            json.Utf8(AsUtf8(result.output));
        } else {
            json.Null();
        }
        integer("parts", result.parts);
        integer("placedParts", result.placedParts);
        integer("bodies", result.bodies);
        integer("triangles", result.triangles);
        integer("placedTriangles", result.placedTriangles);
        json.Key("seconds");
        json.Double(result.seconds);
        flag("unchanged", result.isUnchanged);
        flag("cancelled", result.isCancelled);
        flag("complete", !result.LacksShape());
        json.Key("error");
        if (result.error.empty()) {
            json.Null();
        } else {
            json.Utf8(AsUtf8(result.error));
        }
        json.Key("losses");
        json.BeginArray();
        for (const prepare::Loss& loss : result.losses) {
            json.BeginObject();
            json.Key("product");
            json.Utf8(AsUtf8(loss.product));
            integer("entity", loss.entity);
            json.Key("why");
            json.Utf8(AsUtf8(loss.why));
            flag("shape", loss.isShape);
            json.EndObject();
        }
        json.EndArray();
        json.EndObject();
    }
    json.EndArray();
    return json.Take() + "\n";
}

} // namespace tarnwick::tools
