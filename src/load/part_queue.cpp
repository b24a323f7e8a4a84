#include "load/part_queue.h"

#include "geometry/part_reader.h"
#include "load/no_memory.h"
#include "load/reading_order.h"
#include "load/worker_threads.h"
#include "p21/step_model.h"
#include "platform/console.h"
#include "product/assembly_reader.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

namespace tarnwick {

namespace {

// The path of a part's file: beside the top file, and packed as that one is.
std::string FormPath(const LoadSession& session, const ProductNode& product) {
    std::string path = session.folder;
    path += product.fileName;
    std::replace(path.begin() + static_cast<std::ptrdiff_t>(session.folder.size()), path.end(), '\\', '/');
    if (session.compression == StepModel::kTwoCharacterSuffix) { path += ".Z"; }
    if (session.compression == StepModel::kOneCharacterSuffix) { path += 'z'; }
    return path;
}

// The next entry of the queue and its place in it; null when there is none at this moment.
ProductNode* Claim(LoadSession& session, std::int32_t* entry) {
    const std::lock_guard guard(session.queueLock);
    if (session.queueCursor >= session.queue.count) { return nullptr; }
    *entry = session.queueCursor++;
    return session.queue[*entry];
}

void ShowProgress(LoadSession& session) {
    if (!session.progress) { return; }
    std::int32_t known = 0;
    std::int32_t claimed = 0;
    {
        const std::lock_guard guard(session.queueLock);
        known = session.queue.count;
        claimed = session.queueCursor;
    }
    session.progress(claimed, known);
}

void NoteUnread(LoadSession& session, std::int32_t entry, std::string path, const ProductNode& product,
                const char* reason) {
    const std::lock_guard guard(session.unreadLock);
    session.unreadFiles.push_back({entry, std::move(path), product.name, reason});
}

// What one thread keeps from entry to entry.
struct QueueThread {
    ReaderWorkspace workspace;
    PartScratch scratch;
    Arena arena;
};

void ReadEntry(LoadSession& session, ReadingOrder& order, QueueThread& thread, std::int32_t entry,
               ProductNode* product) {
    std::string path = FormPath(session, *product);
    StepModel model(thread.workspace, path);
    const int result = model.Read();
    if (result == StepModel::kRead && model.isAssembly != 0) {
        order.WaitFor(entry);
        bool givenUp = false;
        {
            const std::lock_guard guard(session.structureLock);
            givenUp = ReadAssemblyStructure(session, model, false, thread.arena) != 0;
        }
        order.Settle(entry);
        if (givenUp) { NoteUnread(session, entry, std::move(path), *product, kGivenUpReason); }
        return;
    }
    order.Settle(entry);
    if (result != StepModel::kRead) {
        NoteUnread(session, entry, std::move(path), *product, UnreadReason(result));
        return;
    }
    PartReader reader(model, product, thread.arena, thread.scratch);
    reader.Run();
    if (reader.givenUp) { NoteUnread(session, entry, std::move(path), *product, kGivenUpReason); }
    session.partCount.fetch_add(1, std::memory_order_relaxed);
    session.readSeconds.fetch_add(reader.readSeconds, std::memory_order_relaxed);
    session.inflateSeconds.fetch_add(reader.inflateSeconds, std::memory_order_relaxed);
    session.partSeconds.fetch_add(reader.parseSeconds, std::memory_order_relaxed);
}

// For a file that a library has no memory for: the others may still do.
void GiveUpEntry(LoadSession& session, ReadingOrder& order, std::int32_t entry, const ProductNode& product) {
    // Later entries wait for this one. The threads that don't wait will give memory back.
    while (!WithinMemory([&] { order.Settle(entry); })) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const std::lock_guard guard(session.unreadLock);
    GiveUpForMemory(product.fileName, product.name, entry, &session.unreadFiles);
}

void RunPartQueue(LoadSession& session, ReadingOrder& order, bool isLoadThread) {
    QueueThread thread;
    std::int32_t entry = 0;
    while (ProductNode* const product = Claim(session, &entry)) {
        if (!WithinMemory([&] { ReadEntry(session, order, thread, entry, product); })) {
            GiveUpEntry(session, order, entry, *product);
        }
        if (isLoadThread) { ShowProgress(session); }
    }
    session.scene->HandOver(std::move(thread.arena));
}

} // namespace

void ReadQueuedFiles(LoadSession& session) {
    ReadingOrder order;
    RunWithWorkers(
        session.useThreads, session.done,
        [&](bool isLoadThread) { RunPartQueue(session, order, isLoadThread); },
        [&session] { ShowProgress(session); });
    SortUnread(&session.unreadFiles);
}

void SortUnread(std::vector<UnreadFile>* files) {
    std::sort(files->begin(), files->end(),
              [](const UnreadFile& a, const UnreadFile& b) { return a.place < b.place; });
}

const char* UnreadReason(int result) {
    return result == StepModel::kNotOpened ? "can't be opened" : "isn't a valid ISO 10303-21 file";
}

} // namespace tarnwick
