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

// Connects the server link and the dialog. The link calls the dialog on a thread of its own; each call is
// handed to the dialog's thread, and returns when that has done it, or when the dialog closes.
class DialogLink final : public ServerPort, private LinkPort {
public:
    // Call it on the dialog's thread. The dialog must outlive this object.
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
    bool RunProgram(const std::vector<std::string>& command) override;
    void StartProgram(const std::vector<std::string>& names,
                      const std::vector<std::string>& arguments) override;
    std::string DownloadFolder() override;

    // Runs `work` on the dialog's thread and waits for it. After false, `work` may still run later, or never.
    bool OnDialogThread(std::function<void()> work);
    bool IsClosing();
    void StopWaiting();
    Selection Selected() const;

    STEPViewerDlg& dialog_;
    std::mutex lock_;
    std::condition_variable changed_;
    bool closing_ = false;
    bool done_ = false; // the current piece of work; there is one at a time
    QObject receiver_;  // of that work, which is dropped with it
    ServerLink link_;   // last, so that its thread ends first
};

} // namespace tarnwick
