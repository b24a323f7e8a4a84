#pragma once

#include "load/scene_view.h"
#include "p21/step_model.h"
#include "write/byte_sink.h"

#include <string>

namespace tarnwick {

// The scene that a load left in the view as one JSON object ("tarnwick.scene/1"), with a line feed at its
// end. `path` is the path as LoadFile got it; `status` the status text, or null when LoadFile refused the
// path. It has the checksums of all arrays of meshes, and with `arrays` their numbers, too.
std::string SceneReport(const SceneView& view, const std::string& path, const std::string* status,
                        bool arrays);
// The same text, handed to the sink in blocks while it is made: with all arrays it is as long as the file
// that was loaded. Leaves the sink open.
void WriteSceneReport(const SceneView& view, const std::string& path, const std::string* status, bool arrays,
                      ByteSink* sink);

// The entity index of a P21 file as one JSON object ("tarnwick.index/1"). `result` is what Read returned;
// unless that is kRead all counters are 0. With `entities` it has the whole table, in file order.
std::string IndexReport(const StepModel& model, int result, bool entities);

} // namespace tarnwick
