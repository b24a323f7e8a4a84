#pragma once

#include "load/reading_order.h"
#include "product/load_session.h"

namespace tarnwick {

// Claims entries of the session's queue and reads their files until there is none left: a part gives its
// product meshes, a sub-assembly adds to the tree and to the queue. Run by the thread of the load, which
// draws progress, and by its workers. What it reads goes into the session's scene.
void RunPartQueue(LoadSession& session, ReadingOrder& order, bool isLoadThread);

// Runs the queue on the calling thread and, when the session's `useThreads` is set, on five workers; returns
// when all of them have ended. A worker that can't be started counts as ended.
void ReadQueuedFiles(LoadSession& session);

// Why a file could not be read, for UnreadFile, from what StepModel::Read returned.
const char* UnreadReason(int result);

} // namespace tarnwick
