#include "pictures/frmPicture.h"

#include "pictures/texts.h"
#include "widgets/picture_access.h"
#include "widgets/svg_icon.h"
#include "widgets/window_place.h"

#include <QtCore/QMimeData>
#include <QtGui/QActionGroup>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace pictures {
namespace {

// Object names of the actions that the menu and the tool bar share.
constexpr QStringView kSaveAndSetAction = u"mnuSet";
constexpr QStringView kSaveOnlyAction = u"MENU_SAVEAS";
constexpr QStringView kPasteAction = u"mnuPaste";

// A picture is shown at 1/scale of its size.
constexpr int kScales[] = {1, 2, 4, 8};

QString ScaleAction(int scale) {
    return QStringLiteral("MENU_%1").arg(scale);
}

QAction* AddAction(QMenu& menu, const QString& name, const QString& caption,
                   const QIcon& icon = {}) {
    QAction* action = menu.addAction(icon, caption);
    action->setObjectName(name);
    return action;
}

}  // namespace

PictureView::PictureView(const CaptureSession& session, QWidget* parent)
    : QWidget(parent), session_(session) {
    setObjectName(QStringLiteral("view"));
    setFocusPolicy(Qt::StrongFocus);
    widgets::DescribeAsPicture(*this, PicturesTexts::tr("Picture"));
}

void PictureView::ShowPicture() {
    resize(session_.picture().dib_width(), session_.picture().dib_height());
    update();
}

void PictureView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    session_.picture().PaintPicture(painter, 0, 0);
}

void PictureView::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F2 && !event->isAutoRepeat()) {
        Q_EMIT SaveAndSetRequested();
        return;
    }
    QWidget::keyReleaseEvent(event);
}

frmPicture::frmPicture(catalogue::ProcessValues& values, platform::UserPrompts& prompts,
                       AssignScreenshot assign, QWidget* parent)
    : QDialog(parent), session_(values, prompts), assign_(std::move(assign)) {
    setObjectName(QStringLiteral("frmPicture"));
    setWindowTitle(PicturesTexts::tr("Tavolo Capture"));
    BuildLayout();
    resize(900, 680);
    widgets::FitToScreen(*this);
    connect(view_, &PictureView::SaveAndSetRequested, this, &frmPicture::SaveAndSet);
}

void frmPicture::BuildLayout() {
    auto* menu_bar = new QMenuBar(this);
    auto* tool_bar = new QToolBar(this);
    view_ = new PictureView(session_);
    scroll_ = new QScrollArea(this);
    scroll_->setWidget(view_);
    scroll_->setAlignment(Qt::AlignCenter);
    scroll_->setBackgroundRole(QPalette::Dark);
    scroll_->setFocusProxy(view_);  // F2 works after a click beside the picture, too
    status_ = new QStatusBar(this);
    status_->setObjectName(QStringLiteral("StatusCtl"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->setMenuBar(menu_bar);
    layout->addWidget(tool_bar);
    layout->addWidget(scroll_, 1);
    layout->addWidget(status_);
    BuildMenus(*menu_bar);
    BuildToolBar(*tool_bar);
}

void frmPicture::BuildMenus(QMenuBar& bar) {
    QMenu* file = bar.addMenu(PicturesTexts::tr("&File"));
    file->setObjectName(QStringLiteral("MENU_FILE"));
    QAction* set = AddAction(*file, kSaveAndSetAction.toString(), PicturesTexts::tr("Save and Set"),
                             widgets::SvgIcon(QStringLiteral("set_picture")));
    // Shown in the menu only: the picture itself answers the key, when it is released.
    set->setShortcut(Qt::Key_F2);
    set->setShortcutContext(Qt::WidgetShortcut);
    QAction* save = AddAction(*file, kSaveOnlyAction.toString(), PicturesTexts::tr("Save &Only.."),
                              widgets::SvgIcon(QStringLiteral("save")));
    save->setShortcut(QKeySequence::Save);
    QAction* paste = AddAction(*file, kPasteAction.toString(), PicturesTexts::tr("&Paste"),
                               widgets::SvgIcon(QStringLiteral("paste")));
    paste->setShortcut(QKeySequence::Paste);
    file->addSeparator();
    QAction* exit = AddAction(*file, QStringLiteral("MENU_EXIT"), PicturesTexts::tr("E&xit"),
                              widgets::SvgIcon(QStringLiteral("close")));
    connect(set, &QAction::triggered, this, &frmPicture::SaveAndSet);
    connect(save, &QAction::triggered, this, &frmPicture::SaveOnly);
    connect(paste, &QAction::triggered, this, &frmPicture::Paste);
    connect(exit, &QAction::triggered, this, &frmPicture::reject);

    QMenu* size = bar.addMenu(PicturesTexts::tr("&Scale"));
    size->setObjectName(QStringLiteral("MENU_SIZE"));
    auto* group = new QActionGroup(this);
    for (const int scale : kScales) {
        QAction* action = AddAction(*size, ScaleAction(scale), QStringLiteral("1:&%1").arg(scale));
        action->setCheckable(true);
        action->setChecked(scale == session_.scale());
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, scale] { SetScale(scale); });
    }
}

void frmPicture::BuildToolBar(QToolBar& bar) {
    bar.setObjectName(QStringLiteral("ToolbarCtl"));
    bar.setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    for (const QStringView name : {kPasteAction, kSaveAndSetAction, kSaveOnlyAction})
        bar.addAction(findChild<QAction*>(name.toString()));
    bar.addSeparator();
    for (const int scale : kScales)
        bar.addAction(findChild<QAction*>(ScaleAction(scale)));
}

void frmPicture::OpenFor(const QString& table_name) {
    table_name_ = table_name;
    Paste();
    view_->setFocus();
}

void frmPicture::Paste() {
    session_.Paste(ClipboardPicture());
    ShowSession();
}

void frmPicture::SetScale(int scale) {
    session_.SetScale(scale);
    ShowSession();
}

void frmPicture::ShowSession() {
    view_->ShowPicture();
    if (session_.current_file().isEmpty()) return;
    status_->showMessage(session_.SizeText());
    setWindowTitle(PicturesTexts::tr("Tavolo Capture - %1").arg(session_.SizeText()));
}

void frmPicture::SaveAndSet() {
    const QString path = session_.Save(table_name_);
    if (path.isEmpty()) return;
    session_.RememberFolderOf(path);
    assign_(path);
    accept();
}

void frmPicture::SaveOnly() {
    const QString path = session_.Save(table_name_);
    if (!path.isEmpty()) {
        accept();
        return;
    }
    session_.RememberFolderOf({});
}

QImage ClipboardPicture() {
    const QMimeData* held = QGuiApplication::clipboard()->mimeData();
    return held && held->hasImage() ? qvariant_cast<QImage>(held->imageData()) : QImage();
}

void LoadPictureFromClipboard(catalogue::ProcessValues& values, platform::UserPrompts& prompts,
                              const QString& node_text, frmPicture::AssignScreenshot assign,
                              QWidget* owner) {
    if (ClipboardPicture().isNull()) {
        prompts.Ask({.text = PicturesTexts::tr("No valid Image in the clipboard"),
                     .title = {},
                     .icon = platform::MessageIcon::kInformation});
        return;
    }
    frmPicture window(values, prompts, std::move(assign), owner);
    window.OpenFor(node_text);
    window.exec();
}

}  // namespace pictures
