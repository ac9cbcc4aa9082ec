// TableCommands: what the Table menu does with tables of the tree beside editing them: they are
// copied for other programs, one is picked by chance, one that was played lately is found again.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"

#include <QtCore/QModelIndex>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <functional>

class QMenu;

namespace browser {

class MainMenu;
class TableTreeModel;
class TableTreeView;

class TableCommands : public QObject {
    Q_OBJECT

public:
    struct Parts {
        catalogue::Catalogue& catalogue;
        TableTreeModel& model;
        TableTreeView& tree;
        MainMenu& menu;
    };
    struct Actions {
        // Shows the table of a node that was just selected.
        std::function<void(const QModelIndex& node)> show_node;
        std::function<void(const QString& id)> select_table_with_id;
        // False while an edit holds the selection.
        std::function<bool()> may_select;
        // Say in the status bar what a command did, or what failed.
        std::function<void(const QString& text)> tell;
        std::function<void(const base::Status& failure)> tell_failure;
    };

    // The parts are borrowed and outlive this object. Adds the menus of the collection's
    // folders and of recent tables.
    TableCommands(const Parts& parts, Actions actions);

    void CopyAsText();
    void CopyAsFile();
    // Not the one that is selected already, where there is another.
    void SelectRandomTable();

private:
    void AddMenus();
    void FillRecentMenu(QMenu& menu);

    Parts parts_;
    Actions actions_;
};

}  // namespace browser
