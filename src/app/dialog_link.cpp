#include "app/dialog_link.h"
#include "app/eye_text.h"
#include "app/step_viewer_dlg.h"
#include "app/system_names.h"
#include "platform/child_program.h"
#include "platform/files.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QMessageBox>
#include <QStandardPaths>
#include <QThread>

#include <chrono>
#include <thread>

namespace tarnwick {

namespace {

constexpr std::chrono::milliseconds kBetweenLooks{20}; // whether a program has ended or the dialog closes

} // namespace

DialogLink::DialogLink(STEPViewerDlg& dialog) : dialog_(dialog), link_(*this) {
    dialog.SetServer(this);
}

DialogLink::~DialogLink() {
    StopWaiting();
    dialog_.SetServer(nullptr);
}

void DialogLink::OnConnect() {
    link_.OnConnect();
}

void DialogLink::OnAddPmi() {
    link_.OnAddPmi(Selected());
}

void DialogLink::OnAddMaterial() {
    link_.OnAddMaterial(Selected());
}

void DialogLink::OnClose() {
    StopWaiting();
    link_.OnClose();
}

Selection DialogLink::Selected() const {
    const OpenGLControl& view = dialog_.View();
    const std::string& path = dialog_.CurrentPath();
    return {.path = path.empty() ? nullptr : path.c_str(),
            .rootName = view.loaded.hasRootName ? view.loaded.rootName.c_str() : nullptr,
            .selectedText = view.selectedText,
            .selectedExactContainerId = view.selectedExactContainerId,
            .selectedContainerType = view.selectedContainerType};
}

bool DialogLink::IsClosing() {
    const std::lock_guard<std::mutex> hold(lock_);
    return closing_;
}

void DialogLink::StopWaiting() {
    const std::lock_guard<std::mutex> hold(lock_);
    closing_ = true;
    changed_.notify_all();
}

bool DialogLink::OnDialogThread(std::function<void()> work) {
    if (QThread::currentThread() == receiver_.thread()) {
        work();
        return true;
    }
    std::unique_lock<std::mutex> hold(lock_);
    if (closing_) { return false; }
    done_ = false;
    QMetaObject::invokeMethod(
        &receiver_,
        [this, work = std::move(work)] {
            if (IsClosing()) { return; }
            work();
            const std::lock_guard<std::mutex> finished(lock_);
            done_ = true;
            changed_.notify_all();
        },
        Qt::QueuedConnection);
    changed_.wait(hold, [this] { return done_ || closing_; });
    return done_;
}

bool DialogLink::SetLinkText(const std::string& text) {
    return OnDialogThread([this, text] { dialog_.SetPickText(text); });
}

bool DialogLink::CopyToClipboard(const std::string& text) {
    return OnDialogThread([text] { QGuiApplication::clipboard()->setText(EyeText(text)); });
}

bool DialogLink::ShowMessage(const std::string& caption, const std::string& text) {
    return OnDialogThread([this, caption, text] {
        QMessageBox box(QMessageBox::NoIcon, EyeText(caption), EyeText(text), QMessageBox::Ok, &dialog_);
        box.setTextFormat(Qt::PlainText);
        box.exec();
    });
}

bool DialogLink::Load(const std::string& arguments) {
    return OnDialogThread([this, arguments] { dialog_.Load(arguments, true); });
}

bool DialogLink::Invalidate() {
    return OnDialogThread([this] { dialog_.Invalidate(); });
}

bool DialogLink::RunProgram(const std::vector<std::string>& command) {
    ChildProgram program(command);
    while (program.IsRunning()) {
        if (IsClosing()) { program.Kill(); }
        std::this_thread::sleep_for(kBetweenLooks);
    }
    return program.HasSucceeded();
}

void DialogLink::StartProgram(const std::vector<std::string>& names,
                              const std::vector<std::string>& arguments) {
    for (const std::string& name : names) {
        const std::string program = FindApplication(name);
        if (program.empty()) { continue; }
        std::vector<std::string> command{program};
        command.insert(command.end(), arguments.begin(), arguments.end());
        StartDetached(command);
        return;
    }
}

std::string DialogLink::DownloadFolder() {
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    QDir().mkpath(cache);
    std::string folder = PathBytes(cache);
    for (const char* const name : {"/tarnwick", "/downloads"}) {
        folder += name;
        MakePrivateFolder(folder); // if that fails, the download does, too
    }
    return folder;
}

} // namespace tarnwick
