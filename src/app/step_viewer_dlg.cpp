#include "app/step_viewer_dlg.h"
#include "app/dialog_units.h"
#include "app/eye_text.h"
#include "app/server_port.h"
#include "app/snapshot_folder.h"
#include "app/system_names.h"
#include "app/title_text.h"
#include "formats/prepare_hint.h"
#include "load/arguments.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "platform/within_memory.h"
#include "render/snapshot.h"

#include <QApplication>
#include <QCheckBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QSlider>
#include <QWindow>

#include <algorithm>

namespace tarnwick {

namespace {

constexpr QRect kDrawingPlace = PixelRect(3, 3, 602, 409); // until the first size
constexpr double kSecondsBetweenCounts = 0.05;

template <class Control>
Control* Place(Control* control, const char* number, const QRect& place) {
    control->setObjectName(number);
    control->setGeometry(place);
    return control;
}

} // namespace

STEPViewerDlg::STEPViewerDlg(const LoadCommands& commands)
    : area_(new GlArea(this)), dispatch_{area_->view, *this, commands} {
    // Without the modality of the whole program, so that the console can be scrolled and closed.
    setWindowModality(Qt::WindowModal);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    setWindowTitle("Tarnwick");
    setAcceptDrops(true);
    QFont small = font();
    small.setPixelSize(11); // the controls' places are made for it
    setFont(small);
    resize(kDialogSize);
    height_ = height();
    CreateControls();
}

void STEPViewerDlg::CreateControls() {
    const auto button = [this](const char* text, const char* number, const QRect& place) {
        auto* const made = Place(new QPushButton(text, this), number, place);
        made->setAutoDefault(false); // Return must not open files
        return made;
    };
    const auto label = [this](const char* text, const char* number, const QRect& place) {
        auto* const made = Place(new QLabel(text, this), number, place);
        made->setTextFormat(Qt::PlainText); // its text may be from a file
        return made;
    };
    open_ = button("Open", "1001", PixelRect(15, 424, 43, 23));
    linkText_ = label("0", "1009", PixelRect(252, 440, 175, 11));
    statusText_ = label("0", "1008", PixelRect(252, 425, 348, 14));
    label("Depth: ", "depth", PixelRect(205, 452, 25, 8))->hide();
    depthText_ = label("0", "1013", PixelRect(233, 452, 18, 8));
    depthText_->hide();
    depthSlider_ = Place(new QSlider(Qt::Horizontal, this), "1012", PixelRect(98, 452, 100, 15));
    depthSlider_->setEnabled(false);
    depthSlider_->hide();
    wireframe_ = Place(new QCheckBox("Wireframe", this), "1005", PixelRect(17, 457, 51, 10));
    connect_ = button("Connect", "1002", PixelRect(69, 425, 50, 21));
    addPmi_ = button("Add PMI", "1003", PixelRect(131, 426, 43, 20));
    addPmi_->hide();
    addMaterial_ = button("Add Material", "1014", PixelRect(182, 426, 44, 20));
    addMaterial_->hide();
    SetServer(nullptr);

    connect(open_, &QPushButton::clicked, this, [this] { OnOpen(); });
    connect(wireframe_, &QCheckBox::clicked, this, [this](bool checked) { OnWireframe(checked); });
    connect(depthSlider_, &QSlider::valueChanged, this, [this](int position) { OnHScroll(position); });
    connect(connect_, &QPushButton::clicked, this, [this] { server_->OnConnect(); });
    connect(addPmi_, &QPushButton::clicked, this, [this] { server_->OnAddPmi(); });
    connect(addMaterial_, &QPushButton::clicked, this, [this] { server_->OnAddMaterial(); });
}

void STEPViewerDlg::SetServer(ServerPort* server) {
    server_ = server;
    for (QPushButton* const button : {connect_, addPmi_, addMaterial_}) {
        button->setEnabled(server != nullptr);
    }
}

void STEPViewerDlg::OnInitDialog() {
    area_->setObjectName("OpenGL");
    area_->setGeometry(kDrawingPlace);
    area_->Create();
    View().dialog = this;
    const QSize size = area_->DeviceSize();
    View().OnSize(OpenGLControl::kRestored, size.width(), size.height());
    SetDepthRange(0, 10);
    SetDepthPosition(0);
    qApp->installEventFilter(this);
    if (!commandLine.empty()) { Load(commandLine, true); }
    // On a screen that is too small, the dialog is made to fit as by any other change of its size.
    const QSize room = screen()->availableSize() - QSize(0, 32); // and its title bar
    resize(kDialogSize.boundedTo(room));
}

void STEPViewerDlg::Load(const std::string& arguments, bool useThreads) {
    if (!WithinMemory([&] { LoadNamed(arguments, useThreads); })) {
        ConsolePrint("<E> The load needs more memory than there is\n");
    }
}

void STEPViewerDlg::LoadNamed(const std::string& arguments, bool useThreads) {
    const std::vector<std::string> tokens = SplitArguments(arguments);
    if (tokens.empty()) { return; }
    progressShown_ = ClockSeconds();
    const bool loaded =
        LoadFile(dispatch_, tokens[0].c_str(), tokens.size() > 1 ? tokens[1].c_str() : nullptr, useThreads);
    if (loaded) { shownTitle_ = TitleText(dispatch_.currentPath, View()); }
    if (OwnUnreadReason(View()) != nullptr) { Invalidate(); } // such a load draws no frame
    SetTitle(loaded ? shownTitle_ : RefusedTitle(shownTitle_, dispatch_.currentPath));
    const std::string hint = PrepareHint(View(), loaded, dispatch_.currentPath);
    if (!hint.empty()) { ConsolePrint("%s\n", hint.c_str()); }
}

void STEPViewerDlg::SetTitle(const std::string& title) {
    // "[*]" means a star that marks unsaved changes; twice it means itself.
    setWindowTitle(EyeText(title).replace("[*]", "[*][*]"));
}

void STEPViewerDlg::Invalidate() {
    update();
    area_->update();
}

void STEPViewerDlg::OnOpen() {
    const QStringList paths = QFileDialog::getOpenFileNames(this, "Open", QString(), "All Files (*)");
    if (!paths.isEmpty()) { Load(PathBytes(paths.first()), true); }
}

void STEPViewerDlg::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) { event->acceptProposedAction(); }
}

void STEPViewerDlg::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    event->acceptProposedAction();
    const QString first = urls.isEmpty() ? QString() : urls.first().toLocalFile();
    if (first.isEmpty()) { return; }
    // Only when the drop is over: the program that it comes from waits for that, and a load may take long.
    QMetaObject::invokeMethod(
        this, [this, first] { OnDropFiles(first); }, Qt::QueuedConnection);
}

void STEPViewerDlg::OnDropFiles(const QString& first) {
    Load(PathBytes(first), false);
    Invalidate();
}

void STEPViewerDlg::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    OnSize();
}

void STEPViewerDlg::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || isMinimized()) { return; }
    // The window system tells state and size one after the other, in either order.
    restoring_ = wasMaximised_ && !isMaximized() && size() == maximisedSize_;
    if (isMaximized() != wasMaximised_) { OnSize(); }
}

void STEPViewerDlg::OnSize() {
    const int change = height() - height_;
    height_ = height();
    for (QObject* const child : children()) {
        auto* const control = qobject_cast<QWidget*>(child);
        if (control != nullptr && control != area_ && !control->isWindow()) {
            control->move(control->x(), control->y() + change);
        }
    }
    area_->setGeometry(10, 10, std::max(width() - 20, 0), std::max(height() - 150, 0));
    const QSize area = area_->DeviceSize();
    View().OnSize(OpenGLControl::kRestored, area.width(), area.height());
    // While the dialog is maximised, and when it has just been restored, the view gets the dialog's own size.
    const QSize all = area_->DevicePixels(size());
    if (isMaximized()) {
        View().OnSize(OpenGLControl::kMaximised, all.width(), all.height());
        wasMaximised_ = true;
        maximisedSize_ = size();
    } else if (wasMaximised_) {
        View().OnSize(OpenGLControl::kRestored, all.width(), all.height());
        wasMaximised_ = restoring_;
        restoring_ = false;
    }
    Invalidate();
}

void STEPViewerDlg::OnHScroll(int position) {
    ChangeDepth(dispatch_, position);
    Invalidate();
}

void STEPViewerDlg::OnWireframe(bool checked) {
    View().wireframe = checked ? 1 : 0;
    Invalidate();
}

bool STEPViewerDlg::IsKeyDownHere(const QObject* watched) const {
    if (QApplication::activeModalWidget() != this) { return false; }
    if (const auto* const widget = qobject_cast<const QWidget*>(watched)) { return widget->window() == this; }
    return watched == windowHandle() || watched == area_->windowHandle();
}

bool STEPViewerDlg::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* const key = static_cast<const QKeyEvent*>(event);
        if (key->key() == Qt::Key_P && !key->modifiers().testFlag(Qt::AltModifier) &&
            IsKeyDownHere(watched)) {
            TakeSnapshot();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void STEPViewerDlg::TakeSnapshot() {
    const bool enough = WithinMemory(
        [this] { View().grab_GL(SnapshotPath(SnapshotFolder(), dispatch_.currentPath).c_str()); });
    if (!enough) { ConsolePrint("<E> The snapshot needs more memory than there is\n"); }
}

void STEPViewerDlg::done(int result) {
    if (server_ != nullptr) { server_->OnClose(); }
    area_->Release();
    QDialog::done(result);
}

void STEPViewerDlg::SetPickText(const std::string& text) {
    linkText_->setText(EyeText(text));
}

void STEPViewerDlg::SetStatusText(const std::string& text) {
    statusText_->setText(EyeText(text));
}

void STEPViewerDlg::ShowDepthSlider(bool visible) {
    depthSlider_->setVisible(visible);
}

void STEPViewerDlg::EnableDepthSlider(bool enabled) {
    depthSlider_->setEnabled(enabled);
}

void STEPViewerDlg::SetDepthRange(std::int32_t low, std::int32_t high) {
    const QSignalBlocker quiet(depthSlider_); // only the user's moves count as such
    depthSlider_->setRange(low, high);
}

void STEPViewerDlg::SetDepthPosition(std::int32_t position) {
    const QSignalBlocker quiet(depthSlider_);
    depthSlider_->setValue(position);
}

void STEPViewerDlg::SetDepthLabel(std::int32_t depth) {
    depthValue_ = QString::number(depth);
}

void STEPViewerDlg::UpdateData() {
    depthText_->setText(depthValue_);
}

void STEPViewerDlg::ShowLoadProgress(std::int32_t filesRead, std::int32_t filesKnown) {
    const double now = ClockSeconds();
    if (now - progressShown_ < kSecondsBetweenCounts) { return; }
    progressShown_ = now;
    SetTitle(ProgressTitle(dispatch_.currentPath, filesRead, filesKnown));
}

} // namespace tarnwick
