#include "maintenance/row_walk.h"

#include "catalogue/progress_meter.h"

#include <QtCore/QElapsedTimer>

namespace maintenance {
namespace {

constexpr qint64 kRoundMs = 20;

// Processes pending events fifty times a second.
class Rounds {
public:
    explicit Rounds(platform::UserEvents& events) : events_(events) { since_round_.start(); }
    void Step() {
        if (!since_round_.hasExpired(kRoundMs)) return;
        events_.ProcessEvents();
        since_round_.start();
    }

private:
    platform::UserEvents& events_;
    QElapsedTimer since_round_;
};

}  // namespace

base::Status WalkRows(CommandContext& context, const QString& sql,
                      const std::function<base::Status(jet::Recordset&)>& visit) {
    jet::Recordset rows;
    RETURN_IF_ERROR(rows.Open(sql.toStdU16String(), *context.catalogue.CatalogueConnection,
                              jet::CursorType::kDynamic, jet::LockType::kOptimistic));
    catalogue::ProgressMeter meter(context.progress, rows.RecordCount());
    Rounds rounds(context.events);
    while (!rows.Eof()) {
        RETURN_IF_ERROR(visit(rows));
        RETURN_IF_ERROR(rows.MoveNext());
        meter.Step();
        rounds.Step();
    }
    return {};
}

}  // namespace maintenance
