#include "check/check_path.h"
#include "exchange/string_text.h"
#include "report/json_writer.h"
#include "text/one_line.h"

namespace tarnwick {

namespace {

constexpr std::size_t kMostShown = 10;

// On one line, and as UTF-8.
std::string Printable(const std::string& text) {
    return AsUtf8(OnOneLine(text));
}

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
    return Printable(place.empty() ? finding.text : place + ": " + finding.text);
}

const char* AdviceOf(const CheckReport& report) {
    const bool isUntried = report.findings.empty() && report.outcome.end == LoadOutcome::End::kUnknown;
    return isUntried ? "The load couldn't be tried: try it with tarnwick-load." : AdviceFor(report.findings);
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

std::string CheckText(const CheckReport& report, const CheckTextOptions& options) {
    const std::vector<Finding>& findings = report.findings;
    const auto coloured = [&options](const char* colour, const std::string& text) {
        return options.colours ? colour + text + "\x1b[0m" : text;
    };
    constexpr const char* kBold = "\x1b[1m";
    std::string text = coloured(kBold, Printable(SummaryOf(report))) + "\n";
    for (std::size_t i = 0; i < findings.size();) {
        const FindingKind kind = findings[i].kind;
        text += "\n" + coloured(kBold, TextOf(kind).heading) + "\n";
        std::size_t shown = 0;
        for (; i < findings.size() && findings[i].kind == kind; ++i) {
            if (shown++ < kMostShown) { text += "  " + FindingLine(report, findings[i]) + "\n"; }
        }
        if (shown > kMostShown) {
            text += "  and " + Grouped(static_cast<std::int64_t>(shown - kMostShown)) + " more\n";
        }
        text += coloured("\x1b[36m", TextOf(kind).advice) + "\n";
    }
    if (!report.command.empty()) {
        text += "\nOr have it brought into the form that the viewer shows:\n  " +
                coloured(kBold, Printable(report.command)) + "\n";
    }
    if (findings.empty()) { text += std::string("\n") + AdviceOf(report) + "\n"; }
    if (!options.isVerbose) { return text; }
    if (!report.outcome.errors.empty()) {
        text += "\n" + coloured(kBold, "What the load says") + "\n";
        for (const std::string& line : report.outcome.errors) { text += "  " + Printable(line) + "\n"; }
    }
    if (!report.counts.empty()) { text += "\n"; }
    for (const auto& [keyword, count] : report.counts) {
        const std::string digits = std::to_string(count);
        text.append(digits.size() < 9 ? 9 - digits.size() : 0, ' ');
        text += digits + "  " + Printable(keyword) + "\n";
    }
    return text;
}

std::string CheckJson(const CheckReport& report) {
    JsonWriter json;
    json.BeginObject();
    json.Key("format");
    json.Text("tarnwick.check/1");
    json.Key("path");
    json.Text(report.path);
    json.Key("summary");
    json.Utf8(Printable(SummaryOf(report)));
    const auto number = [&json](const char* key, std::int64_t value) {
        json.Key(key);
        json.Integer(value);
    };
    json.Key("shown");
    json.BeginObject();
    number("triangles", report.outcome.triangles);
    number("visible", report.outcome.visible);
    number("parts", report.outcome.parts);
    json.EndObject();
    json.Key("held");
    json.BeginObject();
    number("parts", report.totals.parts);
    number("tessellated", report.totals.tessellated);
    number("exactSolids", report.totals.exactSolids);
    number("exactSurfaces", report.totals.exactSurfaces);
    number("elements", report.totals.elements);
    json.EndObject();
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
    json.Text(AdviceOf(report));
    json.Key("advices");
    json.BeginArray();
    for (std::size_t i = 0; i < report.findings.size(); ++i) {
        const FindingKind kind = report.findings[i].kind;
        if (i == 0 || kind != report.findings[i - 1].kind) { json.Text(TextOf(kind).advice); }
    }
    json.EndArray();
    json.Key("console");
    json.BeginArray();
    for (const std::string& line : report.outcome.errors) { json.Text(line); }
    json.EndArray();
    json.Key("command");
    if (report.command.empty()) {
        json.Null();
    } else {
        json.Text(report.command);
    }
    json.EndObject();
    return json.Take() + "\n";
}

} // namespace tarnwick
