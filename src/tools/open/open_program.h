#pragma once

namespace tarnwick::tools {

// The whole program, except for what happens without memory. Returns its exit status, or becomes the viewer.
int RunOpen(int argc, char** argv);

} // namespace tarnwick::tools
