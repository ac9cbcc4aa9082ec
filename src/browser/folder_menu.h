// FolderMenu: the submenu "Collection Folders" of the Table menu. Each folder that was scanned has
// a checked entry; to uncheck it is to forget the folder.
#pragma once

#include "base/status.h"

#include <QtCore/QString>
#include <QtWidgets/QMenu>

#include <functional>

namespace browser {

class FolderMenu : public QMenu {
    Q_OBJECT

public:
    // `catalogue_file`: the path of the catalogue, asked each time the menu opens. `tell_failure`
    // says in the status bar what failed.
    FolderMenu(std::function<QString()> catalogue_file,
               std::function<void(const base::Status& failure)> tell_failure, QWidget* parent);

private:
    void Fill();
    void Forget(const QString& folder);

    std::function<QString()> catalogue_file_;
    std::function<void(const base::Status& failure)> tell_failure_;
};

}  // namespace browser
