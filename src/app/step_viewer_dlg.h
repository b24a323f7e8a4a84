#pragma once

#include "app/gl_area.h"
#include "load/load_file.h"
#include "render/window_port.h"

#include <QDialog>

#include <string>

class QCheckBox;
class QLabel;
class QPushButton;
class QSlider;

namespace tarnwick {

class ServerPort;

// The one window of the viewer: the drawing area, a few buttons, a check box, a slider and two lines of text.
// The object names of the controls are their numbers ("1001").
class STEPViewerDlg final : public QDialog, private LoadControls, private DialogPort {
public:
    explicit STEPViewerDlg(const LoadCommands& commands);

    // Creates the drawing window and loads the file of the command line, before the dialog is shown.
    void OnInitDialog();

    // Splits the text into a path and a product name, and shows the file.
    void Load(const std::string& arguments, bool useThreads);

    // Lets everything be drawn again soon.
    void Invalidate();

    // Shows the state of the server link, or what a pick tells.
    void SetPickText(const std::string& text) override;

    // The link that the Connect button opens, or null for none.
    void SetServer(ServerPort* server);

    OpenGLControl& View() { return area_->view; }
    const std::string& CurrentPath() const { return dispatch_.currentPath; }

    std::string commandLine; // empty for none

    void done(int result) override;

protected:
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void CreateControls();
    void LoadNamed(const std::string& arguments, bool useThreads);
    void OnOpen();
    // Shows the first file of a drop; the others are ignored.
    void OnDropFiles(const QString& first);
    void OnSize();
    void OnHScroll(int position);
    void OnWireframe(bool checked);
    void TakeSnapshot();
    void SetTitle(const std::string& title);
    bool IsKeyDownHere(const QObject* watched) const;

    // LoadControls
    void SetStatusText(const std::string& text) override;
    void ShowDepthSlider(bool visible) override;
    void EnableDepthSlider(bool enabled) override;
    void SetDepthRange(std::int32_t low, std::int32_t high) override;
    void SetDepthPosition(std::int32_t position) override;
    void SetDepthLabel(std::int32_t depth) override;
    void UpdateData() override;
    // DialogPort
    void ShowLoadProgress(std::int32_t filesRead, std::int32_t filesKnown) override;

    GlArea* area_;
    LoadDispatch dispatch_;
    ServerPort* server_ = nullptr;

    QPushButton* open_ = nullptr;
    QPushButton* connect_ = nullptr;
    QPushButton* addPmi_ = nullptr;
    QPushButton* addMaterial_ = nullptr;
    QLabel* linkText_ = nullptr;
    QLabel* statusText_ = nullptr;
    QLabel* depthText_ = nullptr;
    QSlider* depthSlider_ = nullptr;
    QCheckBox* wireframe_ = nullptr;

    QString depthValue_ = "0"; // what UpdateData puts into the Depth label
    std::string shownTitle_ = "Tarnwick";
    double progressShown_ = 0; // clock time of the last count in the title bar
    int height_ = 0;           // of the dialog, for which the controls are placed
    bool wasMaximised_ = false;
    bool restoring_ = false; // restored, but still with the size of the maximised dialog
    QSize maximisedSize_;
};

} // namespace tarnwick
