#pragma once

#include "write/byte_sink.h"
#include "write/vec.h"

#include <charconv>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Writes the text of an ISO 10303-21 file: entities numbered from 1, each on one line.
namespace tarnwick::make {

// The number of an entity; 0 is written as $.
struct Id {
    std::int32_t number = 0;
    bool operator==(const Id&) const = default;
};

// Text that goes into the file as it stands: enumeration values, typed values, * and $.
struct Literal {
    std::string_view text;
};

// 'text' with the escapes of the format: quotes and backslashes doubled, anything beyond ASCII as \X2\ or
// \X4\. The input is UTF-8; a byte that isn't becomes a question mark.
std::string EncodeString(std::string_view utf8);

class P21Writer {
public:
    explicit P21Writer(ByteSink* sink) : sink_(*sink) { buffer_.reserve(kBlockSize + (1 << 16)); }

    void Header(std::string_view description, std::string_view name, std::string_view schema);
    // Writes the end of the file and what is still in the buffer; the sink stays open.
    void Footer();

    // A whole entity. Arguments: Id, Literal, text (written as a string), int, double, Vec3, lists of Id.
    template <class... Arguments>
    Id Add(std::string_view keyword, const Arguments&... arguments) {
        const Id id = Begin(keyword);
        bool first = true;
        (PutSeparated(arguments, &first), ...);
        End();
        return id;
    }
    // An entity of several partial ones, given with their parentheses.
    Id AddComplex(std::string_view partials);

    // An entity in pieces: Begin writes up to the first parenthesis, the Put functions what is between.
    Id Begin(std::string_view keyword);
    void End();
    void Put(char c) { buffer_.push_back(c); }
    void Put(Literal literal) { buffer_ += literal.text; }
    void Put(std::string_view text) { buffer_ += EncodeString(text); }
    void Put(const std::string& text) { Put(std::string_view(text)); }
    void Put(const char* text) { Put(std::string_view(text)); }
    void Put(Id id);
    void Put(int value) { Put(static_cast<std::int64_t>(value)); }
    void Put(std::int64_t value);
    void Put(double value);
    void Put(const Vec3& v);
    void Put(std::span<const Id> ids);
    void Put(const std::vector<Id>& ids) { Put(std::span<const Id>(ids)); }

    std::int64_t BytesWritten() const { return flushed_ + static_cast<std::int64_t>(buffer_.size()); }
    Id LastId() const { return last_; }

private:
    template <class Argument>
    void PutSeparated(const Argument& argument, bool* first) {
        if (!*first) { Put(','); }
        *first = false;
        Put(argument);
    }
    void Flush();

    static constexpr std::size_t kBlockSize = 1 << 20;
    ByteSink& sink_;
    std::string buffer_;
    std::int64_t flushed_ = 0;
    Id last_;
};

} // namespace tarnwick::make
