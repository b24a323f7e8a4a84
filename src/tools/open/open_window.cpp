#include "tools/open/open_window.h"

#include "app/eye_text.h"
#include "platform/paths.h"
#include "tools/prepare/outcome.h"
#include "tools/prepare/progress.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <QVBoxLayout>

#include <utility>

namespace tarnwick::tools {

namespace {

constexpr int kMillisecondsBetweenLooks = 30;
constexpr int kMillisecondsUnseen = 300;
constexpr int kPatienceAfterCancel = 50; // milliseconds
constexpr int kWidth = 520;
constexpr std::size_t kMostListed = 1000;

} // namespace

OpenWindow::OpenWindow(std::string file, prepare::PrepareOptions options, std::atomic<bool>* cancelled)
    : file_(std::move(file)), options_(std::move(options)), cancelled_(*cancelled) {
    setWindowTitle(EyeText("Opening " + NameOf(file_)).replace("[*]", "[*][*]"));
    setMinimumWidth(kWidth);
    auto* const column = new QVBoxLayout(this);
    const auto label = [&](const char* name) {
        auto* const made = new QLabel(this);
        made->setObjectName(name);
        made->setTextFormat(Qt::PlainText); // the text may come from a file
        made->setWordWrap(true);
        column->addWidget(made);
        return made;
    };
    what_ = label("what");
    what_->setText(EyeText("Preparing " + NameOf(file_)));
    bar_ = new QProgressBar(this);
    bar_->setObjectName("bar");
    bar_->setRange(0, 0);
    column->addWidget(bar_);
    left_ = label("left");
    losses_ = new QListWidget(this);
    losses_->setObjectName("missing");
    losses_->setWordWrap(true);
    losses_->setSelectionMode(QAbstractItemView::NoSelection);
    losses_->setFocusPolicy(Qt::ClickFocus); // Return is for the buttons
    losses_->hide();
    column->addWidget(losses_);
    auto* const row = new QHBoxLayout;
    column->addLayout(row);
    row->addStretch();
    const auto button = [&](const char* text, const char* name) {
        auto* const made = new QPushButton(text, this);
        made->setObjectName(name);
        row->addWidget(made);
        return made;
    };
    open_ = button("Open", "open");
    open_->hide();
    cancel_ = button("Cancel", "cancel");
    connect(open_, &QPushButton::clicked, this, [this] {
        path_ = outcome_.path;
        loop_.quit();
    });
    connect(cancel_, &QPushButton::clicked, this, [this] { reject(); });
    connect(&look_, &QTimer::timeout, this, [this] { Look(); });
}

OpenWindow::~OpenWindow() {
    cancelled_ = true;
    if (thread_.joinable()) { thread_.join(); }
}

std::string OpenWindow::Run() {
    thread_ = std::thread([this] { Work(); });
    look_.start(kMillisecondsBetweenLooks);
    QTimer::singleShot(kMillisecondsUnseen, this, [this] {
        if (!isToldAll_) { show(); }
    });
    loop_.exec();
    hide();
    return path_;
}

void OpenWindow::Work() {
    outcome_ = FindShown(
        file_, options_,
        [this](std::size_t done, std::size_t parts) {
            parts_ = parts;
            done_ = done;
        },
        &cancelled_);
    isFinished_ = true;
}

void OpenWindow::Look() {
    if (cancelled_) { return reject(); } // by a signal
    if (isToldAll_) { return; }
    if (isFinished_) { return ShowOutcome(); }
    if (const std::size_t parts = parts_; parts > 0) { ShowProgress(done_, parts); }
}

void OpenWindow::ShowProgress(std::size_t done, std::size_t parts) {
    if (!clock_.isValid()) { clock_.start(); }
    bar_->setRange(0, static_cast<int>(parts));
    bar_->setValue(static_cast<int>(done));
    std::string text = std::to_string(done) + " of " + std::to_string(parts) + " parts";
    if (done > 0) {
        const double seconds = static_cast<double>(clock_.elapsed()) / 1000;
        text += ", " + Duration(seconds / static_cast<double>(done) * static_cast<double>(parts - done)) +
                " left";
    }
    left_->setText(EyeText(text));
}

void OpenWindow::ShowOutcome() {
    isToldAll_ = true;
    // Without an input nothing was prepared, and nothing is missing.
    if (!outcome_.path.empty() && (outcome_.result.input.empty() || !outcome_.LacksShape())) {
        path_ = outcome_.path;
        return loop_.quit();
    }
    const bool isNothing = outcome_.path.empty();
    what_->setText(EyeText(isNothing ? NameOf(file_) + " can't be shown: " + outcome_.result.error + "."
                                     : "Some of the shape of " + NameOf(file_) + " is missing:"));
    bar_->hide();
    left_->hide();
    ListLosses();
    open_->setVisible(!isNothing);
    open_->setDefault(!isNothing);
    cancel_->setText(isNothing ? "Close" : "Cancel");
    (isNothing ? cancel_ : open_)->setFocus();
    show();
    adjustSize();
}

void OpenWindow::ListLosses() {
    std::size_t left = 0;
    for (const prepare::Loss& loss : outcome_.result.losses) {
        if (!loss.isShape) { continue; }
        if (static_cast<std::size_t>(losses_->count()) < kMostListed) {
            losses_->addItem(EyeText(LossText(loss)));
        } else {
            ++left;
        }
    }
    if (left > 0) { losses_->addItem(EyeText("and " + std::to_string(left) + " more")); }
    losses_->setVisible(losses_->count() > 0);
}

void OpenWindow::reject() {
    if (isToldAll_) { return loop_.quit(); }
    Cancel();
}

void OpenWindow::Cancel() {
    isToldAll_ = true;
    look_.stop();
    cancelled_ = true;
    hide();
    QElapsedTimer clock;
    clock.start();
    while (!isFinished_ && clock.elapsed() < kPatienceAfterCancel) { QThread::msleep(5); }
    loop_.quit();
}

} // namespace tarnwick::tools
