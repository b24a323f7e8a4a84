#include "load/read_parts.h"

#include "load/worker_threads.h"
#include "platform/within_memory.h"

#include <mutex>
#include <utility>

namespace tarnwick {

namespace {

class PartLoop {
public:
    PartLoop(PartQueue& queue, PartFiles& files, bool useThreads, std::int32_t firstPlace,
             const LoadProgress& progress, LoadedScene& loaded)
        : queue_(queue), files_(files), useThreads_(useThreads), firstPlace_(firstPlace), progress_(progress),
          loaded_(loaded) {}

    // The loop of one thread.
    void Run(bool isLoadThread) {
        PartThread thread;
        thread.isLoadThread = isLoadThread;
        if (useThreads_) { thread.workspace.helpers = &helpers_; }
        do {
            helpers_.Begin();
            ReadEntries(thread);
            helpers_.End();
        } while (HelpOthers(isLoadThread));
        loaded_.scene->HandOver(std::move(thread.arena));
    }

    void ShowProgress() const {
        if (!progress_) { return; }
        const PartQueue::Counts counts = queue_.Count();
        progress_(counts.claimed, counts.all);
    }

    std::int32_t PartsRead() const { return partsRead_; }

private:
    void ReadEntries(PartThread& thread) {
        PartQueue::Entry entry;
        std::int32_t place = 0;
        while (queue_.Claim(&place, &entry)) {
            const bool enough = WithinMemory([&] { ReadEntry(thread, place, entry); });
            queue_.Settle(place);
            if (!enough) { GiveUp(place, *entry.product); } // other parts may still fit
            if (thread.isLoadThread) { ShowProgress(); }
        }
    }

    // Takes part in the reading of a large file of another thread. False when no thread reads any more.
    bool HelpOthers(bool isLoadThread) {
        constexpr int kBetweenProgress = 10; // milliseconds
        if (!useThreads_ || helpers_.Count() == 0) { return false; }
        for (;;) {
            const IdleHelpers::Outcome outcome = helpers_.Help(isLoadThread ? kBetweenProgress : 0);
            if (isLoadThread) { ShowProgress(); }
            if (outcome != IdleHelpers::Outcome::kTimeOver) {
                return outcome == IdleHelpers::Outcome::kHelped;
            }
        }
    }

    void ReadEntry(PartThread& thread, std::int32_t place, const PartQueue::Entry& entry) {
        std::optional<StepModel> model;
        const char* const problem = files_.Open(thread, *entry.product, place, &model);
        queue_.Settle(place);
        if (problem != nullptr) { return NoteUnread(thread, place, *entry.product, problem); }
        if (!model) { return; }
        PartReader reader(*model, entry.product, thread.arena, thread.scratch);
        reader.Run();
        if (const char* const reason = WhyGivenUp(reader)) {
            NoteUnread(thread, place, *entry.product, reason);
        }
        const std::lock_guard guard(lock_);
        partsRead_ += entry.times;
        loaded_.readSeconds += reader.readSeconds;
        loaded_.inflateSeconds += reader.inflateSeconds;
        loaded_.partSeconds += reader.parseSeconds;
    }

    void NoteUnread(const PartThread& thread, std::int32_t place, const ProductNode& product,
                    const char* reason) {
        const std::lock_guard guard(lock_);
        loaded_.unreadFiles.push_back({firstPlace_ + place, thread.path, product.name, reason});
    }

    void GiveUp(std::int32_t place, const ProductNode& product) {
        const std::lock_guard guard(lock_);
        GiveUpForMemory(product.fileName, product.name, firstPlace_ + place, &loaded_.unreadFiles);
    }

    PartQueue& queue_;
    PartFiles& files_;
    const bool useThreads_;
    const std::int32_t firstPlace_;
    const LoadProgress& progress_;
    IdleHelpers helpers_;
    std::mutex lock_; // guards what follows
    LoadedScene& loaded_;
    std::int32_t partsRead_ = 0;
};

} // namespace

std::int32_t ReadParts(PartQueue& queue, PartFiles& files, bool useThreads, std::int32_t firstPlace,
                       const LoadProgress& progress, LoadedScene& loaded) {
    PartLoop loop(queue, files, useThreads, firstPlace, progress, loaded);
    RunWithWorkers(
        useThreads, [&loop](bool isLoadThread) { loop.Run(isLoadThread); }, [&loop] { loop.ShowProgress(); });
    SortUnread(&loaded.unreadFiles);
    return loop.PartsRead();
}

} // namespace tarnwick
