#include "mesher/mesh_process.h"

#include "platform/clock.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

namespace tarnwick {

namespace {

constexpr std::size_t kChunk = 256 << 10;
// The longest wait before the next look at the cancel flag, in milliseconds.
constexpr int kCancelSlice = 50;

// One request on its way out, and what comes back.
class Conversation {
public:
    // No message is longer than `most` bytes.
    Conversation(ServiceProcess& process, std::string request, std::uint64_t most)
        : process_(process), request_(std::move(request)), most_(most),
          chunk_(std::make_unique<char[]>(kChunk)) {}

    // Sends and receives what is possible within so many milliseconds. False where the other side is gone.
    bool Go(int milliseconds) {
        ServiceProcess::Ready ready;
        if (!process_.Wait(milliseconds, sent_ < request_.size(), &ready)) { return false; }
        // A program that has stopped reading may still have written something.
        if (ready.toWrite && !Send()) { sent_ = request_.size(); }
        return !ready.toRead || Receive();
    }

    // Whether a whole message is here. Then `head` and `bytes` are its own, valid until Drop. `isSound`
    // becomes false where what is here begins no message.
    bool HasMessage(MeshHead* head, std::string_view* bytes, bool* isSound) const {
        if (received_.size() < kMeshHeadSize) { return false; }
        const std::string_view all = received_;
        const std::optional<MeshHead> found = DecodeMeshHead(all.substr(0, kMeshHeadSize));
        *isSound = found.has_value() && found->kind != MeshMessage::kRequest && found->length <= most_;
        if (!*isSound || all.size() - kMeshHeadSize < found->length) { return false; }
        *head = *found;
        *bytes = all.substr(kMeshHeadSize, static_cast<std::size_t>(found->length));
        return true;
    }
    void Drop(const MeshHead& head) {
        received_.erase(0, kMeshHeadSize + static_cast<std::size_t>(head.length));
    }

private:
    bool Send() { return process_.Send(request_.data() + sent_, request_.size() - sent_, &sent_); }
    bool Receive() {
        std::size_t got = 0;
        const bool goesOn = process_.Receive(chunk_.get(), kChunk, &got);
        received_.append(chunk_.get(), got);
        return goesOn;
    }

    ServiceProcess& process_;
    const std::string request_;
    const std::uint64_t most_;
    std::size_t sent_ = 0;
    std::string received_;
    const std::unique_ptr<char[]> chunk_;
};

// Milliseconds until `limit`, rounded up, and no more than may pass before the next look at the cancel flag.
int SliceUntil(double limit, double now) {
    return static_cast<int>(std::clamp(std::ceil((limit - now) * 1000), 1.0, double{kCancelSlice}));
}

std::string WordsOf(const ProcessEnd& end) {
    const std::string number = std::to_string(end.number);
    if (end.kind == ProcessEnd::Kind::kSignal) {
        return "the geometry kernel crashed (signal " + number + ")";
    }
    // The status with which the system's loader ends a program whose libraries are missing.
    if (end.number == 127) { return "the geometry kernel's libraries aren't installed"; }
    return "the geometry kernel ended (status " + number + ")";
}

} // namespace

bool MeshProcess::Start(std::string* words) {
    std::vector<std::string> command{program_};
    if (memoryLimit_ > 0) {
        command.push_back("--memory");
        command.push_back(std::to_string(std::max<std::size_t>(memoryLimit_ >> 20, 1)));
    }
    std::string why;
    const ServiceProcess::Start start = process_.Run(command, &why);
    if (start == ServiceProcess::Start::kNoConnection) {
        *words = "no connection to the geometry kernel: " + why;
    } else if (start == ServiceProcess::Start::kNotStarted) {
        *words = program_ + " can't be started: " + why;
    }
    return start == ServiceProcess::Start::kRuns;
}

MeshOutcome MeshProcess::Ask(const MeshRequest& request,
                             const std::function<double(const MeshProgress&)>& limit) {
    const bool wasThere = process_.IsRunning();
    MeshOutcome outcome = AskOnce(request, limit);
    // The process may have ended long before the request: anyone may end it.
    if (wasThere && outcome.end == MeshEnd::kCrash && !outcome.hasBegun) { return AskOnce(request, limit); }
    return outcome;
}

MeshOutcome MeshProcess::AskOnce(const MeshRequest& request,
                                 const std::function<double(const MeshProgress&)>& limit) {
    MeshOutcome outcome;
    if (!process_.IsRunning() && !Start(&outcome.words)) { return outcome; }
    // The process can't have made a message that is larger than its memory.
    const std::uint64_t most = memoryLimit_ > 0 ? memoryLimit_ : std::numeric_limits<std::uint64_t>::max();
    Conversation conversation(process_, EncodeMesh(request), most);
    double giveUp = limit(outcome.progress);
    const auto end = [&](MeshEnd how, std::string words) {
        process_.End();
        outcome.end = how;
        outcome.words = std::move(words);
    };
    for (;;) {
        if (IsCancelled()) {
            end(MeshEnd::kCancelled, "cancelled");
            return outcome;
        }
        const double now = ClockSeconds();
        if (!(now < giveUp)) {
            end(MeshEnd::kTimeLimit, "the time limit ran out");
            return outcome;
        }
        const bool isThere = conversation.Go(SliceUntil(giveUp, now));
        MeshHead head;
        std::string_view bytes;
        bool isSound = true;
        while (conversation.HasMessage(&head, &bytes, &isSound)) {
            isSound = head.kind == MeshMessage::kProgress ? DecodeMesh(bytes, &outcome.progress)
                                                          : DecodeMesh(bytes, &outcome.answer);
            if (!isSound) { break; }
            if (head.kind == MeshMessage::kAnswer) {
                outcome.end = MeshEnd::kAnswered;
                return outcome;
            }
            outcome.hasBegun = true;
            giveUp = limit(outcome.progress);
            conversation.Drop(head);
        }
        if (!isSound) {
            outcome.answer = {};
            end(MeshEnd::kRubbish, "the geometry kernel's answer is damaged");
            return outcome;
        }
        if (!isThere) { break; }
    }
    // Gone already, or about to be: it closed its end.
    const ProcessEnd ended = process_.EndAfter(1);
    const bool isOutOfMemory = ended.kind == ProcessEnd::Kind::kExit && ended.number == kMeshOutOfMemory;
    end(isOutOfMemory ? MeshEnd::kOutOfMemory : MeshEnd::kCrash,
        isOutOfMemory ? "the geometry kernel ran out of memory" : WordsOf(ended));
    return outcome;
}

} // namespace tarnwick
