// EnterKey: Enter presses the button that has the focus, in every window of the program, as Space
// does. Default buttons of dialogs are pressed by Enter anyway, where the focus is elsewhere.
#pragma once

#include <QtCore/QObject>

namespace widgets {

class EnterKey : public QObject {
    Q_OBJECT

public:
    // Filters the application's key events as long as the object exists.
    explicit EnterKey(QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace widgets
