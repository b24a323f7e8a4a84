#include "prepare/mesher.h"

#include "exchange/exchange_file.h"
#include "platform/clock.h"
#include "platform/paths.h"
#include "prepare/kernel_text.h"
#include "text/look_up.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace tarnwick {

namespace {

constexpr double kCoarser = 10;
constexpr double kCoarserAngle = 40;
// Of numbers of faces in one message.
constexpr std::size_t kMostNamed = 5;
constexpr std::size_t kFacesAtATime = 64;
// So often in a row may the program end before it tells of any progress; it can't be made to work then.
constexpr int kMostSilentEnds = 2;

// Of the time that is left when something begins, so much may go by before it is given up.
constexpr double kShareOfOne = 0.5;     // making the shape of a body alone
constexpr double kShareOfEach = 0.2;    // that of a body among others
constexpr double kShareOfAll = 0.7;     // making all shapes
constexpr double kShareOfMeshing = 0.5; // triangulating
constexpr double kShareOfGroup = 0.4;   // all that is done for a group of faces
constexpr double kShareOfFace = 0.1;    // making the shape of a face among others

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
    double share = kShareOfEach;
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
        for (const Quality& quality : kQualities) { Together(Unfinished(bodies_), quality, end_); }
        OneByOne(Unmade(), false);
        OneByOne(Unmade(), true);
        for (const Quality& quality : kQualities) {
            Together(Unfinished(bodies_), {quality.algorithm, true}, end_);
        }
        FaceByFace();
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
        } else if (number > kLargestKernelNumber) {
            body.isRefused = true;
            body.AddReason("its number is too large for the geometry kernel");
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
    Bodies Unmade() {
        Bodies selected = Unfinished(bodies_);
        std::erase_if(selected, [](const PendingBody* body) { return body->isMade; });
        return selected;
    }

    double Left() const { return end_ - ClockSeconds(); }
    bool IsOver() const { return isOver_ || Left() <= 0; }

    // Has the kernel make bodies in one go. One that it doesn't come back from is set apart, and the others
    // are asked for again.
    void Together(Bodies bodies, Quality quality, double end) {
        while (!bodies.empty() && !IsOver() && ClockSeconds() < end) {
            const std::size_t before = bodies.size();
            Ask(bodies, quality, end);
            std::erase_if(bodies, [](const PendingBody* body) { return body->isRefused; });
            if (bodies.size() == before || lastEnd_ == MeshEnd::kAnswered) { return; }
        }
    }

    // Each gets the same part of the time that is left.
    void OneByOne(const Bodies& bodies, bool isCoarse) {
        std::size_t left = bodies.size();
        for (PendingBody* const body : bodies) {
            const double end = ClockSeconds() + Left() / static_cast<double>(left--);
            for (const MeshAlgorithm algorithm : {MeshAlgorithm::kDefault, MeshAlgorithm::kDelabella}) {
                if (IsOver() || body->IsDone() || body->isRefused) { break; }
                Ask({body}, {algorithm, isCoarse}, std::min(end, end_));
            }
        }
    }

    // What the kernel makes no body of may still have good faces. They are asked for in groups, so that a bad
    // one costs no more than its group.
    void FaceByFace() {
        for (PendingBody& body : bodies_) {
            MeshBody found;
            for (std::size_t i = 0; !body.isMade && i < body.faces.size() && !IsOver(); i += kFacesAtATime) {
                const std::size_t end = std::min(i + kFacesAtATime, body.faces.size());
                AskForFaces({body.faces.data() + i, end - i}, &found);
            }
            if (!found.faces.empty()) {
                Merge(&body, &found, false);
                body.isInPieces = true;
            }
        }
    }

    void AskForFaces(std::span<const std::uint64_t> numbers, MeshBody* found) {
        std::vector<PendingBody> faces(numbers.size());
        for (std::size_t i = 0; i < faces.size(); ++i) {
            faces[i].mesh.entity = numbers[i];
            faces[i].faces = {numbers[i]};
            faces[i].mesh.lostFaces = {numbers[i]};
        }
        const double end = ClockSeconds() + Left() * kShareOfGroup;
        Together(Unfinished(faces), {MeshAlgorithm::kDefault, false, kShareOfFace}, end);
        Together(Unfinished(faces), {MeshAlgorithm::kDelabella, false, kShareOfFace}, end);
        for (PendingBody& face : faces) {
            std::move(face.mesh.faces.begin(), face.mesh.faces.end(), std::back_inserter(found->faces));
        }
    }

    // Sends one request and takes over what comes. Gives up at `end` at the latest, and earlier where
    // something else is to be tried in the time that is left.
    void Ask(const Bodies& bodies, Quality quality, double end) {
        std::vector<std::uint64_t> numbers;
        for (const PendingBody* const body : bodies) { numbers.push_back(body->mesh.entity); }
        MeshRequest request;
        request.text = KernelText(file_, numbers, context_);
        request.bodies = std::move(numbers);
        request.deflection = options_.deflection * (quality.isCoarse ? kCoarser : 1);
        request.angle = quality.isCoarse ? std::max(options_.angle, kCoarserAngle) : options_.angle;
        request.diagonal = diagonal_;
        request.algorithm = quality.algorithm;
        const double start = ClockSeconds();
        const double share = bodies.size() == 1 ? std::max(kShareOfOne, quality.share) : quality.share;
        MeshOutcome outcome = process_.Ask(request, [&](const MeshProgress& progress) {
            const double now = ClockSeconds();
            switch (progress.stage) {
            case MeshStage::kReading:
                break;
            case MeshStage::kTransfer:
                return std::min(start + (end - start) * kShareOfAll, now + (end - now) * share);
            case MeshStage::kMeshing:
                return now + (end - now) * kShareOfMeshing;
            }
            return start + (end - start) * kShareOfAll;
        });
        lastEnd_ = outcome.end;
        if (outcome.end == MeshEnd::kAnswered) {
            TakeAnswer(bodies, &outcome.answer, quality.isCoarse);
        } else {
            TakeFailure(bodies, outcome);
        }
    }

    void TakeAnswer(const Bodies& bodies, MeshAnswer* answer, bool isCoarse) {
        silentEnds_ = 0;
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
                (*body)->isRefused = true;
            }
            for (PendingBody* const body : problem.entity == 0 ? bodies : Bodies{}) {
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
            // Whose face it is must be known to add it to others.
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
        silentEnds_ = outcome.hasBegun ? 0 : silentEnds_ + 1;
        isOver_ = isOver_ || outcome.end == MeshEnd::kCancelled || outcome.end == MeshEnd::kNotStarted ||
                  silentEnds_ >= kMostSilentEnds;
        isCancelled_ = isCancelled_ || outcome.end == MeshEnd::kCancelled;
        const bool isOne = outcome.hasBegun && outcome.progress.stage == MeshStage::kTransfer;
        for (PendingBody* const body : bodies) {
            if (isOne && body->mesh.entity != outcome.progress.body) { continue; }
            body->AddReason(outcome.words);
            // The kernel would do the same again.
            body->isRefused = body->isRefused || isOne;
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
        if (!body->IsDone() && body->reasons.empty() && IsOver()) {
            body->AddReason(isCancelled_ ? "cancelled" : "the time limit ran out");
        }
        const std::string why = body->reasons.empty() ? "" : ": " + Joined(body->reasons);
        if (body->faces.empty() || !body->isMade) {
            result->losses.push_back(NameOf(*body) + " has no triangles" + why);
        } else if (!lost.empty()) {
            result->losses.push_back(NameOf(*body) + " lacks " + std::to_string(lost.size()) + " of " +
                                     std::to_string(body->faces.size()) + " faces (" + Numbers(lost) + ")" +
                                     why);
        }
        if (body->isInPieces && lost.empty()) {
            result->losses.push_back(NameOf(*body) + " could only be made face by face" + why);
        }
        if (body->isCoarse) {
            result->losses.push_back(NameOf(*body) + " has faces that are coarser than asked" + why);
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
    MeshEnd lastEnd_ = MeshEnd::kNotStarted;
    int silentEnds_ = 0;  // in a row
    bool isOver_ = false; // nothing more can be had
    bool isCancelled_ = false;
    std::vector<PendingBody> bodies_;
    Bodies all_; // that the kernel may be asked for
};

bool IsProgram(const std::string& path) {
    return access(path.c_str(), X_OK) == 0;
}

} // namespace

Mesher::Mesher(MesherOptions options, const std::atomic<bool>* cancel)
    : options_(std::move(options)), process_(options_.program, options_.memoryLimit, cancel) {}

MeshResult Mesher::Mesh(const ExchangeFile& file, std::span<const std::uint64_t> bodies,
                        std::uint64_t context) {
    return MeshRun(file, context, options_, &process_).Run(bodies);
}

std::string FindMeshProgram() {
    constexpr std::string_view kName = "tarnwick-mesh";
    char own[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", own, sizeof own);
    if (length > 0) {
        const std::string folder = FolderOf({own, static_cast<std::size_t>(length)});
        for (const char* const inside : {"", "../libexec/", "../lib/tarnwick/"}) {
            std::string path = folder + inside;
            path += kName;
            if (IsProgram(path)) { return path; }
        }
    }
    const char* const variable = std::getenv("PATH");
    std::string_view rest = variable != nullptr ? variable : "";
    while (!rest.empty()) {
        const std::size_t colon = std::min(rest.find(':'), rest.size());
        std::string path(rest.substr(0, colon));
        path += path.empty() || path.back() == '/' ? "" : "/";
        path += kName;
        if (colon > 0 && IsProgram(path)) { return path; }
        rest.remove_prefix(std::min(colon + 1, rest.size()));
    }
    return {};
}

} // namespace tarnwick
