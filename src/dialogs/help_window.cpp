#include "dialogs/help_window.h"

#include "dialogs/help_text.h"
#include "dialogs/texts.h"
#include "widgets/window_place.h"

#include <QtCore/QFileInfo>
#include <QtCore/QUrl>
#include <QtGui/QAction>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTextBrowser>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

namespace dialogs {
namespace {

// In characters of an average width, and in lines.
constexpr QSize kFirstSize(137, 40);
constexpr int kListWidth = 27;

QAction* AddTo(QToolBar& bar, const QString& name, const QString& text, const QKeySequence& key) {
    QAction* const action = bar.addAction(text);
    action->setObjectName(name);
    action->setShortcut(key);
    return action;
}

}  // namespace

HelpWindow::HelpWindow(const QString& folder, QWidget* owner)
    : QWidget(owner, Qt::Window), folder_(folder) {
    setObjectName(QStringLiteral("HelpWindow"));
    setWindowTitle(DialogsTexts::tr("Tavolo Help"));
    setAttribute(Qt::WA_DeleteOnClose);
    resize(kFirstSize.width() * fontMetrics().averageCharWidth(),
           kFirstSize.height() * fontMetrics().lineSpacing());
    widgets::FitToScreen(*this);
    BuildLayout();
}

QWidget* HelpWindow::MakeTools() {
    auto* const bar = new QToolBar;
    const auto go = [&](const char* name, const QString& text, const QKeySequence& key, auto slot) {
        QAction* const action = AddTo(*bar, QString::fromLatin1(name), text, key);
        connect(action, &QAction::triggered, text_, slot);
        return action;
    };
    QAction* const back =
        go("actHelpBack", DialogsTexts::tr("Back"), QKeySequence::Back, &QTextBrowser::backward);
    QAction* const forward = go("actHelpForward", DialogsTexts::tr("Forward"),
                                QKeySequence::Forward, &QTextBrowser::forward);
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(text_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(text_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(AddTo(*bar, QStringLiteral("actHelpContents"), DialogsTexts::tr("Contents"),
                  Qt::ALT | Qt::Key_Home),
            &QAction::triggered, this, [this] { ShowPage(QStringLiteral("index.html")); });
    connect(AddTo(*bar, QStringLiteral("actHelpSearch"), DialogsTexts::tr("Search"),
                  QKeySequence::Find),
            &QAction::triggered, words_, [this] {
                words_->setFocus();
                words_->selectAll();
            });
    connect(AddTo(*bar, QStringLiteral("actHelpClose"), DialogsTexts::tr("Close"), Qt::Key_Escape),
            &QAction::triggered, this, &QWidget::close);
    return bar;
}

void HelpWindow::BuildLayout() {
    text_ = new HelpText;
    text_->setObjectName(QStringLiteral("txtHelp"));
    text_->setAccessibleName(DialogsTexts::tr("Page"));
    text_->setSearchPaths({folder_});
    text_->setOpenExternalLinks(true);
    words_ = new QLineEdit;
    words_->setObjectName(QStringLiteral("txtHelpSearch"));
    words_->setPlaceholderText(DialogsTexts::tr("Search the help"));
    words_->setAccessibleName(DialogsTexts::tr("Search the help"));
    words_->setClearButtonEnabled(true);
    found_ = new QListWidget;
    found_->setObjectName(QStringLiteral("lstHelpFound"));
    found_->setAccessibleName(DialogsTexts::tr("Pages found"));

    auto* const left = new QWidget;
    auto* const column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(words_);
    column->addWidget(found_);
    auto* const both = new QSplitter;
    both->addWidget(left);
    both->addWidget(text_);
    const int list_width = kListWidth * fontMetrics().averageCharWidth();
    both->setSizes({list_width, width() - list_width});
    both->setStretchFactor(1, 1);
    auto* const all = new QVBoxLayout(this);
    all->addWidget(MakeTools());
    all->addWidget(both);

    connect(words_, &QLineEdit::textChanged, this, &HelpWindow::Search);
    connect(words_, &QLineEdit::returnPressed, this, [this] {
        if (found_->count() > 0) found_->setCurrentRow(0);
    });
    connect(found_, &QListWidget::currentRowChanged, this, &HelpWindow::ShowFound);
    connect(text_, &QTextBrowser::sourceChanged, this, &HelpWindow::MarkWords);
    text_->setFocus();
}

void HelpWindow::ShowPage(const QString& page) {
    text_->setSource(QUrl(page));
}

void HelpWindow::Search() {
    if (!search_) search_.emplace(folder_);
    found_->clear();
    for (const HelpSearch::Page* const page : search_->Find(words_->text())) {
        auto* const item = new QListWidgetItem(page->title, found_);
        item->setData(Qt::UserRole, page->file);
    }
    MarkWords();
}

void HelpWindow::ShowFound(int row) {
    if (row >= 0) ShowPage(found_->item(row)->data(Qt::UserRole).toString());
}

// Marks what was searched for, and shows the first of it.
void HelpWindow::MarkWords() {
    QList<QTextEdit::ExtraSelection> marks;
    for (const QString& word : words_->text().simplified().split(u' ', Qt::SkipEmptyParts)) {
        QTextCursor at(text_->document());
        while (!(at = text_->document()->find(word, at)).isNull()) {
            QTextEdit::ExtraSelection mark;
            mark.cursor = at;
            mark.format.setBackground(palette().highlight());
            mark.format.setForeground(palette().highlightedText());
            marks.append(mark);
        }
    }
    text_->setExtraSelections(marks);
    if (marks.isEmpty()) return;
    QTextCursor first = marks.front().cursor;
    first.clearSelection();
    text_->setTextCursor(first);
    text_->ensureCursorVisible();
}

void ShowInHelpWindow(const QString& page_file) {
    QWidget* owner = QApplication::activeWindow();
    if (QWidget* const modal = QApplication::activeModalWidget()) owner = modal;
    auto* window = qobject_cast<HelpWindow*>(owner);
    if (window == nullptr && owner != nullptr)
        window = owner->findChild<HelpWindow*>(QString(), Qt::FindDirectChildrenOnly);
    const QFileInfo page(page_file);
    if (window == nullptr) window = new HelpWindow(page.absolutePath(), owner);
    window->ShowPage(page.fileName());
    window->show();
    window->raise();
    window->activateWindow();
}

}  // namespace dialogs
