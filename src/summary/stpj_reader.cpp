#include "summary/stpj_reader.h"

#include "p21/text_walk.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "platform/opened_file.h"
#include "platform/text_block.h"
#include "product/draw_list.h"
#include "summary/select_depth.h"
#include "text/one_line.h"
#include "text/parse_real.h"
#include "text/text_find.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace tarnwick {

namespace {

// Is put after the text: the NUL that stops numbers and tables, then each character that is searched for. The
// quotes are last, since they are searched for after another character, and up to twice.
constexpr std::string_view kSentinel("\0,}{:[] \"\"\"", 11);

constexpr std::size_t kProductNameRoom = 512;
constexpr std::size_t kFileNameRoom = 584;

constexpr const char* kNoMemory = "no memory";
constexpr double kNoBox[6] = {};

// The values of a product; the next product keeps those that it doesn't set.
struct ProductValues {
    std::string_view name;
    std::int32_t index = 0;
    float box[6] = {};
    bool hasBox = false; // this one isn't kept
};

bool IsKey(const char* key, std::string_view prefix) {
    return std::memcmp(key, prefix.data(), prefix.size()) == 0;
}

class StpjText {
public:
    StpjText(char* text, std::size_t size, StpjFile& file, Arena& arena)
        : at_(text), end_(text + size), file_(file), arena_(arena) {
        std::memcpy(text + size, kSentinel.data(), kSentinel.size());
    }

    // Read the tables. A problem either only ends a table, or ends the reading. Only the first problem is
    // told on the console.
    void ReadProductsTable();
    void ReadOccurrencesTable();
    // Why the reading has ended; null while it may go on.
    const char* GivenUp() const { return givenUp_; }
    void SayWhyGivenUp() { Say(std::string("given up, ") + givenUp_); }

private:
    bool Ended() const { return at_ >= end_; }
    void Say(const std::string& problem) {
        if (!said_) { ConsolePrint("<E> %s: %s\n", OneLine(file_.path).Text(), problem.c_str()); }
        said_ = true;
    }

    bool GoToKey(std::string_view prefix);
    bool GoToFirstKey(std::string_view prefix);
    bool ReadInteger(std::int32_t* value);
    bool ReadNumbers(double* values, int count);
    bool ReadString(std::size_t room, std::string_view* value);
    bool NextKey();
    bool ReadProduct(ProductValues* values);
    bool ReadOccurrence(StpjOccurrence* occurrence);
    bool AddProduct(const ProductValues& values, std::vector<ProductNode*>* products);
    void SayOddOccurrences();

    const char* at_;
    const char* const end_;
    StpjFile& file_;
    Arena& arena_;
    double (*boxes_)[6] = nullptr; // of the products, widened
    const char* givenUp_ = nullptr;
    bool said_ = false;
    std::int32_t withoutProduct_ = 0;   // occurrences
    std::int32_t withoutPlacement_ = 0; // occurrences
};

// Moves past the next quote with a key of this prefix after it.
bool StpjText::GoToKey(std::string_view prefix) {
    while (!Ended()) {
        const void* const quote = std::memchr(at_, '"', static_cast<std::size_t>(end_ - at_));
        if (quote == nullptr) { break; }
        at_ = static_cast<const char*>(quote) + 1;
        if (!Ended() && IsKey(at_, prefix)) { return true; }
    }
    at_ = end_;
    return false;
}

// Moves past the next quote; false when a key of another prefix follows it.
bool StpjText::GoToFirstKey(std::string_view prefix) {
    at_ = find::First<'"'>(at_) + 1;
    return !Ended() && IsKey(at_, prefix);
}

// The integer right after the next ":".
bool StpjText::ReadInteger(std::int32_t* value) {
    at_ = find::First<':'>(at_) + 1;
    if (Ended()) { return false; }
    const char* p = at_;
    while (*p == ' ') { ++p; }
    if (real::IsDigit(*p)) {
        std::int64_t number = 0;
        while (real::IsDigit(*p) && number <= std::numeric_limits<std::int32_t>::max()) {
            number = number * 10 + (*p++ - '0');
        }
        *value = static_cast<std::int32_t>(
            std::min<std::int64_t>(number, std::numeric_limits<std::int32_t>::max()));
        at_ = p; // past digits and blanks, which nobody searches for
    } else {
        *value = StringToInteger(p);
    }
    return true;
}

// A number of one digit, as most of a rotation are. Returns the place of the blank or "]" after it and its
// comma; null, with nothing done, for any other text.
const char* TakeDigit(const char* p, double* value) {
    const bool negative = *p == '-';
    const char* const digit = p + negative;
    if (!real::IsDigit(*digit)) { return nullptr; }
    const char* const after = digit[1] == ',' ? digit + 2 : digit + 1;
    if (*after != ' ' && *after != ']') { return nullptr; }
    *value = negative ? -static_cast<double>(*digit - '0') : static_cast<double>(*digit - '0');
    return after;
}

// The numbers of an array, separated by blanks. What the array lacks is read at its "]", as 0.
bool StpjText::ReadNumbers(double* values, int count) {
    at_ = find::First<'['>(find::First<':'>(at_)) + 1;
    if (Ended()) { return false; }
    const char* p = at_;
    for (int i = 0; i < count; ++i) {
        while (*p == ' ') { ++p; }
        if (const char* const next = TakeDigit(p, values + i)) {
            p = next;
        } else {
            const char* after;
            values[i] = ParseReal(p, &after);
            // A number ends at the next blank. A tab before it is no separator, but a blank after that tab
            // is.
            const char* const from = *p == '\t' ? p : after;
            p = *from == ' ' || *from == ']' ? from : find::First<' ', ']'>(from);
        }
        if (p >= end_) {
            at_ = end_;
            return false;
        }
    }
    at_ = p;
    return true;
}

// The string after the next ":". The file is given up for one of `room` characters or more.
bool StpjText::ReadString(std::size_t room, std::string_view* value) {
    const char* const start = find::First<'"'>(find::First<':'>(at_)) + 1;
    at_ = find::First<'"'>(start);
    if (Ended()) { return false; }
    const std::size_t length = static_cast<std::size_t>(at_ - start);
    if (length >= room) {
        givenUp_ = "a name is too long";
        return false;
    }
    *value = find::CutAtNul({start, length});
    return true;
}

// Moves from the current value to after the first quote of the next key. False at the object's "}", which is
// then passed, and at the end of the text.
bool StpjText::NextKey() {
    const char* const usual = at_ + (*at_ == ']' ? 1 : 0);
    if (usual[0] == ',' && usual[1] == ' ' && usual[2] == '"') {
        at_ = usual + 3;
        return !Ended();
    }
    at_ = find::First<',', '}'>(at_);
    if (Ended()) { return false; }
    if (*at_ == '}') {
        ++at_;
        return false;
    }
    at_ = find::First<'"'>(at_) + 1;
    return !Ended();
}

bool StpjText::ReadProduct(ProductValues* values) {
    values->hasBox = false;
    at_ = find::First<'"'>(find::First<'{'>(at_)) + 1;
    if (Ended()) { return false; }
    do {
        bool read = true;
        if (IsKey(at_, "idx")) {
            read = ReadInteger(&values->index);
        } else if (IsKey(at_, "name")) {
            read = ReadString(kProductNameRoom, &values->name);
        } else if (IsKey(at_, "filename")) {
            std::string_view ignored;
            read = ReadString(kFileNameRoom, &ignored);
        } else if (IsKey(at_, "bbox")) {
            double box[6];
            read = ReadNumbers(box, 6);
            if (read) {
                std::transform(box, box + 6, values->box, [](double d) { return static_cast<float>(d); });
                values->hasBox = true;
            }
        }
        if (!read) { return false; }
    } while (NextKey());
    return at_[-1] == '}';
}

bool StpjText::AddProduct(const ProductValues& values, std::vector<ProductNode*>* products) {
    ProductNode* const product = arena_.New<ProductNode>();
    const char* const name = arena_.Copy(values.name.data(), values.name.size());
    if (product == nullptr || name == nullptr) {
        givenUp_ = kNoMemory;
        return false;
    }
    product->isRoot = 1;
    product->name = name;
    product->definitionId = values.index;
    if (values.hasBox) {
        product->hasBox = 1;
        std::copy_n(values.box, 6, product->box);
    }
    products->push_back(product);
    return true;
}

void StpjText::ReadProductsTable() {
    std::int32_t claimed = 0;
    if (!GoToKey("products_ta")) { return Say("it has no table of products"); }
    at_ = find::First<'{'>(at_);
    if (!GoToFirstKey("nb_prod") || !ReadInteger(&claimed)) {
        return Say("its table of products doesn't begin with their number");
    }
    at_ = find::First<'['>(at_);
    if (Ended() || claimed < 1) { return Say("its table of products is empty"); }
    std::vector<ProductNode*> products;
    ProductValues values;
    do {
        if (!ReadProduct(&values)) {
            if (givenUp_ != nullptr) { return; }
            break;
        }
        if (!AddProduct(values, &products)) { return; }
    } while (static_cast<std::int32_t>(products.size()) < claimed && *at_ != '<' && *at_ != '\0');
    const std::size_t count = products.size();
    if (count < static_cast<std::size_t>(claimed)) { Say("its table of products is shorter than it says"); }
    file_.products = arena_.New<ProductNode*>(count);
    boxes_ = arena_.New<double[6]>(count);
    if (file_.products == nullptr || boxes_ == nullptr) {
        givenUp_ = kNoMemory;
        return;
    }
    file_.productCount = static_cast<std::int32_t>(count);
    for (std::size_t i = 0; i < count; ++i) {
        file_.products[i] = products[i];
        std::copy_n(products[i]->box, 6, boxes_[i]);
    }
}

bool StpjText::ReadOccurrence(StpjOccurrence* occurrence) {
    at_ = find::First<'"'>(find::First<'{'>(at_)) + 1;
    if (Ended()) { return false; }
    double rotation[9];
    double translation[3];
    bool turned = false;
    bool moved = false;
    do {
        bool read = true;
        if (IsKey(at_, "depth")) {
            read = ReadInteger(&occurrence->depth);
        } else if (IsKey(at_, "idx_prd")) {
            read = ReadInteger(&occurrence->productIndex);
        } else if (IsKey(at_, "rotat")) {
            read = turned = ReadNumbers(rotation, 9);
        } else if (IsKey(at_, "trans")) {
            read = moved = ReadNumbers(translation, 3);
        }
        if (!read) { return false; }
    } while (NextKey());
    if (at_[-1] != '}') { return false; }
    occurrence->box = kNoBox;
    if (occurrence->productIndex < 1) { return true; }
    // Also skips the character after the "}".
    if (at_ < end_) { ++at_; }
    const ProductNode* const product = ProductOf(file_, *occurrence);
    if (product == nullptr) {
        ++withoutProduct_;
        return true;
    }
    occurrence->box = boxes_[occurrence->productIndex - 1];
    if (!turned || !moved) {
        ++withoutPlacement_;
        return true;
    }
    occurrence->hasBox = product->hasBox;
    float* const matrix = static_cast<float*>(arena_.Allocate(16 * sizeof(float)));
    if (matrix == nullptr) {
        givenUp_ = kNoMemory;
        return false;
    }
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r) { matrix[4 * c + r] = static_cast<float>(rotation[3 * c + r]); }
        matrix[4 * c + 3] = 0;
        matrix[12 + c] = static_cast<float>(translation[c]);
    }
    matrix[15] = 1;
    occurrence->matrix = matrix;
    return true;
}

void StpjText::ReadOccurrencesTable() {
    constexpr std::size_t kLongKey = 7;
    std::int32_t claimed = 0;
    if (!GoToKey("occurrences_ta")) { return Say("it has no table of occurrences after that of products"); }
    at_ = find::First<'{'>(at_);
    if (!GoToFirstKey("nb_occu") || !ReadInteger(&claimed) || !GoToFirstKey("max_d")) {
        return Say("its table of occurrences doesn't begin with their number and depth");
    }
    // The key is expected to have seven letters; a shorter one may lose its colon by that.
    at_ = std::min(at_ + kLongKey, end_);
    if (!ReadInteger(&file_.maxDepth)) { return Say("its table of occurrences has no depth"); }
    at_ = find::First<'['>(at_);
    if (Ended() || claimed < 1) { return Say("its table of occurrences is empty"); }
    // Room for as many as it says, if it has enough characters: growing would take fresh pages twice.
    constexpr std::ptrdiff_t kShortOccurrence = 64;
    std::vector<StpjOccurrence*> occurrences;
    occurrences.reserve(
        static_cast<std::size_t>(std::min<std::ptrdiff_t>(claimed, (end_ - at_) / kShortOccurrence)));
    do {
        StpjOccurrence* const occurrence = arena_.New<StpjOccurrence>();
        if (occurrence == nullptr || !ReadOccurrence(occurrence)) {
            if (occurrence == nullptr) { givenUp_ = kNoMemory; }
            if (givenUp_ != nullptr) { return; }
            break;
        }
        occurrences.push_back(occurrence);
    } while (static_cast<std::int32_t>(occurrences.size()) < claimed && *at_ != ']' && *at_ != '\0');
    const std::size_t count = occurrences.size();
    if (count < static_cast<std::size_t>(claimed)) {
        Say("its table of occurrences is shorter than it says");
    }
    SayOddOccurrences();
    file_.occurrences = arena_.New<StpjOccurrence*>(count);
    if (file_.occurrences == nullptr) {
        givenUp_ = kNoMemory;
        return;
    }
    std::copy_n(occurrences.data(), count, file_.occurrences);
    file_.occurrenceCount = static_cast<std::int32_t>(count);
}

void StpjText::SayOddOccurrences() {
    if (withoutProduct_ > 0) {
        Say("occurrences of products that it doesn't have: " + std::to_string(withoutProduct_));
    }
    if (withoutPlacement_ > 0) {
        Say("occurrences without a rotation or a translation: " + std::to_string(withoutPlacement_));
    }
}

// The file's bytes in `block`. Null when they can't be read, told on the console, with *reason a phrase.
char* ReadText(const char* path, TextBlock& block, std::size_t* size, const char** reason) {
    const OneLine name(path);
    const OpenedFile file(path);
    if (!file.IsOpen()) {
        if (file.Failure() != 0) {
            ConsolePrint("<E> %s: it can't be opened: %s\n", name.Text(), std::strerror(file.Failure()));
        } else {
            ConsolePrint("<E> %s: it can't be opened\n", name.Text());
        }
        *reason = "can't be opened";
        return nullptr;
    }
    const auto bytes = static_cast<unsigned long long>(file.Size());
    if (file.Size() > kLargestText) {
        ConsolePrint("<E> %s: its %llu bytes are more than a summary may have\n", name.Text(), bytes);
        *reason = "is too large";
        return nullptr;
    }
    char* const text = block.Get(static_cast<std::size_t>(file.Size()) + 10);
    if (text == nullptr) {
        ConsolePrint("<E> %s: no memory for its %llu bytes\n", name.Text(), bytes);
        *reason = kNeedsMemory;
        return nullptr;
    }
    int error = 0;
    *size = file.ReadAt(0, text, static_cast<std::size_t>(file.Size()), &error);
    if (error != 0) {
        ConsolePrint("<E> %s: it can't be read: %s\n", name.Text(), std::strerror(error));
        *reason = "can't be read";
        return nullptr;
    }
    if (*size < file.Size()) {
        ConsolePrint("<E> %s: only %zu of its %llu bytes can be read\n", name.Text(), *size, bytes);
    }
    return text;
}

StpjFile* MakeFile(Arena& arena, const char* path) {
    StpjFile* const file = arena.New<StpjFile>();
    if (file == nullptr) { return nullptr; }
    file->path = arena.Copy(path, std::strlen(path));
    return file->path != nullptr ? file : nullptr;
}

} // namespace

ProductNode* ProductOf(const StpjFile& file, const StpjOccurrence& occurrence) {
    return occurrence.productIndex >= 1 && occurrence.productIndex <= file.productCount
               ? file.products[occurrence.productIndex - 1]
               : nullptr;
}

const char* ReadStpjText(StpjFile& file, char* text, std::size_t size, Arena& arena) {
    StpjText tables(text, size, file, arena);
    tables.ReadProductsTable();
    if (tables.GivenUp() == nullptr) { tables.ReadOccurrencesTable(); }
    if (tables.GivenUp() != nullptr) { tables.SayWhyGivenUp(); }
    return tables.GivenUp();
}

int TraiteSTPJFile(LoadedScene& loaded, const char* path) {
    ConsolePrint("Start TraiteSTPJFile\n");
    const double start = ClockSeconds();
    TextBlock block;
    std::size_t size = 0;
    Arena& arena = loaded.scene->Main();
    StpjFile* const file = MakeFile(arena, path);
    DrawList* const boxes = arena.New<DrawList>();
    if (file == nullptr || boxes == nullptr) {
        GiveUpForMemory(path, "", 0, &loaded.unreadFiles);
        return 0;
    }
    const char* reason = nullptr;
    char* const text = ReadText(path, block, &size, &reason);
    if (text == nullptr) {
        loaded.unreadFiles.push_back({0, path, "", reason});
        return 0;
    }
    const char* const problem = ReadStpjText(*file, text, size, arena);
    if (problem != nullptr || file->occurrenceCount == 0) {
        loaded.unreadFiles.push_back(
            {0, path, "",
             problem == kNoMemory ? kNeedsMemory : "isn't a summary with products and occurrences"});
        return 0;
    }
    loaded.maxDepth = file->maxDepth;
    std::transform(file->occurrences[0]->box, file->occurrences[0]->box + 6, loaded.box,
                   [](double d) { return static_cast<float>(d); });
    loaded.hasBox = true;
    ConsolePrint("CPU load products & occurrences : %f s\n", ClockSeconds() - start);
    loaded.boxMemory = std::make_unique<Arena>();
    loaded.boxList = boxes;
    if (!SelectDepth(*file, loaded.maxDepth, boxes, *loaded.boxMemory)) {
        ConsolePrint("<E> %s: no memory for all of its boxes\n", OneLine(path).Text());
    }
    loaded.drawnTriangles = CountBoxTriangles(*boxes);
    loaded.stpjFile = file;
    loaded.summaryProducts = file->products;
    loaded.summaryProductCount = file->productCount;
    return 0;
}

} // namespace tarnwick
