// frmPathPair: one line of the path map, typed or chosen.
#pragma once

#include "catalogue/path_map.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QDialog>

#include <functional>

class QLineEdit;

namespace maintenance {

class frmPathPair : public QDialog {
    Q_OBJECT

public:
    // Takes the pair over; a failure is told, and the window stays.
    using Take = std::function<base::Status(const catalogue::PathPair& pair)>;

    // `prompts` is borrowed and outlives the window. It shows `pair` at first.
    frmPathPair(const catalogue::PathPair& pair, Take take, platform::UserPrompts& prompts,
                QWidget* parent);

private:
    void BuildControls(const catalogue::PathPair& pair);
    void ChooseFolder();
    void TakeOver();

    Take take_;
    platform::UserPrompts& prompts_;
    QLineEdit* txtStored_ = nullptr;
    QLineEdit* txtHere_ = nullptr;
};

}  // namespace maintenance
