#include "load/unread_files.h"

#include "geometry/part_reader.h"
#include "p21/step_model.h"
#include "platform/console.h"
#include "platform/within_memory.h"
#include "text/one_line.h"

#include <algorithm>

namespace tarnwick {

const char* UnreadReason(const StepModel& model, int result) {
    if (model.problem != nullptr) { return model.problem; }
    return result == StepModel::kNotOpened ? "can't be opened" : "isn't taken for an ISO 10303-21 file";
}

const char* WhyGivenUp(const PartReader& reader) {
    if (!reader.givenUp) { return nullptr; }
    return reader.noMemory ? kNeedsMemory : kGivenUpReason;
}

void SortUnread(UnreadFiles* files) {
    std::sort(files->begin(), files->end(),
              [](const UnreadFile& a, const UnreadFile& b) { return a.place < b.place; });
}

void GiveUpForMemory(const char* path, const char* productName, std::int32_t place, UnreadFiles* files) {
    ConsolePrint("<E> %s: given up, no memory\n", OneLine(path).Text());
    WithinMemory([&] { files->push_back({place, path, productName, kNeedsMemory}); });
}

} // namespace tarnwick
