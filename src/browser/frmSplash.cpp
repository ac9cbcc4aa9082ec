#include "browser/frmSplash.h"

#include "browser/texts.h"
#include "browser/wait_until_shown.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

namespace browser {
namespace {

constexpr double kStatusScale = 1.4;  // of the letters
// In characters of an average width, and in lines.
constexpr int kWidth = 56;
constexpr int kHeight = 10;

QLabel* NamedLabel(const QString& name, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

}  // namespace

frmSplash::frmSplash(QWidget* owner)
    : QDialog(owner, Qt::Dialog | Qt::FramelessWindowHint | Qt::CustomizeWindowHint) {
    setObjectName(QStringLiteral("frmSplash"));
    setWindowTitle(QCoreApplication::applicationName());
    setModal(false);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    BuildLayout();
}

void frmSplash::BuildLayout() {
    auto* frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("Frame1"));
    frame->setFrameShape(QFrame::StyledPanel);
    QLabel* const starting =
        NamedLabel(QStringLiteral("lblCompanyProduct"), BrowserTexts::tr("Starting:"), frame);
    lblStat_ = NamedLabel(QStringLiteral("lblStat"), BrowserTexts::tr("Loading..."), frame);
    lblStat_->setWordWrap(true);
    lblStat_->setStyleSheet(
        QStringLiteral("background: #1d2733; color: #ffd35a; border-radius: 4px; padding: 10px;"
                       "font-weight: bold; font-size: %1pt;")
            .arg(qRound(font().pointSizeF() * kStatusScale)));
    QLabel* const wait =
        NamedLabel(QStringLiteral("Label1"), BrowserTexts::tr("Please Wait..."), frame);

    auto* rows = new QVBoxLayout(frame);
    rows->setContentsMargins(18, 15, 18, 15);
    rows->setSpacing(9);
    rows->addWidget(starting);
    rows->addWidget(lblStat_, 1);
    rows->addWidget(wait);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(frame);
    const QFontMetrics metrics = fontMetrics();
    setFixedSize(kWidth * metrics.averageCharWidth(), kHeight * metrics.lineSpacing());
}

void frmSplash::SetStatus(const QString& text) {
    lblStat_->setText(text);
}

void frmSplash::ShowNow() {
    show();
    raise();
    WaitUntilShown(*this);
    repaint();
}

void SplashDisplay::Show(const QString& text) {
    if (!window_) window_ = new frmSplash(owner_);
    window_->SetStatus(text);
    window_->ShowNow();
}

void SplashDisplay::Unload() {
    delete window_.data();
}

}  // namespace browser
