#include "check/check_path.h"
#include "report/json_values.h"

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
    return place.empty() ? finding.text : place + ": " + finding.text;
}

nlohmann::ordered_json NumberOrNull(std::int32_t number) {
    return number > 0 ? nlohmann::ordered_json(number) : nlohmann::ordered_json(nullptr);
}

} // namespace

std::string CheckText(const CheckReport& report) {
    std::string text;
    for (const auto& [keyword, count] : report.counts) {
        const std::string digits = std::to_string(count);
        text.append(digits.size() < 9 ? 9 - digits.size() : 0, ' ');
        text += digits + "  " + keyword + "\n";
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
    nlohmann::ordered_json object;
    object["format"] = "tarnwick.check/1";
    object["path"] = JsonText(report.path);
    nlohmann::ordered_json& counts = object["counts"] = nlohmann::ordered_json::object();
    for (const auto& [keyword, count] : report.counts) { counts[JsonText(keyword)] = count; }
    nlohmann::ordered_json& findings = object["findings"] = nlohmann::ordered_json::array();
    for (const Finding& finding : report.findings) {
        nlohmann::ordered_json one;
        one["kind"] = TextOf(finding.kind).name;
        if (report.files.size() > 1) {
            one["file"] = JsonText(report.files[static_cast<std::size_t>(finding.file)]);
        }
        one["entity"] = NumberOrNull(finding.entity);
        one["line"] = NumberOrNull(finding.line);
        one["text"] = JsonText(finding.text);
        findings.push_back(std::move(one));
    }
    object["advice"] = AdviceFor(report.findings);
    return object.dump() + "\n";
}

} // namespace tarnwick
