#include "browser/long_work.h"

#include "base/scope_guards.h"
#include "browser/status_panels.h"
#include "jet/connection.h"
#include "platform/latest_task.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <variant>

namespace browser {
namespace {

// Work that ends before would only flicker.
constexpr int kShowAfterMs = 200;
constexpr int kDrawMs = 50;

// From above the lowest button to the lower edge; 0: there is none there.
int HeightOfButtons(const QWidget& dialog) {
    constexpr int kSpace = 3;  // pixels above it
    int top = 0;
    for (const auto* button : dialog.findChildren<const QPushButton*>())
        if (button->isVisible()) top = std::max(top, button->mapTo(&dialog, QPoint()).y());
    return top < dialog.height() / 2 ? 0 : dialog.height() - top + kSpace;
}

// At the lower edge of a dialog, over its buttons, which cannot be used meanwhile.
StatusPanels* PanelsOver(QWidget& dialog) {
    auto* const panels = new StatusPanels(&dialog);
    panels->setObjectName(QStringLiteral("sbrWork"));
    panels->setSizeGripEnabled(false);
    panels->setAutoFillBackground(true);
    const int height = std::max(panels->sizeHint().height(), HeightOfButtons(dialog));
    panels->setGeometry(0, dialog.height() - height, dialog.width(), height);
    return panels;
}

// What a hand does to a widget.
bool IsInput(QEvent::Type type) {
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

}  // namespace

LongWork::LongWork(catalogue::Catalogue& catalogue, StatusPanels& status)
    : catalogue_(catalogue), status_(status) {
    draw_.setInterval(kDrawMs);
}

void LongWork::Run(const catalogue::LongRun& run,
                   const std::function<void(const catalogue::RunSteps&)>& work) {
    if (is_running_) return work({});
    const base::ScopedFlag running(is_running_);
    done_ = total_ = 0;
    stop_ = std::stop_source();
    may_be_stopped_ = run.stop == catalogue::LongRun::Stop::kOnRequest;
    qApp->installEventFilter(this);
    Wait(run, work);
    qApp->removeEventFilter(this);
    draw_.stop();
    draw_.disconnect();
    if (!shown_) return;
    shown_->EndProgress();
    if (shown_ != &status_) delete shown_;
    shown_ = nullptr;
}

void LongWork::Wait(const catalogue::LongRun& run,
                    const std::function<void(const catalogue::RunSteps&)>& work) {
    const catalogue::RunSteps steps{[this](std::int64_t done, std::int64_t total) {
                                        done_ = done;
                                        total_ = total;
                                    },
                                    stop_.get_token()};
    QEventLoop loop;
    QElapsedTimer waited;
    waited.start();
    connect(&draw_, &QTimer::timeout, this, [this, &run, &waited] {
        if (!run.what.isEmpty() && waited.hasExpired(kShowAfterMs)) Show(run);
    });
    draw_.start();
    jet::LentConnection lent(*catalogue_.CatalogueConnection);
    platform::LatestTask<std::monostate> task;  // waits for its end, whatever ends the loop
    task.Start(
        [&](const std::stop_token&) {
            lent.Take();
            work(steps);
            return std::monostate();
        },
        [&loop](std::monostate) { loop.quit(); });
    loop.exec();
}

void LongWork::Show(const catalogue::LongRun& run) {
    if (!shown_) {
        QWidget* const dialog = QApplication::activeModalWidget();
        shown_ = dialog == nullptr ? &status_ : PanelsOver(*dialog);
        shown_->StartWork(run.what, may_be_stopped_ ? [this] { Stop(); } : std::function<void()>());
        shown_->show();
        shown_->raise();
    }
    shown_->ShowWork(done_, total_);
}

void LongWork::Stop() {
    stop_.request_stop();
    if (shown_) shown_->ShowStopping();
}

bool LongWork::IsStopButton(const QObject* object) const {
    return shown_ && shown_->IsStopButton(object);
}

// Windows hand on to widgets what they are told; the widgets are told nothing.
bool LongWork::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();  // so that the key comes as it is, and not as the shortcut of a command
        return true;
    }
    if (!IsInput(event->type()) || watched->isWindowType() || IsStopButton(watched)) return false;
    if (event->type() == QEvent::KeyPress && may_be_stopped_ &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
        Stop();
    event->ignore();
    return true;
}

}  // namespace browser
