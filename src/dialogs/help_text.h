// HelpText: the box that shows the help's pages, in the colours and the letters of the application
// and not in those that the pages have elsewhere.
#pragma once

#include <QtWidgets/QTextBrowser>

namespace dialogs {

class HelpText : public QTextBrowser {
    Q_OBJECT

public:
    using QTextBrowser::QTextBrowser;

protected:
    QVariant loadResource(int type, const QUrl& name) override;
    void changeEvent(QEvent* event) override;

private:
    QString StyleSheet() const;
};

}  // namespace dialogs
