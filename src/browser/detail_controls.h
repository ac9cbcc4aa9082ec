// DetailControls: the widgets of the detail panel and their layout, without behaviour.
#pragma once

#include "catalogue/detail_field.h"
#include "widgets/picture_box.h"
#include "widgets/text_box.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QToolButton>

#include <array>

namespace browser {

// The widgets are owned by the panel into which they are built.
struct DetailControls {
    QTabWidget* DetTab = nullptr;
    QLabel* pnlAlert = nullptr;
    std::array<widgets::TextBox, catalogue::kDetailFieldCount> txtDet;
    QCheckBox* chkFavorite = nullptr;
    QCheckBox* chkPinMame = nullptr;
    QToolButton* Command2 = nullptr;  // image file
    QToolButton* Command3 = nullptr;  // flyer file
    QToolButton* Command4 = nullptr;  // rules file
    QPushButton* cmdReadInfo = nullptr;
    QPushButton* cmdChange = nullptr;
    QPushButton* cmdCancel = nullptr;
    QPushButton* cmdDelete = nullptr;
    widgets::PictureBox* imgShot = nullptr;
    widgets::PictureBox* imgBeside = nullptr;  // the same, beside the details of a wide window
    widgets::PictureBox* imgFlyer = nullptr;
    widgets::PictureBox* imgRules = nullptr;
    QPushButton* cmdReadRule = nullptr;
    QPushButton* cmdSaveRules = nullptr;
    QPushButton* cmdCancelRules = nullptr;
};

// Creates the widgets in `panel`. Requires: `panel` has no layout.
DetailControls BuildDetailControls(QWidget* panel);

}  // namespace browser
