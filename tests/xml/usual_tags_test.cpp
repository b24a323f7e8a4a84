// The short way through the usual tags against the general scan of every tag: whole, cut and damaged texts
// give the same records.

#include "platform/helpers.h"
#include "support/capture.h"
#include "support/formats.h"
#include "support/helpers_first.h"
#include "support/real_files.h"

#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>

namespace tarnwick {
namespace {

using namespace test;

#ifdef NDEBUG
constexpr int kWhole = 3000;
constexpr int kDamaged = 10000;
constexpr int kOfThreads = 200;
#else
constexpr int kWhole = 500;
constexpr int kDamaged = 1000;
constexpr int kOfThreads = 20;
#endif

std::string NameOf(const ProductNode* product) {
    return product != nullptr ? std::string("'") + product->name + "'" : std::string("null");
}

// All that a reading leaves, with the bits of its numbers.
std::string Outcome(Tables& tables, const ReadDocument& read) {
    std::ostringstream out;
    out << (read.problem != nullptr ? read.problem : "read") << " root " << NameOf(read.document.root)
        << '\n';
    for (const ProductNode* const product : read.document.products) {
        out << NameOf(product);
        if (product == nullptr) { continue; }
        out << (product->fileName != nullptr ? product->fileName : "-") << product->isRoot << product->hasBox;
        for (const float f : product->box) { out << ' ' << std::bit_cast<std::uint32_t>(f); }
        for (std::int32_t i = 0; i < product->occurrenceCount; ++i) {
            const Occurrence& use = *product->occurrences[i];
            out << '\n' << use.relatedUid << ' ' << NameOf(use.child);
            for (const double d : use.rotation) { out << ' ' << std::bit_cast<std::uint64_t>(d); }
            for (const double d : use.translation) { out << ' ' << std::bit_cast<std::uint64_t>(d); }
        }
        out << '\n';
    }
    for (std::int32_t i = 0; i < tables.parts.Count(); ++i) { out << NameOf(tables.parts[i]); }
    for (std::int32_t i = 0; i < tables.assemblies.Count(); ++i) { out << NameOf(tables.assemblies[i]); }
    return out.str();
}

enum class Way { kUsually, kPlainly, kAhead, kByThreads };

std::string Outcome(const std::string& text, int boxMode, Way way) {
    constexpr std::size_t kPiece = 100; // less than most elements
    Tables tables;
    if (way == Way::kAhead) {
        HelpersFirst helpers;
        return Outcome(tables, ReadDocument(tables, text, boxMode, helpers, kPiece));
    }
    if (way == Way::kByThreads) {
        StartedHelpers helpers(2, 0);
        return Outcome(tables, ReadDocument(tables, text, boxMode, helpers, kPiece));
    }
    return Outcome(tables, ReadDocument(tables, text, boxMode, way == Way::kPlainly));
}

void ExpectSame(const std::string& text, Way other = Way::kAhead) {
    for (const int boxMode : {0, 1}) {
        const std::string plainly = Outcome(text, boxMode, Way::kPlainly);
        ASSERT_EQ(Outcome(text, boxMode, Way::kUsually), plainly) << text;
        ASSERT_EQ(Outcome(text, boxMode, other), plainly) << text;
    }
}

// Uses and placements in the usual and in many other spellings.
class Documents {
public:
    // With `ampersands` there is "&amp;" in some texts; damaged, it would never be got past.
    Documents(std::uint32_t seed, bool ampersands) : random_(seed), ampersands_(ampersands) {}

    int Below(int limit) { return static_cast<int>(random_() % static_cast<std::uint32_t>(limit)); }
    bool OneIn(int n) { return Below(n) == 0; }

    std::string Text() { return Document(Parts()); }

    std::string Parts() {
        std::string text;
        const int parts = 1 + Below(4);
        for (int part = 0; part < parts; ++part) {
            std::string view = "\n";
            for (int i = Below(3); i > 0; --i) { view += Occurrence(); }
            for (int i = Below(4); i > 0; --i) { view += Relation(); }
            if (OneIn(6)) { view += Assigned("f" + std::to_string(part)); }
            text += Part("part " + std::to_string(part), view);
            if (OneIn(3)) { text += File("f" + std::to_string(part), "a.stp"); }
        }
        return text;
    }

    // One or a few bytes changed, taken out or doubled, or the end cut off.
    std::string Damaged(std::string text) {
        static constexpr std::string_view kLetters("<>=\"/ \n\r\tx-0", 12);
        for (int i = 1 + Below(3); i > 0; --i) {
            const std::size_t at = random_() % text.size();
            const char c = OneIn(12) ? '\0' : kLetters[random_() % kLetters.size()];
            switch (Below(5)) {
            case 0:
                text[at] = c;
                break;
            case 1:
                text.insert(at, 1, c);
                break;
            case 2:
                text.erase(at, 1 + static_cast<std::size_t>(Below(3)));
                break;
            case 3:
                text.insert(at, text.substr(at, static_cast<std::size_t>(Below(60))));
                break;
            default:
                if (OneIn(4)) { text.resize(at + 1); }
                break;
            }
        }
        return text;
    }

private:
    std::string Gap() {
        if (OneIn(40)) { return "\r\n "; }
        return OneIn(3) ? "" : "\n" + std::string(static_cast<std::size_t>(Below(40)), ' ');
    }
    std::string Uid() {
        if (OneIn(60)) { return std::string(static_cast<std::size_t>(105 + Below(10)), 'u'); }
        return "o" + std::to_string(Below(6));
    }
    std::string Number() {
        switch (Below(6)) {
        case 0:
            return std::to_string(Below(2000) - 1000) + "." + std::to_string(Below(100000));
        case 1:
            return std::to_string(random_());
        case 2:
            return OneIn(10) ? "x" : "-" + std::to_string(Below(10));
        case 3:
            return "1.5e" + std::to_string(Below(40) - 20);
        default:
            return std::to_string(Below(10));
        }
    }
    std::string Numbers(int count) {
        std::string text = OneIn(20) ? " " : "";
        for (int i = 0; i < count; ++i) { text += (i > 0 ? OneIn(20) ? "\n" : " " : "") + Number(); }
        if (ampersands_ && OneIn(30)) { text += "&amp;"; }
        if (OneIn(60)) { text.append(static_cast<std::size_t>(190 + Below(20)), ' '); }
        return text;
    }
    std::string Tag(const std::string& name) { return "<" + name + (OneIn(25) ? " a=\"b\"" : "") + ">"; }
    std::string Typed(const std::string& name) {
        const std::string uid = "uid=\"" + Uid() + "\"";
        const std::string type = "xsi:type=\"n0:Type\"";
        if (OneIn(6)) { return "<" + name + " " + type + " " + uid + ">"; }
        if (OneIn(8)) { return "<" + name + " " + uid + ">"; }
        return "<" + name + " " + uid + " " + type + (OneIn(20) ? " " : "") + ">";
    }
    std::string Occurrence() {
        std::string text = Typed("Occurrence");
        if (!OneIn(4)) { text += Gap() + "<Id id=\"" + std::to_string(Below(9)) + "\"/>"; }
        return text + Gap() + "</Occurrence>" + Gap();
    }
    std::string Relation() {
        std::string text = Typed("ViewOccurrenceRelationship") + Gap();
        if (!OneIn(20)) { text += "<Related uidRef=\"" + Uid() + (OneIn(9) ? "\"></Related>" : "\"/>"); }
        text += Gap();
        if (OneIn(6)) { text += "<RelationType><Class uidRef=\"c\"/></RelationType>"; }
        if (!OneIn(20)) {
            text += Tag("Placement") + Gap();
            const bool wrapped = OneIn(6);
            if (wrapped) { text += "<CartesianTransformation uid=\"t\">" + Gap(); }
            if (!OneIn(20)) { text += Tag("RotationMatrix") + Numbers(9) + "</RotationMatrix>" + Gap(); }
            if (!OneIn(20)) { text += Tag("TranslationVector") + Numbers(3) + "</TranslationVector>"; }
            if (OneIn(20)) { text += "<RotationMatrix>" + Numbers(9) + "</RotationMatrix>"; }
            if (wrapped) { text += "</CartesianTransformation>"; }
            text += Gap() + "</Placement>" + Gap();
        }
        return text + "</ViewOccurrenceRelationship>" + Gap();
    }

    std::mt19937 random_;
    const bool ampersands_;
};

TEST(UsualTags, AreReadAsTheGeneralScanReadsThem) {
    StreamCapture console(stderr); // which names what isn't found
    Documents documents(3, true);
    int withUses = 0;
    for (int i = 0; i < kWhole; ++i) {
        const std::string text = documents.Text();
        ExpectSame(text);
        if (HasFatalFailure()) { return; }
        if (Outcome(text, 0, Way::kUsually).find("\no") != std::string::npos) { ++withUses; }
    }
    EXPECT_GT(withUses, kWhole / 3);
}

TEST(UsualTags, AreReadAsTheGeneralScanReadsThemInDamagedTexts) {
    StreamCapture console(stderr); // which names what isn't found
    Documents documents(4, false);
    for (int i = 0; i < kDamaged; ++i) {
        ExpectSame(documents.Damaged(documents.Text()));
        if (HasFatalFailure()) { return; }
    }
}

TEST(UsualTags, AreReadAsTheGeneralScanReadsThemWithEveryByteChangedOrTheRestCutOff) {
    const std::string text = Document(Part(
        "top", "<Occurrence uid=\"o0\" xsi:type=\"n0:SingleOccurrence\"><Id id=\"1\"/></Occurrence>"
               "<ViewOccurrenceRelationship uid=\"u1\" xsi:type=\"n0:NextAssemblyOccurrenceUsage\">\n"
               "<Related uidRef=\"o1\"/>\n<Placement><RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix>\n"
               "<TranslationVector>1.5 -2 3</TranslationVector></Placement>"
               "</ViewOccurrenceRelationship>"));
    const std::string letters("<>=\"/ \n\rx\0Z1", 12);
    for (std::size_t i = 0; i < text.size(); ++i) {
        ExpectSame(text.substr(0, i));
        for (const char c : letters) {
            std::string damaged = text;
            damaged[i] = c;
            ExpectSame(damaged);
        }
        if (HasFatalFailure()) { return; }
    }
}

TEST(UsualTags, AreReadAsTheGeneralScanReadsThemByThreads) {
    StreamCapture console(stderr); // which names what isn't found
    Documents documents(5, true);
    for (int i = 0; i < kOfThreads; ++i) {
        std::string parts;
        for (int k = 0; k < 20; ++k) { parts += documents.Parts(); }
        ExpectSame(Document(parts), Way::kByThreads);
        if (HasFatalFailure()) { return; }
    }
}

TEST(UsualTags, AreReadAsTheGeneralScanReadsThemInRealFiles) {
    const std::string folder = RealFile("xml");
    if (folder.empty()) { GTEST_SKIP() << "the files aren't here"; }
    int compared = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".stpx") { continue; }
        std::ifstream file(entry.path(), std::ios::binary);
        ExpectSame(std::string(std::istreambuf_iterator<char>(file), {}));
        ++compared;
    }
    EXPECT_GT(compared, 0);
}

} // namespace
} // namespace tarnwick
