// frmPathMap: the path map of this user, with how many paths of the catalogue each line is for and
// how many of their files are here; and what is proposed. A change counts at once, everywhere. What
// takes long is done by the catalogue's runner.
#pragma once

#include "catalogue/catalogue.h"
#include "catalogue/path_map.h"
#include "catalogue/path_proposals.h"
#include "platform/user_prompts.h"

#include <QtCore/QStringList>
#include <QtWidgets/QDialog>

#include <functional>
#include <vector>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace maintenance {

class frmPathMap : public QDialog {
    Q_OBJECT

public:
    // All are borrowed and outlive the window. `refresh_tree` is called when it closes and the map
    // was changed: other files are there now.
    frmPathMap(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
               std::function<void()> refresh_tree, QWidget* parent = nullptr);

    void done(int result) override;

Q_SIGNALS:
    // The numbers of all lines are shown.
    void Counted();

private:
    void BuildControls();
    QWidget* BuildButtons();
    QPushButton* AddButton(const QString& caption, const char* name, void (frmPathMap::*action)());
    void EnableButtons();

    void ReadPaths();
    void ShowPairs();
    void Count();
    // Stores the pairs and uses them.
    base::Status Change(std::vector<catalogue::PathPair> pairs);

    void Add();
    void Edit();
    void Remove();
    void Propose();
    void LookInFolder();
    void ProposeFrom(const QStringList& folders);
    void SayNothingWasFound();
    bool Agrees(const std::vector<catalogue::ProposedPair>& proposed);
    int ChosenRow() const;  // -1: none

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    std::function<void()> refresh_tree_;
    std::vector<catalogue::PathPair> pairs_;
    QStringList stored_;  // the paths of the catalogue
    bool is_changed_ = false;
    QTreeWidget* list_ = nullptr;
    QLabel* lblOthers_ = nullptr;
    QPushButton* cmdEdit_ = nullptr;
    QPushButton* cmdRemove_ = nullptr;
};

}  // namespace maintenance
