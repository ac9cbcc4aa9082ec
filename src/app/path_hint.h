// PathHint: says once, after a start, that most table files are not where the catalogue names them,
// as when it came from another computer. Looks at a sample of them, in a thread of its own.
#pragma once

#include "base/status.h"
#include "browser/file_lookup.h"
#include "catalogue/catalogue.h"

#include <QtCore/QObject>

#include <functional>

namespace app {

class PathHint : public QObject {
public:
    // With fewer tables the user sees it without being told.
    static constexpr int kFewestTables = 10;

    // `catalogue` is borrowed and outlives the object. `tell` is called when it is so, at most
    // once.
    PathHint(catalogue::Catalogue& catalogue, std::function<void()> tell);

    // The failure of the database.
    base::Status Start();

private:
    void Count(bool is_there);

    catalogue::Catalogue& catalogue_;
    std::function<void()> tell_;
    int waiting_ = 0;
    int found_ = 0;
    int asked_ = 0;
    browser::FileLookup lookup_;
};

}  // namespace app
