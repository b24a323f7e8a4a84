#include "write/json_summary.h"

namespace tarnwick {

// Readers of such summaries know few of the forms that JSON allows: a blank after each comma, and the counts
// in front of the tables.
void JsonSummary::BeginProducts(int count) {
    out_.Put("{\n\"products_table\": {\n\"nb_products\": ");
    out_.PutInteger(count);
    out_.Put(",\n\"products\": [\n");
}

void JsonSummary::AddProduct(std::string_view name, std::string_view file, const std::array<double, 6>& box) {
    PutSeparator();
    out_.Put("{\"idx\": ");
    out_.PutInteger(++products_);
    out_.Put(", \"name\": \"");
    out_.Put(EscapeJson(name));
    if (!file.empty()) {
        out_.Put("\", \"filename\": \"");
        out_.Put(EscapeJson(file));
    }
    out_.Put("\", \"bbox\": ");
    PutReals({box[0], box[1], box[2], box[3], box[4], box[5]});
    out_.Put('}');
}

void JsonSummary::BeginOccurrences(int count, int maxDepth) {
    isFirst_ = true;
    out_.Put("\n]\n},\n\"occurrences_table\": {\n\"nb_occurrences\": ");
    out_.PutInteger(count);
    out_.Put(",\n\"max_depth\": ");
    out_.PutInteger(maxDepth);
    out_.Put(",\n\"occurrences\": [\n");
}

void JsonSummary::AddOccurrence(int depth, int product, const std::array<float, 16>& world) {
    PutSeparator();
    out_.Put("{\"depth\": ");
    out_.PutInteger(depth);
    out_.Put(", \"idx_prd\": ");
    out_.PutInteger(product);
    out_.Put(", \"rotation\": ");
    const std::array<float, 16>& m = world;
    PutReals({m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]});
    out_.Put(", \"translation\": ");
    PutReals({m[12], m[13], m[14]});
    out_.Put('}');
}

void JsonSummary::End() {
    out_.Put("\n]\n}\n}\n");
    out_.Flush();
}

void JsonSummary::PutReals(std::initializer_list<double> numbers) {
    std::string_view separator = "[";
    for (const double number : numbers) {
        out_.Put(separator);
        out_.PutReal(number);
        separator = ", ";
    }
    out_.Put(']');
}

void JsonSummary::PutSeparator() {
    if (!isFirst_) { out_.Put(",\n"); }
    isFirst_ = false;
}

std::string EscapeJson(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x20) {
            escaped += "\\u00";
            escaped += "0123456789abcdef"[code >> 4];
            escaped += "0123456789abcdef"[code & 15];
        } else {
            if (c == '"' || c == '\\') { escaped += '\\'; }
            escaped += c;
        }
    }
    return escaped;
}

} // namespace tarnwick
