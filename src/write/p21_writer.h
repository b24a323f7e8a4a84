#pragma once

#include "write/placement.h"
#include "write/text_buffer.h"

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// The number of an entity; 0 is written as $.
struct EntityId {
    std::int32_t number = 0;
    bool operator==(const EntityId&) const = default;
};

// Text that goes into the file as it is: enumeration values, typed values, * and $.
struct P21Literal {
    std::string_view text;
};

// 'text' with the escapes of the format: quotes and backslashes doubled, anything beyond ASCII as \X2\ or
// \X4\. The input is UTF-8; a byte that isn't becomes a question mark, and so does a control character.
std::string EncodeString(std::string_view utf8);

struct P21FileHeader {
    std::string_view description;
    std::string_view name;
    std::string_view schema;
    std::string_view program; // that writes the file
};

// Writes the text of an ISO 10303-21 file: entities numbered from 1, each on one line.
class P21Writer {
public:
    // The sink must outlive the writer and stays open.
    explicit P21Writer(ByteSink* sink) : out_(sink) {}

    // Its time is a constant, so that the same model is the same bytes.
    void Header(const P21FileHeader& header);
    void Footer();

    // A whole entity. Each argument is one that some Put takes.
    template <class... Arguments>
    EntityId Add(std::string_view keyword, const Arguments&... arguments) {
        const EntityId id = Begin(keyword);
        bool first = true;
        (PutSeparated(arguments, &first), ...);
        End();
        return id;
    }

    // An entity in pieces: Begin writes up to the first parenthesis, the Put functions what is between. A
    // complex entity has no keyword; its records are put with their parentheses.
    EntityId Begin(std::string_view keyword);
    void End() { Put(P21Literal{");\n"}); }
    EntityId AddComplex(std::string_view records);

    void Put(char c) { out_.Put(c); }
    void Put(P21Literal literal) { out_.Put(literal.text); }
    // A string, which is encoded.
    void Put(std::string_view text) { out_.Put(EncodeString(text)); }
    void Put(const std::string& text) { Put(std::string_view(text)); }
    void Put(const char* text) { Put(std::string_view(text)); }
    void Put(EntityId id);
    void Put(int value) { out_.PutInteger(value); }
    void Put(std::size_t value) { out_.PutInteger(static_cast<std::int64_t>(value)); }
    void Put(double value);
    void Put(const Vec3& v);
    void Put(std::span<const EntityId> ids) { PutList(ids); }
    void Put(const std::vector<EntityId>& ids) { PutList(ids); }
    void Put(std::span<const Vec3> vectors) { PutList(vectors); }
    void Put(std::span<const int> numbers) { PutList(numbers); }
    // An argument that a function writes.
    template <std::invocable<P21Writer&> Function>
    void Put(const Function& put) {
        put(*this);
    }

    template <class Items>
    void PutList(const Items& items) {
        PutList(items, [this](const auto& item) { this->Put(item); });
    }
    // A list whose items `put` writes.
    template <class Items, class PutItem>
    void PutList(const Items& items, PutItem put) {
        char separator = '(';
        for (const auto& item : items) {
            Put(separator);
            put(item);
            separator = ',';
        }
        if (separator == '(') { Put('('); }
        Put(')');
    }

    EntityId LastId() const { return last_; }

private:
    template <class Argument>
    void PutSeparated(const Argument& argument, bool* first) {
        if (!*first) { Put(','); }
        *first = false;
        Put(argument);
    }

    TextBuffer out_;
    EntityId last_;
};

} // namespace tarnwick
