#include "mesher/mesher.h"

#include "exchange/exchange_file.h"
#include "mesher/kernel_text.h"
#include "platform/clock.h"
#include "platform/paths.h"
#include "platform/programs.h"
#include "text/look_up.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tarnwick {

namespace {

constexpr double kCoarser = 10;
constexpr double kCoarserAngle = 40;
// The most faces that one message names.
constexpr std::size_t kMostNamed = 5;
constexpr std::size_t kFacesAtATime = 64;
// After so many ends in a row without any progress the program is taken for broken.
constexpr int kMostSilentEnds = 2;

// The share of the time left that a step may take before it is given up.
constexpr double kShareOfOne = 0.5;     // making the shape of a body alone
constexpr double kShareOfEach = 0.2;    // that of a body among others, or triangulating it by itself
constexpr double kShareOfAll = 0.7;     // making all shapes
constexpr double kShareOfMeshing = 0.4; // triangulating all
constexpr double kShareOfFace = 0.1;    // a face among others, when nothing else has helped

// A body that takes so many times longer to triangulate than to make, and at least so many seconds, has a
// face that another algorithm may do at once.
constexpr double kHastyRatio = 5;
constexpr double kHastySeconds = 4;

// A body on its way.
struct PendingBody {
    MeshBody mesh;
    std::vector<std::uint64_t> faces; // that the text has
    std::vector<std::string> reasons; // each once
    bool isMade = false;              // the kernel has answered with it
    bool hasBareFaces = false;        // the kernel made them, but found no triangles
    bool isRefused = false;           // the kernel makes no shape of it, or doesn't come back from that
    bool isCoarse = false;            // some faces are coarser than asked
    bool isInPieces = false;          // faces that the kernel made one by one

    bool IsDone() const { return isMade && mesh.lostFaces.empty(); }
    void AddReason(const std::string& words) {
        if (!words.empty() && std::find(reasons.begin(), reasons.end(), words) == reasons.end()) {
            reasons.push_back(words);
        }
    }
};

using Bodies = std::vector<PendingBody*>;

struct Quality {
    MeshAlgorithm algorithm = MeshAlgorithm::kDefault;
    bool isCoarse = false;
    bool isHasty = false; // to be given up sooner than the time limit asks
};

// How the last request ended, and with which body where it didn't with all.
struct LastAsk {
    MeshEnd end = MeshEnd::kNotStarted;
    std::uint64_t body = 0;
};

// One call of Mesh.
class MeshRun {
public:
    MeshRun(const ExchangeFile& file, std::uint64_t context, const MesherOptions& options,
            MeshProcess* process)
        : file_(file), context_(context), options_(options), process_(*process),
          end_(ClockSeconds() + options.timeLimit) {}

    MeshResult Run(std::span<const std::uint64_t> numbers) {
        bodies_.reserve(numbers.size());
        for (const std::uint64_t number : numbers) { Add(number); }
        all_ = Unfinished(bodies_);
        constexpr Quality kQualities[] = {{MeshAlgorithm::kDefault, false},
                                          {MeshAlgorithm::kDelabella, false}};
        Together(Unfinished(bodies_), {MeshAlgorithm::kDefault, false, true});
        Together(Unfinished(bodies_), {MeshAlgorithm::kDelabella, false});
        if (wasHasty_) { Together(Unmade(), {MeshAlgorithm::kDefault, false}); }
        for (const Quality& quality : kQualities) {
            if (all_.size() > 1) { Each(Spoilt(), quality, kShareOfEach); }
        }
        for (const Quality& quality : kQualities) { Each(Unmade(), {quality.algorithm, true}, kShareOfEach); }
        FaceByFace();
        for (const Quality& quality : kQualities) {
            Together(Unfinished(bodies_), {quality.algorithm, true});
        }
        return Result();
    }

private:
    void Add(std::uint64_t number) {
        PendingBody& body = bodies_.emplace_back();
        body.mesh.entity = number;
        body.faces = FacesOf(file_, number);
        body.mesh.lostFaces = body.faces;
        if (body.faces.empty()) {
            body.isRefused = true;
            body.AddReason(file_.Find(number) == nullptr ? "it isn't in the file" : "it has no faces");
        }
    }

    // Those that can still gain.
    static Bodies Unfinished(std::vector<PendingBody>& bodies) {
        Bodies selected;
        for (PendingBody& body : bodies) {
            if (!body.IsDone() && !body.isRefused && (!body.isMade || body.hasBareFaces)) {
                selected.push_back(&body);
            }
        }
        return selected;
    }
    // Those of them that another body may have spoilt: bodies that are triangulated in one go share a
    // deflection.
    Bodies Spoilt() {
        Bodies selected = Unfinished(bodies_);
        std::erase_if(selected, [](const PendingBody* body) {
            return body->isMade && 2 * body->mesh.lostFaces.size() < body->faces.size();
        });
        return selected;
    }

    Bodies Unmade() {
        Bodies selected = Unfinished(bodies_);
        std::erase_if(selected, [](const PendingBody* body) { return body->isMade; });
        return selected;
    }

    double Left() const { return end_ - ClockSeconds(); }
    bool IsOver() const { return isOver_ || Left() <= 0; }

    // Has the kernel make bodies in one go. One that it doesn't come back from is refused, and the others are
    // asked for again.
    void Together(Bodies bodies, Quality quality) {
        while (!bodies.empty() && !IsOver()) {
            const std::size_t before = bodies.size();
            Ask(bodies, quality, false, kShareOfEach);
            std::erase_if(bodies, [](const PendingBody* body) { return body->isRefused; });
            if (bodies.size() == before || last_.end == MeshEnd::kAnswered) { return; }
        }
    }

    // Has the kernel triangulate each by itself. `share`: of the time left, for one of them.
    void Each(Bodies bodies, Quality quality, double share) {
        while (!bodies.empty() && !IsOver()) {
            const std::size_t before = bodies.size();
            Ask(bodies, quality, true, share);
            if (last_.end == MeshEnd::kAnswered) { return; }
            std::erase_if(bodies, [&](const PendingBody* body) {
                return body->isMade || body->isRefused || body->mesh.entity == last_.body;
            });
            if (bodies.size() == before) { return; }
        }
    }

    // A body that the kernel can't make, or can hardly triangulate, may still have good faces. They are asked
    // for in groups, so that a bad one costs no more than its group.
    void FaceByFace() {
        for (PendingBody& body : bodies_) {
            if (body.isMade && !body.hasBareFaces) { continue; }
            const std::vector<std::uint64_t> lost = body.mesh.lostFaces;
            MeshBody found;
            for (std::size_t i = 0; i < lost.size() && !IsOver(); i += kFacesAtATime) {
                AskForFaces({lost.data() + i, std::min(kFacesAtATime, lost.size() - i)}, &found);
            }
            if (found.faces.empty()) { continue; }
            body.isInPieces = !body.isMade;
            Merge(&body, &found, false);
            body.hasBareFaces = !body.isInPieces;
        }
    }

    void AskForFaces(std::span<const std::uint64_t> numbers, MeshBody* found) {
        std::vector<PendingBody> faces(numbers.size());
        for (std::size_t i = 0; i < faces.size(); ++i) {
            faces[i].mesh.entity = numbers[i];
            faces[i].faces = {numbers[i]};
            faces[i].mesh.lostFaces = {numbers[i]};
        }
        Each(Unfinished(faces), {MeshAlgorithm::kDefault, false}, kShareOfFace);
        Each(Unfinished(faces), {MeshAlgorithm::kDelabella, false}, kShareOfFace);
        for (PendingBody& face : faces) {
            std::move(face.mesh.faces.begin(), face.mesh.faces.end(), std::back_inserter(found->faces));
        }
    }

    // Sends one request and takes over what comes. Gives up earlier than at the end where something else is
    // to be tried in the time that is left.
    void Ask(const Bodies& bodies, Quality quality, bool isEach, double share) {
        std::vector<std::uint64_t> numbers;
        for (const PendingBody* const body : bodies) { numbers.push_back(body->mesh.entity); }
        MeshRequest request;
        KernelInput input = KernelText(file_, numbers, context_);
        request.text = std::move(input.text);
        request.bodies = std::move(input.bodies);
        request.deflection = options_.deflection * (quality.isCoarse ? kCoarser : 1);
        request.angle = quality.isCoarse ? std::max(options_.angle, kCoarserAngle) : options_.angle;
        request.diagonal = diagonal_;
        request.algorithm = quality.algorithm;
        request.isEach = isEach;
        const double start = ClockSeconds();
        const double endOfShapes = start + Left() * kShareOfAll;
        MeshOutcome outcome = process_.Ask(request, [&](const MeshProgress& progress) {
            const double left = Left();
            const double now = end_ - left;
            switch (progress.stage) {
            case MeshStage::kReading:
                break;
            case MeshStage::kTransfer:
                return std::min(endOfShapes, now + left * (bodies.size() == 1 ? kShareOfOne : share));
            case MeshStage::kMeshing: {
                const double patience = left * (isEach ? share : kShareOfMeshing);
                const double haste = std::max(kHastyRatio * (now - start), kHastySeconds);
                const bool isHasty = quality.isHasty && haste < patience;
                wasHasty_ = wasHasty_ || isHasty;
                return now + (isHasty ? haste : patience);
            }
            }
            return endOfShapes;
        });
        SetOwnNumbers(input, &outcome);
        last_ = {outcome.end, outcome.hasBegun ? outcome.progress.body : 0};
        TakeAnswer(bodies, &outcome.answer, quality.isCoarse);
        if (outcome.end != MeshEnd::kAnswered) { TakeFailure(bodies, outcome); }
    }

    // Replaces the numbers of the kernel's text by those of the file.
    static void SetOwnNumbers(const KernelInput& input, MeshOutcome* outcome) {
        const auto set = [&](std::uint64_t* number) { *number = input.OwnNumber(*number); };
        set(&outcome->progress.body);
        for (MeshProblem& problem : outcome->answer.problems) { set(&problem.entity); }
        for (MeshBody& body : outcome->answer.bodies) {
            set(&body.entity);
            for (MeshFace& face : body.faces) { set(&face.entity); }
        }
    }

    void TakeAnswer(const Bodies& bodies, MeshAnswer* answer, bool isCoarse) {
        // Further attempts are as fine as the one that had all bodies.
        if (bodies == all_ && answer->bodies.size() == all_.size()) { diagonal_ = answer->diagonal; }
        LookUp<std::uint64_t, PendingBody*> byNumber;
        for (PendingBody* const body : bodies) { byNumber.Add(body->mesh.entity, body); }
        for (MeshBody& mesh : answer->bodies) {
            if (PendingBody** const body = byNumber.Find(mesh.entity)) { Merge(*body, &mesh, isCoarse); }
        }
        for (const MeshProblem& problem : answer->problems) {
            if (PendingBody** const body = byNumber.Find(problem.entity)) {
                (*body)->AddReason(problem.words);
                (*body)->isRefused = !(*body)->isMade;
            }
            if (problem.entity != 0) { continue; }
            for (PendingBody* const body : bodies) {
                if (!body->IsDone()) { body->AddReason(problem.words); }
            }
        }
    }

    // Takes over the faces that the body still lacks.
    static void Merge(PendingBody* body, MeshBody* from, bool isCoarse) {
        LookUp<std::uint64_t, bool> had;
        for (const MeshFace& face : body->mesh.faces) { had.AddNew(face.entity); }
        const bool hadNone = body->mesh.faces.empty();
        for (MeshFace& face : from->faces) {
            // A face whose number isn't known could be one of those that are there.
            if (!hadNone && (face.entity == 0 || had.Contains(face.entity))) { continue; }
            body->isCoarse = body->isCoarse || isCoarse;
            body->mesh.faces.push_back(std::move(face));
        }
        LookUp<std::uint64_t, bool> has;
        for (const MeshFace& face : body->mesh.faces) { has.AddNew(face.entity); }
        body->mesh.lostFaces.clear();
        for (const std::uint64_t face : body->faces) {
            if (!has.Contains(face)) { body->mesh.lostFaces.push_back(face); }
        }
        body->hasBareFaces = !from->lostFaces.empty();
        body->isMade = true;
    }

    void TakeFailure(const Bodies& bodies, const MeshOutcome& outcome) {
        const bool isSilent = !outcome.hasBegun && outcome.end != MeshEnd::kTimeLimit;
        silentEnds_ = isSilent ? silentEnds_ + 1 : 0;
        isOver_ = isOver_ || outcome.end == MeshEnd::kCancelled || outcome.end == MeshEnd::kNotStarted ||
                  silentEnds_ >= kMostSilentEnds;
        isCancelled_ = isCancelled_ || outcome.end == MeshEnd::kCancelled;
        if (isOver_) { whyOver_ = outcome.words; }
        for (PendingBody* const body : bodies) {
            if (body->isMade || (last_.body != 0 && body->mesh.entity != last_.body)) { continue; }
            body->AddReason(outcome.words);
            // A second attempt would end the same way.
            body->isRefused = last_.body != 0 && outcome.progress.stage == MeshStage::kTransfer;
        }
    }

    std::string NameOf(const PendingBody& body) const {
        const Instance* const instance = file_.Find(body.mesh.entity);
        std::string name;
        if (instance != nullptr && instance->keyword != ExchangeFile::kComplex) {
            name = file_.KeywordOf(*instance);
            name += ' ';
        }
        name += '#';
        return name += std::to_string(body.mesh.entity);
    }

    static std::string Joined(const std::vector<std::string>& words) {
        std::string all;
        for (const std::string& word : words) { all += (all.empty() ? "" : "; ") + word; }
        return all;
    }

    static std::string Numbers(const std::vector<std::uint64_t>& numbers) {
        std::string all;
        for (std::size_t i = 0; i < std::min(numbers.size(), kMostNamed); ++i) {
            all += (i == 0 ? "#" : ", #") + std::to_string(numbers[i]);
        }
        return numbers.size() > kMostNamed ? all + " ..." : all;
    }

    void Tell(PendingBody* body, MeshResult* result) {
        const std::vector<std::uint64_t>& lost = body->mesh.lostFaces;
        if (!body->IsDone() && body->reasons.empty() && IsOver()) { body->AddReason(whyOver_); }
        const std::string why = body->reasons.empty() ? "" : ": " + Joined(body->reasons);
        if (body->faces.empty() || !body->isMade) {
            result->losses.push_back(NameOf(*body) + " has no triangles" + why);
        } else if (!lost.empty()) {
            result->losses.push_back(NameOf(*body) + " lacks " + std::to_string(lost.size()) + " of " +
                                     std::to_string(body->faces.size()) + " faces (" + Numbers(lost) + ")" +
                                     why);
        }
        if (body->isInPieces && lost.empty()) {
            result->notes.push_back(NameOf(*body) + " could only be made face by face" + why);
        }
        if (body->isCoarse) {
            result->notes.push_back(NameOf(*body) + " has faces that are coarser than asked" + why);
        }
    }

    MeshResult Result() {
        MeshResult result;
        result.isCancelled = isCancelled_;
        for (PendingBody& body : bodies_) {
            Tell(&body, &result);
            result.bodies.push_back(std::move(body.mesh));
        }
        return result;
    }

    const ExchangeFile& file_;
    const std::uint64_t context_;
    const MesherOptions& options_;
    MeshProcess& process_;
    const double end_;    // by ClockSeconds
    double diagonal_ = 0; // of the box of all bodies, or 0 where nobody knows
    LastAsk last_;
    bool wasHasty_ = false; // a request may have been given up sooner than it had to be
    int silentEnds_ = 0;    // in a row
    bool isOver_ = false;   // nothing more can be had
    std::string whyOver_ = "the time limit ran out";
    bool isCancelled_ = false;
    std::vector<PendingBody> bodies_;
    Bodies all_; // that the kernel may be asked for
};

} // namespace

Mesher::Mesher(MesherOptions options, const std::atomic<bool>* cancel)
    : options_(std::move(options)), process_(options_.program, options_.memoryLimit, cancel) {}

MeshResult Mesher::Mesh(const ExchangeFile& file, std::span<const std::uint64_t> bodies,
                        std::uint64_t context) {
    return MeshRun(file, context, options_, &process_).Run(bodies);
}

std::string FindMeshProgram() {
    constexpr std::string_view kName = "tarnwick-mesh";
    const std::string own = OwnProgram();
    if (!own.empty()) {
        for (const char* const inside : {"", "../libexec/", "../lib/tarnwick/"}) {
            const std::string path = ProgramIn(FolderOf(own) + inside, kName);
            if (!path.empty()) { return path; }
        }
    }
    return FindProgram(kName);
}

} // namespace tarnwick
