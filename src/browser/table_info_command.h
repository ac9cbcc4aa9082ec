// The commands "View Table Info" and "Import Data from VPTs", which copy texts from table files
// into the catalogue.
#pragma once

#include "browser/detail_panel.h"
#include "catalogue/catalogue.h"
#include "platform/shell.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"
#include "tableinfo/update_from_table_files.h"

#include <QtCore/QString>
#include <QtWidgets/QWidget>

#include <functional>

namespace browser {

// Shows the information in `table_file` (a full path, the tag of the selected node) in a modal
// dialog over `parent`. Its copy button writes into `details`. If the file has no information, the
// user gets a message.
void ViewTableInfo(const QString& table_file, DetailPanel& details, platform::UserPrompts& prompts,
                   platform::Shell& shell, QWidget* parent);

// Overwrites records with the texts of their table files where these have some, then calls
// `refresh_tree`. `status` is shown meanwhile, `progress` called for each row. A failure of the
// database is shown in a box. The result tells which table files could not be read.
base::Status ImportDataFromVpts(catalogue::Catalogue& catalogue, platform::StatusDisplay& status,
                                platform::UserPrompts& prompts,
                                const std::function<void()>& refresh_tree,
                                const catalogue::Progress& progress = {});

}  // namespace browser
