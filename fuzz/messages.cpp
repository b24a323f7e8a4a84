// A message of the service, to a dialog that does nothing.
#include "harness.h"
#include "link/selection.h"
#include "link/server_messages.h"
#include "load/arguments.h"

using namespace tarnwick;

namespace {

class IdlePort final : public LinkPort {
public:
    bool SetLinkText(const std::string&) override { return true; }
    bool CopyToClipboard(const std::string&) override { return true; }
    bool ShowMessage(const std::string&, const std::string&) override { return true; }
    bool Load(const std::string& arguments) override {
        SplitArguments(arguments);
        return true;
    }
    bool Invalidate() override { return true; }
    bool RunProgram(const std::vector<std::string>& command) override {
        // The name of a download leads nowhere but into the folder of downloads.
        const std::string& name = command.at(6);
        if (name.empty() || name == ".." || name.find('/') != std::string::npos) {
            fuzz::Finding("a download out of its folder");
        }
        return true;
    }
    void StartProgram(const std::vector<std::string>&, const std::vector<std::string>&) override {}
    std::string DownloadFolder() override { return "/downloads"; }
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        IdlePort port;
        OnServerMessage(port, fuzz::Text(data, size));
        const std::string path(fuzz::Text(data, size));
        BrowserArguments("/viewer", {path.c_str(), nullptr, path, 0, 0});
    });
}
