#include "browser/table_commands.h"

#include "browser/command_table.h"
#include "browser/folder_menu.h"
#include "browser/main_menu.h"
#include "browser/recent_tables.h"
#include "browser/row_clipboard.h"
#include "browser/table_tree_model.h"
#include "browser/table_tree_view.h"
#include "browser/texts.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"

#include <QtCore/QRandomGenerator>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QMenu>

namespace browser {

TableCommands::TableCommands(const Parts& parts, Actions actions)
    : parts_(parts), actions_(std::move(actions)) {
    AddMenus();
}

void TableCommands::CopyAsText() {
    const auto tables = TablesOf(parts_.model, parts_.tree.currentIndex());
    if (!tables.empty()) QGuiApplication::clipboard()->setText(RowsAsText(parts_.model, tables));
}

void TableCommands::CopyAsFile() {
    const auto tables = TablesOf(parts_.model, parts_.tree.currentIndex());
    if (tables.empty()) return;
    if (auto files = RowsAsFiles(parts_.model, tables, parts_.catalogue.values->paths))
        QGuiApplication::clipboard()->setMimeData(files.release());
    else
        actions_.tell(BrowserTexts::tr("There is no table file to copy"));
}

void TableCommands::SelectRandomTable() {
    const auto tables = static_cast<quint32>(parts_.model.table_count());
    if (tables == 0) return;
    auto chosen = static_cast<std::size_t>(QRandomGenerator::global()->bounded(tables));
    if (tables > 1 && parts_.model.TableOfNode(parts_.tree.currentIndex()) == chosen)
        chosen = (chosen + 1) % tables;
    const QModelIndex node = parts_.model.IndexOfTable(chosen);
    parts_.tree.SelectNode(node);
    actions_.show_node(node);
}

// In the middle of the menu; what is in them is asked for each time they open.
void TableCommands::AddMenus() {
    QMenu* const table_menu = parts_.menu.Menu(kTableMenu);
    QAction* const random = table_menu->findChild<QAction*>(QStringLiteral("mnuRandom"));
    table_menu->insertMenu(
        random, new FolderMenu([this] { return catalogue::CataloguePath(parts_.catalogue); },
                               actions_.tell_failure, table_menu));
    auto* const recent = new QMenu(BrowserTexts::tr("Recently &Played"), table_menu);
    recent->setObjectName(QStringLiteral("mnuRecent"));
    table_menu->insertMenu(random, recent);
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { FillRecentMenu(*recent); });
}

void TableCommands::FillRecentMenu(QMenu& menu) {
    menu.clear();
    const auto tables = RecentTables(*parts_.catalogue.CatalogueConnection);
    if (!tables.ok()) actions_.tell_failure(tables.status());
    if (!tables.ok() || tables->empty())
        menu.addAction(BrowserTexts::tr("None was played yet"))->setEnabled(false);
    if (!tables.ok()) return;
    for (const RecentTable& table : *tables) {
        QAction* const action = menu.addAction(EntryCaption(table.display_name));
        action->setEnabled(actions_.may_select());
        connect(action, &QAction::triggered, this,
                [this, id = table.id] { actions_.select_table_with_id(id); });
    }
}

}  // namespace browser
