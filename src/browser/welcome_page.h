// WelcomePage: stands in the tree's place as long as the catalogue has no tables; says what the
// program is and offers ways to begin.
#pragma once

#include <QtWidgets/QScrollArea>

class QVBoxLayout;

namespace browser {

class WelcomePage : public QScrollArea {
    Q_OBJECT

public:
    explicit WelcomePage(QWidget* parent = nullptr);

Q_SIGNALS:
    void LookForTables();
    void OpenExample();
    void OpenFolder();

private:
    using Signal = void (WelcomePage::*)();
    void AddOffer(QVBoxLayout& column, const char* name, const QString& caption,
                  const QString& description, Signal chosen);
};

}  // namespace browser
