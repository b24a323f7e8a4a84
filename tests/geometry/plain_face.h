#pragma once

#include "geometry/face_outcome.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick::test {

// What has no defined outcome: a walk past the end of the text, a number that isn't there, a list without
// end.
struct NoOutcome {
    const char* reason;
};
// A digit run that ends the process.
struct EndsProcess {};

// The face reader as the literal sequence of its moves, character by character, with the places where a list
// breaks off marked in the text: what TraiteFace must equal in its arrays, results, messages and marks.
class PlainFaceReader {
public:
    explicit PlainFaceReader(const FaceText& text) : text_(text.text), records_(text.records) {}

    // Throws NoOutcome or EndsProcess.
    FaceOutcome Read(std::int32_t id);
    const std::string& Text() const { return text_; }

private:
    struct Points {
        std::vector<float> x, y, z;
    };
    using Integers = std::vector<std::int32_t>;

    char At(long position) const;
    void Set(long position, char c);
    const char* From(long position) const;
    void GoTo(char c);
    long Find(char c, long from) const;
    void SkipBlanks();
    void Refill();
    const P42Ent* Record(std::int32_t id) const;

    std::int32_t Digits(long limit);
    int ArgumentSuivant();
    std::int32_t LitReference();
    void TraiteCoords(Points* points);
    int TraiteTriangle(Integers* a, Integers* b, Integers* c);
    int LitEntiers(Integers* list);
    int TraiteStrip(Integers* a, Integers* b, Integers* c);
    int TraiteFan(Integers* a, Integers* b, Integers* c);
    void GoToPoints(const P42Ent* list);
    void TraiteIndexCoords(std::int32_t coordinatesId, const Integers& pnindex, Points* points);

    std::string text_;
    std::vector<P42Ent> records_;
    long line_ = 0;
    long pos_ = 0;
    std::string output_;
    std::int32_t cachedId_ = 0;
    Points cached_;
};

} // namespace tarnwick::test
