// Which of the styles reach what is drawn.

#include "check/check_file.h"
#include "check/entity_text.h"
#include "geometry/part_reader.h"
#include "p21/keyword_codes.h"
#include "text/parse_real.h"

#include <string>

namespace tarnwick {

namespace {

// Whether the text holds a reference of too many digits, which ends the program when the chain of a style
// comes to it.
bool HasLongReference(const StepModel& model) {
    const std::string_view text(model.text, static_cast<std::size_t>(model.textEnd - model.text));
    for (std::size_t at = text.find('#'); at != std::string_view::npos; at = text.find('#', at + 1)) {
        std::size_t digits = 0;
        while (digits < kDigitRoom && real::IsDigit(model.text[at + 1 + digits])) { ++digits; }
        if (digits == kDigitRoom) { return true; }
    }
    return false;
}

class ColourCheck {
public:
    explicit ColourCheck(CheckedFile& file) : file_(file), model_(file.model) {}

    void Run() {
        CheckColourLines();
        if (file_.drawn.IsEmpty() || HasLongReference(model_)) { return; }
        ReadList();
        const P42Ent* firstStyled = nullptr;
        for (std::int32_t i = 0; i < model_.entityCount; ++i) {
            const P42Ent* const entity = model_.EntityAt(i);
            const std::string_view keyword = KeywordOf(Head(entity));
            if (keyword != "STYLED_ITEM" && keyword != "OVER_RIDING_STYLED_ITEM") { continue; }
            if (firstStyled == nullptr) { firstStyled = entity; }
            CheckStyledItem(entity);
        }
        if (firstStyled != nullptr && !stylesDrawn_) {
            file_.Add(FindingKind::kColour, firstStyled,
                      "neither it nor another styled item names a solid, shell, set or face that is drawn");
        }
    }

private:
    // A colour that breaks off makes its reader go on to the end of the file.
    void CheckColourLines() {
        if (model_.Find(model_.presentationId) == nullptr) { return; }
        LookUp<std::int32_t, bool> isWhole; // of the colours that were looked at
        for (const std::int32_t id : model_.colourIds) {
            const P42Ent* const colour = model_.Find(id);
            if (colour == nullptr || colour->code != code::kColourRgb) { continue; }
            if (!isWhole.Contains(id)) {
                isWhole.Add(id, ArgumentsOf(EntityText(model_, colour)).size() >= 4);
            }
            if (!*isWhole.Find(id)) {
                file_.Add(FindingKind::kDamaged, colour, "isn't a name and three numbers");
            }
        }
    }

    // Enough of an entity for its keyword.
    std::string_view Head(const P42Ent* entity) const {
        const std::string_view rest(model_.text + entity->offset,
                                    static_cast<std::size_t>(model_.textEnd - model_.text) -
                                        static_cast<std::size_t>(entity->offset));
        return rest.substr(0, 60);
    }

    // What the first presentation lists.
    void ReadList() {
        presentation_ = model_.Find(model_.presentationId);
        if (presentation_ == nullptr) { return; }
        const std::string_view text = EntityText(model_, presentation_);
        const auto arguments = ArgumentsOf(text);
        if (arguments.size() < 2) {
            file_.Add(FindingKind::kColour, presentation_, "has no list as its second argument");
            return;
        }
        if (file_.IsMissed(presentation_, text, 1, '(', arguments[1], "nothing gets its colour")) { return; }
        file_.CheckReferenceList(presentation_, arguments[1]);
        for (const std::int32_t id : ReferencesIn(arguments[1])) {
            if (model_.Find(id) == nullptr) {
                file_.Add(FindingKind::kColour, presentation_,
                          "lists " + Number(id) +
                              ", which isn't there: what is listed after it has no effect");
                return;
            }
            listed_.AddNew(id);
        }
    }

    void CheckStyledItem(const P42Ent* styled) {
        const std::string_view text = EntityText(model_, styled);
        const auto arguments = ArgumentsOf(text);
        if (arguments.size() < 3) { return; }
        const std::int32_t item = IdIn(arguments[2]);
        if (!file_.drawn.Contains(item)) { return; }
        stylesDrawn_ = true;
        const std::string lost = ": " + Number(item) + " doesn't get its colour";
        if (presentation_ == nullptr) {
            file_.Add(FindingKind::kColour, styled,
                      "the file has no MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION" + lost);
        } else if (!listed_.Contains(styled->id)) {
            file_.Add(FindingKind::kColour, styled,
                      "isn't listed by the first presentation, " + Number(presentation_->id) + lost);
        } else if (ReferencesIn(arguments[1]).size() != 1) {
            file_.Add(FindingKind::kColour, styled, "doesn't list exactly one style" + lost);
        } else if (!arguments[2].starts_with('#')) {
            file_.Add(FindingKind::kBlank, styled, "a blank stands before its item" + lost);
        } else if (!file_.IsMissed(styled, text, 0, '#', arguments[1], "its item doesn't get its colour")) {
            CheckStyle(styled, ReferencesIn(arguments[1]).front(), lost);
        }
    }

    void CheckStyle(const P42Ent* styled, std::int32_t styleId, const std::string& lost) {
        if (styles_.Find(styleId) == nullptr) { styles_.Add(styleId, Resolve(styleId)); }
        const Outcome& outcome = *styles_.Find(styleId);
        if (!outcome.problem.empty()) { file_.Add(FindingKind::kColour, styled, outcome.problem + lost); }
        if (outcome.isTransparent) {
            file_.Add(FindingKind::kTransparent, styled,
                      "its style " + Number(styleId) + " has the opacity 0: it can't be seen");
        }
    }

    struct Outcome {
        std::string problem; // empty for a style with a colour
        bool isTransparent = false;
    };

    Outcome Resolve(std::int32_t styleId) {
        std::int32_t colourId = 0;
        float alpha = 1;
        if (ResolveStyle(model_, styleId, &colourId, &alpha) != 0) {
            return {.problem = "no colour is reached from its style " + Number(styleId)};
        }
        if (!colours_.Contains(colourId)) { colours_.Add(colourId, ProblemOf(colourId)); }
        const std::string& problem = *colours_.Find(colourId);
        if (!problem.empty()) { return {.problem = problem}; }
        return {.problem = {}, .isTransparent = alpha == 0.0f};
    }

    // Why a colour isn't one for the readers; empty for one that is.
    std::string ProblemOf(std::int32_t colourId) {
        const P42Ent* const colour = model_.Find(colourId);
        if (colour == nullptr) { return "its colour " + Number(colourId) + " isn't there"; }
        const auto arguments = ArgumentsOf(EntityText(model_, colour));
        if (colour->code == code::kColourRgb) {
            if (!arguments.empty()) { file_.HasComma(colour, arguments[0], "it becomes another colour"); }
        } else if (colour->code != code::kDraughtingPreDefinedColour) {
            return Number(colourId) + " is no colour that is known";
        } else if (arguments.empty() || !IsKnownColourName(TextInQuotes(arguments[0]))) {
            return "the name of its colour " + Number(colourId) + " isn't known";
        }
        return {};
    }

    CheckedFile& file_;
    const StepModel& model_;
    const P42Ent* presentation_ = nullptr; // the first
    LookUp<std::int32_t, bool> listed_;
    LookUp<std::int32_t, Outcome> styles_;
    LookUp<std::int32_t, std::string> colours_; // why each isn't known; empty for one that is
    bool stylesDrawn_ = false;
};

} // namespace

void CheckColours(CheckedFile& file) {
    ColourCheck(file).Run();
}

} // namespace tarnwick
