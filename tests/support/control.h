// Finds the controls of a window in tests.
#pragma once

#include <QtCore/QString>
#include <QtWidgets/QWidget>

namespace test_support {

// The control with this object name; the test program ends when there is none.
template <typename T>
T& Control(QWidget& window, const char* name) {
    auto* found = window.findChild<T*>(QString::fromLatin1(name));
    if (found == nullptr) qFatal("no control %s", name);
    return *found;
}

}  // namespace test_support
