#include "browser/folder_menu.h"

#include "browser/main_menu.h"
#include "browser/texts.h"
#include "catalogue/collection_folders.h"

#include <utility>

namespace browser {

FolderMenu::FolderMenu(std::function<QString()> catalogue_file,
                       std::function<void(const base::Status& failure)> tell_failure,
                       QWidget* parent)
    : QMenu(BrowserTexts::tr("Collec&tion Folders"), parent),
      catalogue_file_(std::move(catalogue_file)), tell_failure_(std::move(tell_failure)) {
    setObjectName(QStringLiteral("mnuFolders"));
    connect(this, &QMenu::aboutToShow, this, &FolderMenu::Fill);
}

void FolderMenu::Fill() {
    clear();
    const auto folders = catalogue::CollectionFolders(catalogue_file_());
    if (!folders.ok()) tell_failure_(folders.status());
    if (!folders.ok() || folders->isEmpty())
        addAction(BrowserTexts::tr("None was scanned yet"))->setEnabled(false);
    if (!folders.ok()) return;
    for (const QString& folder : *folders) {
        QAction* const action = addAction(EntryCaption(folder));
        action->setCheckable(true);
        action->setChecked(true);
        connect(action, &QAction::triggered, this, [this, folder] { Forget(folder); });
    }
}

void FolderMenu::Forget(const QString& folder) {
    const base::Status forgotten = catalogue::ForgetCollectionFolder(catalogue_file_(), folder);
    if (!forgotten.ok()) tell_failure_(forgotten);
}

}  // namespace browser
