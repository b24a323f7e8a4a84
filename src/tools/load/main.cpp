// tarnwick-load: the load of the viewer without a window.

#include "tools/load/load_program.h"
#include "tools/load/options.h"

int main(int argc, char** argv) {
    using namespace tarnwick::tools;
    LoadOptions options;
    int status = 0;
    if (!ReadOptions(argc, argv, &options, &status)) { return status; }
    if (options.check) { return PrintCheck(options); }
    return options.index ? PrintIndex(options) : LoadAndReport(options);
}
