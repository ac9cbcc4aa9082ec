// The two commands that bring the texts inside table files into the catalogue: "View Table Info"
// and "Import Data from VPTs".
#pragma once

#include "browser/detail_panel.h"
#include "platform/shell.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"
#include "tableinfo/update_from_table_files.h"

#include <QtCore/QString>
#include <QtWidgets/QWidget>

#include <functional>

namespace browser {

// Shows the information of `table_file` (full path, the tag of the selected node) in a modal dialog
// over `parent`, whose copy button writes into `details`; says so when the file has no information.
void ViewTableInfo(const QString& table_file, DetailPanel& details, platform::UserPrompts& prompts,
                   platform::Shell& shell, QWidget* parent);

// Overwrites the catalogue with the texts of every table file that has some, while `status` says
// so and `progress` is told, and then calls `refresh_tree`. What goes wrong with the database is
// shown.
void ImportDataFromVpts(catalogue::Catalogue& catalogue, platform::StatusDisplay& status,
                        platform::UserPrompts& prompts, const std::function<void()>& refresh_tree,
                        const tableinfo::RowProgress& progress = {});

}  // namespace browser
