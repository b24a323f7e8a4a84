#pragma once

#include "write/text_buffer.h"

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

namespace tarnwick {

// Writes a JSON summary: the products, then the occurrences, depth first. The counts come before what they
// count.
class JsonSummary {
public:
    explicit JsonSummary(ByteSink* sink) : out_(sink) {}

    void BeginProducts(int count);
    // Products are numbered from 1. `file` is empty for one without a file of its own; the box has the lower
    // and the upper limit of x, of y and of z.
    void AddProduct(std::string_view name, std::string_view file, const std::array<double, 6>& box);
    void BeginOccurrences(int count, int maxDepth);
    // `world` places the product in the whole, by columns.
    void AddOccurrence(int depth, int product, const std::array<float, 16>& world);
    void End();

private:
    void PutReals(std::initializer_list<double> numbers);
    void PutSeparator();

    TextBuffer out_;
    int products_ = 0;
    bool isFirst_ = true; // of its table
};

// Text as it is written between the quotes of a JSON string.
std::string EscapeJson(std::string_view text);

} // namespace tarnwick
