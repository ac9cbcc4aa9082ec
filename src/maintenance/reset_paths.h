// ResetPaths: changes stored paths after files were moved to another folder.
#pragma once

#include "base/marked_text.h"
#include "base/status.h"
#include "catalogue/catalogue.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>

#include <array>

namespace maintenance {

// A kind of path that a row holds.
struct PathKind {
    QStringView kind;
    QStringView caption;  // in frmUtility; a marked text
    QStringView column;
};

inline constexpr std::array<PathKind, 4> kPathKinds = {{
    {u"Table", MARKED_TEXT("MaintenanceTexts", "Tables (File Names)"), u"FileName"},
    {u"Picture", MARKED_TEXT("MaintenanceTexts", "Picture"), u"ImageFile"},
    {u"Flyer", MARKED_TEXT("MaintenanceTexts", "Flyers"), u"FlyerFile"},
    {u"Rules", MARKED_TEXT("MaintenanceTexts", "Rules"), u"RulesFile"},
}};

// The column of one of kPathKinds. Empty: no such kind.
QString PathColumn(const QString& kind);

// What `stored` becomes when the files of folder `existing` are now in folder `next`; a null text
// when it is in another folder. Both folders end in a separator. Letter case does not count;
// subfolders are other folders.
QString MovedPath(const QString& stored, const QString& existing, const QString& next);

// Rewrites the path column of `kind` in every row whose folder is `existing`, whatever the letter
// case, and says "Paths Changed". The folders are taken as given but for a separator added at the
// end. An empty catalogue: nothing is said. A failure leaves the rows changed so far.
base::Status ResetPaths(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                        const QString& kind, const QString& existing, const QString& next);

}  // namespace maintenance
