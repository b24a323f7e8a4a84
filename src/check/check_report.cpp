#include "check/check_path.h"
#include "report/json_writer.h"
#include "text/one_line.h"

namespace tarnwick {

namespace {

constexpr std::size_t kMostShown = 10;

// "part.stp, line 123, #45: has no normals", as far as each is known.
std::string FindingLine(const CheckReport& report, const Finding& finding) {
    std::string place;
    const auto add = [&place](const std::string& piece) {
        if (!place.empty()) { place += ", "; }
        place += piece;
    };
    if (report.files.size() > 1 || finding.kind == FindingKind::kUnread) {
        add(report.files[static_cast<std::size_t>(finding.file)]);
    }
    if (finding.line > 0) { add("line " + std::to_string(finding.line)); }
    if (finding.entity > 0) { add(Number(finding.entity)); }
    return OnOneLine(place.empty() ? finding.text : place + ": " + finding.text);
}

void WriteNumberOrNull(JsonWriter* json, const char* key, std::int32_t number) {
    json->Key(key);
    if (number > 0) {
        json->Integer(number);
    } else {
        json->Null();
    }
}

void WriteFinding(JsonWriter* json, const CheckReport& report, const Finding& finding) {
    json->BeginObject();
    json->Key("kind");
    json->Text(TextOf(finding.kind).name);
    if (report.files.size() > 1) {
        json->Key("file");
        json->Text(report.files[static_cast<std::size_t>(finding.file)]);
    }
    WriteNumberOrNull(json, "entity", finding.entity);
    WriteNumberOrNull(json, "line", finding.line);
    json->Key("text");
    json->Text(finding.text);
    json->EndObject();
}

} // namespace

std::string CheckText(const CheckReport& report) {
    std::string text;
    for (const auto& [keyword, count] : report.counts) {
        const std::string digits = std::to_string(count);
        text.append(digits.size() < 9 ? 9 - digits.size() : 0, ' ');
        text += digits + "  " + OnOneLine(keyword) + "\n";
    }
    const std::vector<Finding>& findings = report.findings;
    for (std::size_t i = 0; i < findings.size();) {
        const FindingKind kind = findings[i].kind;
        text += std::string(text.empty() ? "" : "\n") + TextOf(kind).heading + "\n";
        std::size_t shown = 0;
        for (; i < findings.size() && findings[i].kind == kind; ++i) {
            if (shown++ < kMostShown) { text += "  " + FindingLine(report, findings[i]) + "\n"; }
        }
        if (shown > kMostShown) { text += "  and " + std::to_string(shown - kMostShown) + " more\n"; }
    }
    return text + (text.empty() ? "" : "\n") + AdviceFor(findings) + "\n";
}

std::string CheckJson(const CheckReport& report) {
    JsonWriter json;
    json.BeginObject();
    json.Key("format");
    json.Text("tarnwick.check/1");
    json.Key("path");
    json.Text(report.path);
    json.Key("counts");
    json.BeginObject();
    for (const auto& [keyword, count] : report.counts) {
        json.TextKey(keyword);
        json.Integer(count);
    }
    json.EndObject();
    json.Key("findings");
    json.BeginArray();
    for (const Finding& finding : report.findings) { WriteFinding(&json, report, finding); }
    json.EndArray();
    json.Key("advice");
    json.Text(AdviceFor(report.findings));
    json.EndObject();
    return json.Take() + "\n";
}

} // namespace tarnwick
