#pragma once

#include "product/load_session.h"

#include <vector>

namespace tarnwick {

// Reads the files of all entries of the session's queue, until there is none left: a part gives its product
// meshes, a sub-assembly adds to the tree and to the queue. On the calling thread, which tells the progress,
// and, when the session's `useThreads` is set, on five workers; returns when all of them have ended. What is
// read goes into the session's scene.
void ReadQueuedFiles(LoadSession& session);

// Puts what six threads could not read into the order in which it was wanted.
void SortUnread(std::vector<UnreadFile>* files);

// Why a file could not be read, for UnreadFile, from what StepModel::Read returned.
const char* UnreadReason(int result);

} // namespace tarnwick
