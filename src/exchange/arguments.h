#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

// What stands between the parentheses of an instance, read when it is asked for. All texts are parts of the
// file's, with 16 readable bytes after them; blanks and comments around an argument don't belong to it.
namespace tarnwick {

// "KEYWORD(arguments)": `arguments` is what stands between the parentheses.
struct Record {
    std::string_view keyword; // as it is written
    std::string_view arguments;
    bool IsFound() const { return !keyword.empty(); }
};

// The record of a simple instance or of a typed parameter; without a keyword where the text has none.
Record RecordOf(std::string_view text);
// The records of an instance, one for a simple one.
std::vector<Record> RecordsOf(std::string_view text);
// The record with this keyword, of a simple instance too.
Record FindRecord(std::string_view text, std::string_view keyword);

// The arguments of a list, one after the other.
class ArgumentCursor {
public:
    // `list`: what stands between parentheses.
    explicit ArgumentCursor(std::string_view list);
    // False after the last one.
    bool Next(std::string_view* argument);

private:
    const char* p_;
    const char* end_;
    bool isAfterComma_ = false;
};

// All arguments of a list, for those that are few.
class Arguments {
public:
    explicit Arguments(std::string_view list);
    std::size_t Count() const { return arguments_.size(); }
    // Empty beyond the last.
    std::string_view operator[](std::size_t i) const {
        return i < arguments_.size() ? arguments_[i] : std::string_view{};
    }

private:
    std::vector<std::string_view> arguments_;
};

// Each result is empty, or 0, where the argument is something else.

// What stands between the parentheses of a list, "(1,2)".
std::string_view ListOf(std::string_view argument);
// The number in "#12".
std::uint64_t ReferenceOf(std::string_view argument);
// All that a text refers to, at any depth, in its order.
void AppendReferences(std::string_view text, std::vector<std::uint64_t>* references);
// A text that is a number from end to end, as the nearest f64. Also takes the forms that some exporters write
// and the standard doesn't allow: a plus sign, no digit on one side of the point, no point, and an exponent
// after "e", "D" or "d". False for any other text and for a number that no f64 holds; *value is then left as
// it was.
bool ReadReal(std::string_view text, double* value);
// The same of an argument, also as a typed parameter: "LENGTH_MEASURE(25.4)".
std::optional<double> RealOf(std::string_view argument);
// Three numbers in a list, "(1.,0.,0.)"; where there are two, the third is 0.
std::optional<std::array<double, 3>> TripleOf(std::string_view argument);
// The word between the points of ".T.".
std::string_view EnumerationOf(std::string_view argument);

} // namespace tarnwick
