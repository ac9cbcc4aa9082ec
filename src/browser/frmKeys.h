// frmKeys: the sheet of keys in a window.
#pragma once

#include <QtWidgets/QDialog>

namespace browser {

class frmKeys : public QDialog {
    Q_OBJECT

public:
    explicit frmKeys(QWidget* parent = nullptr);
};

}  // namespace browser
