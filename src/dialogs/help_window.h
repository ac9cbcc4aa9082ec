// HelpWindow: the help's pages in a window of the program's own, with a search over all of them. It
// belongs to the window that asked for help, so that it can be used beside a dialog, and closes
// with it.
#pragma once

#include "dialogs/help_search.h"

#include <QtWidgets/QWidget>

#include <optional>

class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace dialogs {

class HelpWindow : public QWidget {
    Q_OBJECT

public:
    // `folder`: where the pages are.
    HelpWindow(const QString& folder, QWidget* owner);

    // `page`: its name in the folder ("settings.html").
    void ShowPage(const QString& page);

private:
    void BuildLayout();
    // Back, forward and the like. Works on text_ and words_.
    QWidget* MakeTools();
    void Search();
    void ShowFound(int row);
    void MarkWords();

    QString folder_;
    std::optional<HelpSearch> search_;  // made at the first search
    QTextBrowser* text_ = nullptr;
    QLineEdit* words_ = nullptr;
    QListWidget* found_ = nullptr;
};

// Shows a page, given by its path, in the help window of the window in front; makes that window
// when it has none.
void ShowInHelpWindow(const QString& page_file);

}  // namespace dialogs
