#include "app/path_hint.h"

#include "catalogue/field_text.h"
#include "catalogue/process_values.h"
#include "jet/connection.h"
#include "platform/files.h"

#include <utility>

namespace app {

PathHint::PathHint(catalogue::Catalogue& catalogue, std::function<void()> tell)
    : catalogue_(catalogue), tell_(std::move(tell)),
      lookup_([paths = catalogue.values->paths](const QString& stored) {
          return platform::FileExists(paths.Of(stored));
      }) {
    connect(&lookup_, &browser::FileLookup::Answered, this,
            [this](std::size_t, const QString&, bool is_there) { Count(is_there); });
}

base::Status PathHint::Start() {
    QStringList sample;
    ASSIGN_OR_RETURN(
        auto rows, catalogue_.CatalogueConnection->Execute(u"Select TOP 100 FileName from Tables"));
    while (!rows.Eof()) {
        ASSIGN_OR_RETURN(const QString path, catalogue::FieldText(rows, u"FileName"));
        sample.append(path);
        RETURN_IF_ERROR(rows.MoveNext());
    }
    if (sample.size() < kFewestTables) return {};
    asked_ = waiting_ = static_cast<int>(sample.size());
    for (const QString& path : sample)
        lookup_.Ask(0, path);
    return {};
}

void PathHint::Count(bool is_there) {
    found_ += is_there ? 1 : 0;
    if (--waiting_ == 0 && found_ * 2 < asked_) tell_();
}

}  // namespace app
