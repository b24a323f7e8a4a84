#include "mesher/kernel_text.h"

#include "exchange/arguments.h"
#include "exchange/exchange_file.h"
#include "exchange/token_cursor.h"
#include "text/look_up.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace tarnwick {

namespace {

// What an instance is to a body.
struct Role {
    bool isGeometry = true; // or what belongs to it; the rest stays out of the text
    bool isFace = false;
    bool isSurface = false;
    bool isShell = false; // a list of faces
    bool isSet = false;   // of points, curves and surfaces
};

constexpr std::array<std::string_view, 30> kForeignBeginnings{
    "ANNOTATION_",
    "APPLIED_",
    "CAMERA_",
    "CHARACTERIZED_",
    "COMPLEX_TRIANGULATED_",
    "CONTEXT_DEPENDENT_",
    "COORDINATES_LIST",
    "CUBIC_BEZIER_T",
    "CURVE_STYLE",
    "DIMENSIONAL_CHARACTERISTIC_",
    "DRAUGHTING_",
    "FILL_AREA_STYLE",
    "GEOMETRIC_ITEM_SPECIFIC_USAGE",
    "GEOMETRIC_TOLERANCE",
    "ITEM_IDENTIFIED_",
    "MAPPED_ITEM",
    "MECHANICAL_DESIGN_",
    "NEXT_ASSEMBLY_",
    "OVER_RIDING_STYLED_ITEM",
    "PRESENTATION_",
    "PRODUCT",
    "PROPERTY_DEFINITION",
    "REPOSITIONED_TESSELLATED_",
    "REPRESENTATION_MAP",
    "REPRESENTATION_RELATIONSHIP",
    "SHAPE_ASPECT",
    "STYLED_ITEM",
    "SURFACE_STYLE",
    "TESSELLATED_",
    "TRIANGULATED_",
};

Role RoleOfKeyword(std::string_view keyword) {
    Role role;
    // The one representation that geometry refers to: of a curve in the parameters of a surface.
    const bool isRepresentation =
        keyword.ends_with("REPRESENTATION") && keyword != "DEFINITIONAL_REPRESENTATION";
    role.isGeometry = !isRepresentation && std::none_of(kForeignBeginnings.begin(), kForeignBeginnings.end(),
                                                        [&](std::string_view beginning) {
                                                            return keyword.starts_with(beginning);
                                                        });
    role.isFace = keyword == "ADVANCED_FACE" || keyword == "FACE_SURFACE" || keyword == "FACE" ||
                  keyword == "SUBFACE" || keyword == "ORIENTED_FACE";
    role.isSurface =
        !role.isFace && (keyword.ends_with("_SURFACE") || keyword == "PLANE" ||
                         keyword.starts_with("SURFACE_OF_") || keyword.starts_with("B_SPLINE_SURFACE"));
    role.isShell = keyword == "CLOSED_SHELL" || keyword == "OPEN_SHELL" || keyword == "CONNECTED_FACE_SET";
    role.isSet = keyword == "GEOMETRIC_SET" || keyword == "GEOMETRIC_CURVE_SET";
    return role;
}

// More than these would get numbers of over 31 bits.
constexpr std::size_t kMostRenumbered = 147'000'000;

void AppendNumber(std::uint64_t number, std::string* out) {
    char digits[24];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
    out->append(digits, end);
}

// A real in the form of the standard: the kernel takes "1.5e3" for another number.
void AppendStandardReal(std::string_view text, std::string* out) {
    const std::size_t letter = text.find_first_of("EeDd");
    std::string_view number = text.substr(0, letter);
    if (number[0] == '-' || number[0] == '+') {
        if (number[0] == '-') { *out += '-'; }
        number.remove_prefix(1);
    }
    if (number.starts_with('.')) { *out += '0'; }
    *out += number;
    if (number.find('.') == std::string_view::npos) { *out += '.'; }
    if (letter == std::string_view::npos) { return; }
    *out += 'E';
    *out += text.substr(letter + 1);
}

// The roles of a file's instances; those of its keywords are found once.
class Roles {
public:
    explicit Roles(const ExchangeFile& file) : file_(file) {}

    Role Of(const Instance& instance) {
        if (instance.keyword == ExchangeFile::kComplex) { return OfComplex(instance); }
        Known& known = known_.At(instance.keyword);
        if (!known.isKnown) { known = {true, RoleOfKeyword(file_.KeywordOf(instance))}; }
        return known.role;
    }

private:
    struct Known {
        bool isKnown = false;
        Role role;
    };

    // What any of its records is.
    Role OfComplex(const Instance& instance) const {
        TokenCursor tokens(file_.TextOf(instance));
        Role whole;
        int depth = 0;
        for (Token token = tokens.Next(); token.kind != TokenKind::kEnd; token = tokens.Next()) {
            if (token.kind == TokenKind::kOpen) { ++depth; }
            if (token.kind == TokenKind::kClose) { --depth; }
            if (token.kind != TokenKind::kKeyword || depth != 1) { continue; }
            const Role role = RoleOfKeyword(InCapitals(token.text));
            whole.isGeometry = whole.isGeometry && role.isGeometry;
            whole.isFace = whole.isFace || role.isFace;
            whole.isSurface = whole.isSurface || role.isSurface;
            whole.isShell = whole.isShell || role.isShell;
            whole.isSet = whole.isSet || role.isSet;
        }
        return whole;
    }

    const ExchangeFile& file_;
    LookUp<std::uint32_t, Known> known_;
};

// Puts instances into a text, and after them what they refer to.
class TextClosure {
public:
    TextClosure(const ExchangeFile& file, KernelInput* out)
        : file_(file), roles_(file), out_(out->text), renumbered_(out->renumbered) {}

    // The number in the text of an instance that is there or will be; 0 for one that won't.
    std::uint64_t Want(std::uint64_t number) {
        if (const std::uint64_t* const known = wanted_.Find(number)) { return *known; }
        const Instance* const instance = file_.Find(number);
        std::uint64_t inText = 0;
        if (instance != nullptr && roles_.Of(*instance).isGeometry && renumbered_.size() < kMostRenumbered) {
            inText = number;
            if (number > kLargestKernelNumber) {
                renumbered_.push_back(number);
                inText = kLargestKernelNumber + renumbered_.size();
            }
            waiting_.push_back({instance, inText});
            last_ = std::max(last_, inText);
        }
        wanted_.Add(number, inText);
        return inText;
    }

    void WriteWanted(bool withStrings) {
        while (!waiting_.empty()) {
            const auto [place, inText] = waiting_.back();
            const Instance& instance = *place;
            waiting_.pop_back();
            out_ += '#';
            AppendNumber(inText, &out_);
            out_ += '=';
            if (instance.keyword != ExchangeFile::kComplex && roles_.Of(instance).isShell) {
                PutShell(instance);
            } else {
                Put(instance, withStrings);
            }
            out_ += ";\n";
        }
    }

    // The largest number in the text.
    std::uint64_t Last() const { return last_; }

private:
    void PutReference(std::string_view reference) {
        const std::uint64_t number = Want(ReferenceOf(reference));
        if (number == 0) {
            out_ += '$';
            return;
        }
        out_ += '#';
        AppendNumber(number, &out_);
    }

    // The kernel doesn't get directives and 8-bit bytes.
    static bool IsPlain(std::string_view text) {
        return std::all_of(text.begin(), text.end(),
                           [](char c) { return c >= ' ' && c <= '~' && c != '\\'; });
    }

    void Put(const Instance& instance, bool withStrings) {
        TokenCursor tokens(file_.TextOf(instance));
        for (Token token = tokens.Next(); token.kind != TokenKind::kEnd; token = tokens.Next()) {
            switch (token.kind) {
            case TokenKind::kReference:
                PutReference(token.text);
                break;
            case TokenKind::kString:
                out_ += withStrings && IsPlain(token.text) ? token.text : std::string_view("''");
                break;
            case TokenKind::kValue:
            case TokenKind::kResource:
                out_ += '$';
                break;
            case TokenKind::kReal:
                AppendStandardReal(token.text, &out_);
                break;
            case TokenKind::kKeyword:
                out_ += InCapitals(token.text);
                break;
            case TokenKind::kBad:
                break;
            default:
                out_ += token.text;
            }
        }
    }

    // Without the items that aren't faces, which the kernel would take for null pointers.
    void PutShell(const Instance& instance) {
        out_ += file_.KeywordOf(instance);
        out_ += "('',";
        char separator = '(';
        TokenCursor tokens(file_.TextOf(instance));
        for (Token token = tokens.Next(); token.kind != TokenKind::kEnd; token = tokens.Next()) {
            if (token.kind != TokenKind::kReference) { continue; }
            const Instance* const face = file_.Find(ReferenceOf(token.text));
            const std::uint64_t number = face != nullptr && roles_.Of(*face).isFace ? Want(face->number) : 0;
            if (number == 0) { continue; }
            out_ += separator;
            separator = ',';
            out_ += '#';
            AppendNumber(number, &out_);
        }
        if (separator == '(') { out_ += '('; }
        out_ += "))";
    }

    const ExchangeFile& file_;
    Roles roles_;
    std::string& out_;
    std::vector<std::uint64_t>& renumbered_;
    LookUp<std::uint64_t, std::uint64_t> wanted_; // their numbers in the text, or 0
    std::vector<std::pair<const Instance*, std::uint64_t>> waiting_;
    std::uint64_t last_ = 0;
};

// Instances that this file writes itself, past all others.
class OwnInstances {
public:
    OwnInstances(std::uint64_t last, std::string* out) : last_(last), out_(*out) {}
    std::uint64_t Add(std::string_view text) {
        Begin();
        out_ += text;
        out_ += ";\n";
        return last_;
    }
    void Begin() {
        out_ += '#';
        AppendNumber(++last_, &out_);
        out_ += '=';
    }

private:
    std::uint64_t last_;
    std::string& out_;
};

std::string Reference(std::uint64_t number) {
    std::string reference(1, '#');
    AppendNumber(number, &reference);
    return reference;
}

std::uint64_t AddDefaultContext(OwnInstances* own) {
    const std::uint64_t length = own->Add("(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.))");
    const std::uint64_t angle = own->Add("(NAMED_UNIT(*)PLANE_ANGLE_UNIT()SI_UNIT($,.RADIAN.))");
    const std::uint64_t solid = own->Add("(NAMED_UNIT(*)SI_UNIT($,.STERADIAN.)SOLID_ANGLE_UNIT())");
    return own->Add("(GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNIT_ASSIGNED_CONTEXT((" + Reference(length) +
                    "," + Reference(angle) + "," + Reference(solid) + "))REPRESENTATION_CONTEXT('',''))");
}

} // namespace

KernelInput KernelText(const ExchangeFile& file, std::span<const std::uint64_t> bodies,
                       std::uint64_t context) {
    KernelInput input;
    std::string& text = input.text;
    text = "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
           "FILE_SCHEMA(('AUTOMOTIVE_DESIGN'));\nENDSEC;\nDATA;\n";
    TextClosure closure(file, &input);
    for (const std::uint64_t body : bodies) {
        if (const std::uint64_t number = closure.Want(body); number != 0) { input.bodies.push_back(number); }
    }
    closure.WriteWanted(false);
    const std::uint64_t given = closure.Want(context);
    closure.WriteWanted(true);

    OwnInstances own(closure.Last(), &text);
    const std::uint64_t used = given != 0 ? given : AddDefaultContext(&own);
    own.Begin();
    text += "SHAPE_REPRESENTATION('',";
    char separator = '(';
    for (const std::uint64_t body : input.bodies) {
        text += separator;
        separator = ',';
        text += '#';
        AppendNumber(body, &text);
    }
    if (input.bodies.empty()) { text += '('; }
    text += "),#";
    AppendNumber(used, &text);
    text += ");\nENDSEC;\nEND-ISO-10303-21;\n";
    return input;
}

std::vector<std::uint64_t> FacesOf(const ExchangeFile& file, std::uint64_t body) {
    Roles roles(file);
    LookUp<std::uint64_t, bool> seen;
    std::vector<std::uint64_t> faces;
    std::vector<const Instance*> waiting;
    // `isElement`: of a geometric set.
    const auto visit = [&](std::uint64_t number, bool isElement) {
        if (!seen.AddNew(number)) { return; }
        const Instance* const instance = file.Find(number);
        if (instance == nullptr) { return; }
        const Role role = roles.Of(*instance);
        if (!role.isGeometry) { return; }
        const bool isOriented = file.KeywordOf(*instance) == "ORIENTED_FACE";
        if ((role.isFace && !isOriented) || (isElement && role.isSurface)) {
            faces.push_back(number);
        } else if (!isElement) {
            waiting.push_back(instance);
        }
    };
    visit(body, false);
    // Lists keep the order in which they were found.
    for (std::size_t next = 0; next < waiting.size(); ++next) {
        const Instance& instance = *waiting[next];
        const bool isSet = roles.Of(instance).isSet;
        TokenCursor tokens(file.TextOf(instance));
        for (Token token = tokens.Next(); token.kind != TokenKind::kEnd; token = tokens.Next()) {
            if (token.kind == TokenKind::kReference) { visit(ReferenceOf(token.text), isSet); }
        }
    }
    return faces;
}

} // namespace tarnwick
