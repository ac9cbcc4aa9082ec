// FocusReturn: a window of the program that closes while it has the keyboard hands it to the window
// it belongs to. Window managers do so, too, but now and then one that has two windows closed at
// once (a message and the dialog behind it) leaves the keyboard with neither, and who has no mouse
// is lost.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace widgets {

class FocusReturn : public QObject {
    Q_OBJECT

public:
    // Watches the application's windows as long as the object exists.
    explicit FocusReturn(QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void HandBackFrom(const QWidget& window);
    void HandBack();

    QPointer<QWidget> next_;  // gets the keyboard; null: a window of the program has it
};

}  // namespace widgets
