#pragma once

#include "app/server_port.h"
#include "link/link_port.h"
#include "link/server_link.h"

#include <QObject>

#include <condition_variable>
#include <functional>
#include <mutex>

namespace tarnwick {

class STEPViewerDlg;

// Ties the server link and the dialog together. What the link does to the dialog comes on the link's thread,
// is handed over to the dialog's, and waited for; the dialog's closing ends all such waiting.
class DialogLink final : public ServerPort, private LinkPort {
public:
    // For the dialog's thread. The dialog must outlive this.
    explicit DialogLink(STEPViewerDlg& dialog);
    ~DialogLink() override;

    void OnConnect() override;
    void OnAddPmi() override;
    void OnAddMaterial() override;
    void OnClose() override;

private:
    bool SetLinkText(const std::string& text) override;
    bool CopyToClipboard(const std::string& text) override;
    bool ShowMessage(const std::string& caption, const std::string& text) override;
    bool Load(const std::string& arguments) override;
    bool Invalidate() override;
    void RunProgram(const std::vector<std::string>& command) override;
    void StartProgram(const std::vector<std::string>& names,
                      const std::vector<std::string>& arguments) override;
    std::string DownloadFolder() override;

    // Has `work` done on the dialog's thread. `work` may be done later still, or never, when this returns
    // false.
    bool OnDialogThread(std::function<void()> work);
    bool IsClosing();
    void StopWaiting();
    Selection Selected() const;

    STEPViewerDlg& dialog_;
    std::mutex lock_;
    std::condition_variable changed_;
    bool closing_ = false;
    bool done_ = false; // of the one piece of work that is handed over at a time
    QObject receiver_;  // of that work, which so can't outlive this
    ServerLink link_;   // its thread ends first
};

} // namespace tarnwick
