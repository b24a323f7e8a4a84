#include "prepare/prepare_record.h"

#include "exchange/file_bytes.h"
#include "write/byte_sink.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <limits>
#include <string_view>

namespace tarnwick::prepare {

namespace {

constexpr std::string_view kHead = "tarnwick-prepare 1";
constexpr std::size_t kMostBytes = std::size_t{1} << 30;

// Tabs separate fields and line ends separate lines, so a field must have neither.
std::string Field(std::string_view text) {
    std::string field;
    for (const char c : text) {
        if (c == '\\') {
            field += "\\\\";
        } else if (c == '\t') {
            field += "\\t";
        } else if (c == '\n') {
            field += "\\n";
        } else {
            field.push_back(c);
        }
    }
    return field;
}

std::string Unfield(std::string_view field) {
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\' || i + 1 == field.size()) {
            text.push_back(field[i]);
            continue;
        }
        ++i;
        text.push_back(field[i] == 't' ? '\t' : field[i] == 'n' ? '\n' : field[i]);
    }
    return text;
}

std::vector<std::string> FieldsOf(std::string_view line) {
    std::vector<std::string> fields;
    for (;;) {
        const std::size_t tab = line.find('\t');
        fields.push_back(Unfield(line.substr(0, tab)));
        if (tab == std::string_view::npos) { return fields; }
        line.remove_prefix(tab + 1);
    }
}

template <class Number>
bool ReadNumber(const std::string& text, Number* number) {
    const char* const end = text.data() + text.size();
    return std::from_chars(text.data(), end, *number).ptr == end && !text.empty();
}

bool TakeLine(const std::vector<std::string>& fields, PrepareRecord* record) {
    PrepareResult& result = record->result;
    const std::string& key = fields[0];
    if (key == "options" && fields.size() == 2) {
        record->options = fields[1];
    } else if (key == "input" && fields.size() == 3) {
        record->inputs.emplace_back(fields[1], fields[2]);
    } else if (key == "output" && fields.size() == 3) {
        record->outputs.emplace_back(fields[1], fields[2]);
    } else if (key == "result" && fields.size() == 7) {
        result.output = fields[1];
        return ReadNumber(fields[2], &result.parts) && ReadNumber(fields[3], &result.placedParts) &&
               ReadNumber(fields[4], &result.bodies) && ReadNumber(fields[5], &result.triangles) &&
               ReadNumber(fields[6], &result.placedTriangles);
    } else if (key == "loss" && fields.size() == 5) {
        Loss loss{fields[1], 0, fields[3], fields[4] == "shape"};
        if (!ReadNumber(fields[2], &loss.entity)) { return false; }
        result.losses.push_back(std::move(loss));
    } else {
        return false;
    }
    return true;
}

} // namespace

bool WriteRecord(const std::string& path, const PrepareRecord& record) {
    std::string text(kHead);
    text += '\n';
    const auto line = [&text](std::initializer_list<std::string> fields) {
        const char* separator = "";
        for (const std::string& field : fields) {
            text += separator;
            text += Field(field);
            separator = "\t";
        }
        text += '\n';
    };
    line({"options", record.options});
    for (const auto& [file, digest] : record.inputs) { line({"input", file, digest}); }
    for (const auto& [file, digest] : record.outputs) { line({"output", file, digest}); }
    const PrepareResult& r = record.result;
    line({"result", r.output, std::to_string(r.parts), std::to_string(r.placedParts),
          std::to_string(r.bodies), std::to_string(r.triangles), std::to_string(r.placedTriangles)});
    for (const Loss& loss : r.losses) {
        line({"loss", loss.product, std::to_string(loss.entity), loss.why, loss.isShape ? "shape" : "else"});
    }
    const std::unique_ptr<ByteSink> sink = OpenFile(path, false);
    sink->Write(text);
    return sink->Close();
}

std::optional<PrepareRecord> ReadRecord(const std::string& path) {
    const FileBytes bytes = ReadFileBytes(path, kMostBytes);
    std::string_view text = bytes.Text();
    if (!bytes.IsRead() || !bytes.error.empty()) { return std::nullopt; }
    PrepareRecord record;
    for (bool isFirst = true; !text.empty(); isFirst = false) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) { return std::nullopt; }
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (isFirst ? line != kHead : !TakeLine(FieldsOf(line), &record)) { return std::nullopt; }
    }
    return record;
}

bool Holds(const PrepareRecord& record, const std::string& folder) {
    const auto isSame = [](const std::string& path, const std::string& digest) {
        return DigestOfFile(path) == digest;
    };
    return !record.outputs.empty() &&
           std::all_of(record.inputs.begin(), record.inputs.end(),
                       [&](const auto& file) { return isSame(file.first, file.second); }) &&
           std::all_of(record.outputs.begin(), record.outputs.end(),
                       [&](const auto& file) { return isSame(folder + "/" + file.first, file.second); });
}

} // namespace tarnwick::prepare
