#include "xml/part_loop.h"

#include "archive/stpa_archive.h"
#include "geometry/part_reader.h"
#include "load/no_memory.h"
#include "load/part_queue.h"
#include "load/worker_threads.h"
#include "p21/step_model.h"
#include "platform/console.h"
#include "xml/stpx_file.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

namespace tarnwick {

namespace {

// What one thread keeps from part to part.
struct PartThread {
    ReaderWorkspace workspace;
    PartScratch scratch;
    Arena arena;
    std::string path; // of the last part that it opened
};

// Every product of the table once, in the order of the table.
void FillQueue(StpxSession& session) {
    std::unordered_map<const ProductNode*, std::size_t> places;
    for (std::int32_t i = 0; i < session.geomProdExt.Count(); ++i) {
        ProductNode* const product = session.geomProdExt[i];
        const auto [place, isNew] = places.emplace(product, session.queue.size());
        if (isNew) {
            session.queue.push_back({product, 1});
        } else {
            ++session.queue[place->second].times;
        }
    }
    session.nextPart = 0;
}

// The next part and its place in the queue; null when there is none left.
const StpxSession::Part* Claim(StpxSession& session, std::int32_t* place) {
    const std::lock_guard guard(session.queueLock);
    if (session.nextPart >= static_cast<std::int32_t>(session.queue.size())) { return nullptr; }
    *place = session.nextPart++;
    return &session.queue[static_cast<std::size_t>(*place)];
}

void ShowProgress(StpxSession& session) {
    if (!session.progress) { return; }
    std::int32_t claimed = 0;
    {
        const std::lock_guard guard(session.queueLock);
        claimed = session.nextPart;
    }
    session.progress(claimed, static_cast<std::int32_t>(session.queue.size()));
}

void NoteUnread(StpxSession& session, std::int32_t place, const std::string& path, const ProductNode& product,
                const char* reason) {
    const std::lock_guard guard(session.unreadLock);
    // Behind the root document and the further ones, which were wanted first.
    session.unreadFiles.push_back({session.asmProdExt.Count() + 1 + place, path, product.name, reason});
}

// The model of a part's file, not read yet. Taking an archive's bytes is serial, inflating them is not: that
// is left to Read. *oddity tells what the archive knows against the member.
void OpenPart(StpxSession& session, PartThread& thread, const ProductNode& product,
              std::optional<StepModel>* model, const char** oddity) {
    *oddity = nullptr;
    if (session.zip == nullptr) {
        thread.path = StpxPath(session, product);
        model->emplace(thread.workspace, thread.path);
        return;
    }
    thread.path = product.fileName;
    ZipArchive::Packed packed;
    {
        const std::lock_guard guard(session.zipLock);
        packed = session.zip->ReadPacked(product.fileName);
    }
    *oddity = packed.oddity;
    model->emplace(thread.workspace, std::move(packed.data), packed.size);
    (*model)->fileName = thread.path; // for its messages
}

void ReadPart(StpxSession& session, PartThread& thread, const StpxSession::Part& part, std::int32_t place,
              bool isMain) {
    ProductNode& product = *part.product;
    if (IsXmlFileName(product.fileName) != 0) {
        ConsolePrint("<E> Error: XML file in _geom_prod_ext: %s\n", thread.path.c_str());
        return;
    }
    std::optional<StepModel> model;
    const char* oddity = nullptr;
    OpenPart(session, thread, product, &model, &oddity);
    const std::string& path = thread.path;
    const int result = model->Read();
    if (model->entityMap == nullptr) {
        NoteUnread(session, place, path, product, oddity != nullptr ? oddity : UnreadReason(result));
        return;
    }
    if (model->isAssembly != 0) {
        if (!isMain) { ConsolePrint("<E> Error: P21 assembly file in _geom_prod_ext: %s\n", path.c_str()); }
        NoteUnread(session, place, path, product, "is a P21 assembly, which can't be a part here");
        return;
    }
    PartReader reader(*model, &product, thread.arena, thread.scratch);
    reader.Run();
    if (reader.givenUp) { NoteUnread(session, place, path, product, kGivenUpReason); }
    session.partsRead.fetch_add(part.times, std::memory_order_relaxed);
    session.readSeconds.fetch_add(reader.readSeconds, std::memory_order_relaxed);
    session.inflateSeconds.fetch_add(reader.inflateSeconds, std::memory_order_relaxed);
    session.parseSeconds.fetch_add(reader.parseSeconds, std::memory_order_relaxed);
}

void RunPartLoop(StpxSession& session, bool isMain) {
    PartThread thread;
    std::int32_t place = 0;
    while (const StpxSession::Part* const part = Claim(session, &place)) {
        if (!WithinMemory([&] { ReadPart(session, thread, *part, place, isMain); })) {
            // The others may still do.
            const std::lock_guard guard(session.unreadLock);
            GiveUpForMemory(part->product->fileName, part->product->name,
                            session.asmProdExt.Count() + 1 + place, &session.unreadFiles);
        }
        if (isMain) { ShowProgress(session); }
    }
    session.scene->HandOver(std::move(thread.arena));
}

} // namespace

std::string StpxPath(const StpxSession& session, const ProductNode& product) {
    std::string path = session.directory;
    path += product.fileName;
    std::replace(path.begin() + static_cast<std::ptrdiff_t>(session.directory.size()), path.end(), '\\', '/');
    return path;
}

void ReadParts(StpxSession& session) {
    FillQueue(session);
    RunWithWorkers(
        static_cast<std::uint32_t>(session.threads), session.threadDone,
        [&session](bool isLoadThread) { RunPartLoop(session, isLoadThread); },
        [&session] { ShowProgress(session); });
    SortUnread(&session.unreadFiles);
}

} // namespace tarnwick
