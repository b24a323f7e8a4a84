#include "geometry/plain_face.h"

#include "text/plain_parse_real.h"

#include <algorithm>
#include <cstdlib>

namespace tarnwick::test {

namespace {

// Whether a face fails when the walk to its triangles, strips or fans meets the end of the line.
constexpr bool kMissingListFails = true;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

std::int32_t ToInteger(const char* p) {
    const long long value = std::strtoll(p, nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
}

std::int32_t FromOneToZero(std::int32_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) - 1);
}

float ToFloat(const char* p) {
    const char* end;
    return static_cast<float>(PlainParseReal(p, &end));
}

} // namespace

char PlainFaceReader::At(long position) const {
    const long place = line_ + position;
    if (place < 0 || place > static_cast<long>(text_.size())) { throw NoOutcome{"past the text"}; }
    return text_.c_str()[place];
}

void PlainFaceReader::Set(long position, char c) {
    const long place = line_ + position;
    if (place < 0 || place > static_cast<long>(text_.size())) { throw NoOutcome{"past the text"}; }
    if (place < static_cast<long>(text_.size())) { text_[static_cast<std::size_t>(place)] = c; }
}

const char* PlainFaceReader::From(long position) const {
    At(position);
    return text_.c_str() + line_ + position;
}

long PlainFaceReader::Find(char c, long from) const {
    while (At(from) != c) { ++from; }
    return from;
}

void PlainFaceReader::GoTo(char c) {
    pos_ = Find(c, pos_);
}

void PlainFaceReader::SkipBlanks() {
    while (At(pos_) == ' ') { ++pos_; }
}

// There is never another line.
void PlainFaceReader::Refill() {
    pos_ = 0;
    Set(0, '\0');
}

const P42Ent* PlainFaceReader::Record(std::int32_t id) const {
    for (const P42Ent& record : records_) {
        if (record.id == id) { return &record; }
    }
    return nullptr;
}

std::int32_t PlainFaceReader::Digits(long limit) {
    std::string buffer;
    while (pos_ < limit && buffer.size() < 15 && IsDigit(At(pos_))) { buffer += At(pos_++); }
    if (buffer.size() >= 15) { throw EndsProcess{}; }
    return ToInteger(buffer.c_str());
}

int PlainFaceReader::ArgumentSuivant() {
    const auto refilled = [this] {
        if (At(pos_) == '\n' || At(pos_) == '\0') {
            Refill();
            output_ += "<E> StepFaceB::ArgumentSuivant: Fin de fichier\n";
            return true;
        }
        return false;
    };
    if (At(pos_) != ',') {
        do {
            ++pos_;
            if (refilled()) { return 1; }
        } while (At(pos_) != ',');
    }
    do {
        ++pos_;
        if (refilled()) { return 1; }
    } while (At(pos_) == ' ');
    return 0;
}

std::int32_t PlainFaceReader::LitReference() {
    for (int steps = 0; steps < 100 && At(pos_) != '#'; ++steps) {
        if (At(pos_) == ',' || At(pos_) == ')') { return -1; }
        ++pos_;
    }
    ++pos_;
    return Digits(INT32_MAX);
}

void PlainFaceReader::TraiteCoords(Points* points) {
    SkipBlanks();
    if (At(pos_) == '$') { return; }
    GoTo('(');
    ++pos_;
    SkipBlanks();
    for (;;) {
        const long close = Find(')', pos_ + 1);
        const long first = Find(',', pos_ + 1);
        Set(first, '\0');
        points->x.push_back(ToFloat(From(pos_ + 1)));
        Set(first, ',');
        const long second = Find(',', first + 1);
        Set(second, '\0');
        points->y.push_back(ToFloat(From(first + 1)));
        Set(second, ',');
        points->z.push_back(ToFloat(From(second + 1)));
        pos_ = close + 1;
        while (At(pos_) != '(' && At(pos_) != ')' && At(pos_) != '\n' && At(pos_) != '\0') { ++pos_; }
        if (At(pos_) == '\n' || At(pos_) == '\0') {
            Refill();
            output_ += "<E> StepFaceB::TraiteCoords: Fin de fichier\n";
            return;
        }
        if (At(pos_) == ')') { return; }
    }
}

int PlainFaceReader::TraiteTriangle(Integers* a, Integers* b, Integers* c) {
    SkipBlanks();
    if (At(pos_) == '$') { return 0; }
    GoTo('(');
    ++pos_;
    SkipBlanks();
    for (;;) {
        const long close = Find(')', pos_ + 1);
        const long first = Find(',', pos_ + 1);
        Set(first, '\0');
        a->push_back(FromOneToZero(ToInteger(From(pos_ + 1))));
        Set(first, ',');
        const long second = Find(',', first + 1);
        Set(second, '\0');
        b->push_back(FromOneToZero(ToInteger(From(first + 1))));
        Set(second, ',');
        c->push_back(FromOneToZero(ToInteger(From(second + 1))));
        pos_ = close + 1;
        while (At(pos_) != '(' && At(pos_) != ')' && At(pos_) != '\n' && At(pos_) != '\0') { ++pos_; }
        if (At(pos_) == '\n' || At(pos_) == '\0') {
            Refill();
            output_ += "<E> StepFaceB::TraiteTriangle: Fin de fichier\n";
            return 0;
        }
        if (At(pos_) == ')') { return 0; }
    }
}

int PlainFaceReader::LitEntiers(Integers* list) {
    if (At(pos_) == ')') { return 0; }
    if (At(pos_) == '(') { ++pos_; }
    int values = 0;
    for (;;) {
        long delimiter = pos_;
        while (At(delimiter) != ',' && At(delimiter) != ')') { ++delimiter; }
        list->push_back(FromOneToZero(ToInteger(From(pos_))));
        ++values;
        pos_ = delimiter + 1;
        if (At(delimiter) == ')') { break; }
        if (At(pos_) == '\n' || At(pos_) == '\0') {
            Refill();
            return -1;
        }
    }
    if (At(pos_) == ',') { ++pos_; }
    if (At(pos_) == '\n' || At(pos_) == '\0') {
        Refill();
        return -1;
    }
    return values;
}

int PlainFaceReader::TraiteStrip(Integers* a, Integers* b, Integers* c) {
    SkipBlanks();
    if (At(pos_) == '$') { return 0; }
    GoTo('(');
    ++pos_;
    SkipBlanks();
    if (At(pos_) == ')') { return 0; }
    for (int breaks = 0;;) {
        Integers s;
        if (LitEntiers(&s) < 0 && ++breaks > 1) { throw NoOutcome{"it would start over for ever"}; }
        if (s.empty()) { return 0; }
        bool positive = true;
        for (std::size_t i = 0; i + 2 < s.size(); ++i) {
            a->push_back(positive ? s[i] : s[i + 2]);
            b->push_back(s[i + 1]);
            c->push_back(positive ? s[i + 2] : s[i]);
            positive = !positive;
        }
    }
}

int PlainFaceReader::TraiteFan(Integers* a, Integers* b, Integers* c) {
    SkipBlanks();
    if (At(pos_) == '$') { return 0; }
    GoTo('(');
    ++pos_;
    SkipBlanks();
    if (At(pos_) == ')') { return 0; }
    for (int breaks = 0;;) {
        Integers s;
        if (LitEntiers(&s) < 0 && ++breaks > 1) { throw NoOutcome{"it would start over for ever"}; }
        if (s.empty()) { return 0; }
        for (std::size_t i = 1; i + 1 < s.size(); ++i) {
            a->push_back(s[0]);
            b->push_back(s[i]);
            c->push_back(s[i + 1]);
        }
    }
}

void PlainFaceReader::GoToPoints(const P42Ent* list) {
    line_ = list->offset;
    pos_ = 0;
    GoTo('(');
    GoTo(',');
    ++pos_;
    GoTo(',');
    ++pos_;
}

void PlainFaceReader::TraiteIndexCoords(std::int32_t coordinatesId, const Integers& pnindex, Points* points) {
    const P42Ent* const list = Record(coordinatesId);
    if (list == nullptr) { throw NoOutcome{"no such list"}; }
    if (coordinatesId != cachedId_) {
        GoToPoints(list);
        Points read;
        TraiteCoords(&read);
        cached_ = read;
        cachedId_ = coordinatesId;
    }
    for (const std::int32_t place : pnindex) {
        if (place < 0 || place >= static_cast<std::int32_t>(cached_.x.size())) {
            throw NoOutcome{"no such point"};
        }
        const auto i = static_cast<std::size_t>(place);
        points->x.push_back(cached_.x[i]);
        points->y.push_back(cached_.y[i]);
        points->z.push_back(cached_.z[i]);
    }
}

FaceOutcome PlainFaceReader::Read(std::int32_t id) {
    output_.clear();
    const P42Ent* const entity = Record(id);
    FaceOutcome face;
    const auto failed = [&face, this] {
        face.result = -1;
        face.output = output_;
        return face;
    };
    face.faceId = entity->id;
    line_ = entity->offset;
    pos_ = 0;
    GoTo('(');
    GoTo(',');
    ++pos_;
    const std::int32_t coordinatesId = LitReference();
    GoTo(',');
    ++pos_;
    if (At(pos_) != '$') {
        while (pos_ < 100 && !IsDigit(At(pos_))) { ++pos_; }
        face.pnmax = Digits(100);
    }
    if (ArgumentSuivant() != 0) { return failed(); }
    Points normals;
    if (At(pos_) == '(' && At(pos_ + 1) != ')') { TraiteCoords(&normals); }
    face.normalCount = static_cast<std::int32_t>(normals.x.size());
    if (entity->code != 20) {
        ArgumentSuivant();
        if (At(pos_) == '#') { face.exactFaceId = LitReference(); }
    }
    ArgumentSuivant();
    SkipBlanks();
    if (At(pos_) == '(') {
        ++pos_;
        SkipBlanks();
        if (At(pos_) != '$' && At(pos_) != ')') {
            LitEntiers(&face.pnindex);
            if (!face.pnindex.empty()) { pos_ -= 2; }
        }
    }
    Integers a, b, c;
    // A list of triangles that isn't there any more is a failure; a list that breaks off isn't.
    if (ArgumentSuivant() != 0 && kMissingListFails) { return failed(); }
    if (entity->code == 17) {
        TraiteTriangle(&a, &b, &c);
    } else {
        TraiteStrip(&a, &b, &c);
        if (ArgumentSuivant() != 0 && kMissingListFails) { return failed(); }
        TraiteFan(&a, &b, &c);
    }
    Points points;
    if (!face.pnindex.empty()) {
        TraiteIndexCoords(coordinatesId, face.pnindex, &points);
    } else if (const P42Ent* const list = Record(coordinatesId)) {
        GoToPoints(list);
        TraiteCoords(&points);
    }
    const std::size_t vertexCount = points.x.size();
    if (vertexCount == 0) { throw NoOutcome{"no vertices"}; }
    face.vertexCount = static_cast<std::int32_t>(vertexCount);
    face.box = {points.x[0], points.x[0], points.y[0], points.y[0], points.z[0], points.z[0]};
    for (std::size_t i = 0; i < vertexCount; ++i) {
        const float coordinates[3] = {points.x[i], points.y[i], points.z[i]};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            face.vertices.push_back(coordinates[axis]);
            if (coordinates[axis] < face.box[2 * axis]) { face.box[2 * axis] = coordinates[axis]; }
            if (coordinates[axis] > face.box[2 * axis + 1]) { face.box[2 * axis + 1] = coordinates[axis]; }
        }
    }
    face.triangleCount = static_cast<std::int32_t>(a.size());
    const std::size_t repeats = face.normalCount == 1 ? vertexCount : 1;
    for (std::size_t r = 0; r < repeats; ++r) {
        for (std::size_t i = 0; i < normals.x.size(); ++i) {
            face.normals.insert(face.normals.end(), {normals.x[i], normals.y[i], normals.z[i]});
        }
    }
    face.normalCount = static_cast<std::int32_t>(face.normals.size() / 3);
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (const std::int32_t index : {a[i], b[i], c[i]}) {
            face.triangles.push_back(static_cast<std::uint32_t>(index));
        }
    }
    face.result = face.vertexCount < face.normalCount ? 1 : 0;
    face.output = output_;
    return face;
}

} // namespace tarnwick::test
