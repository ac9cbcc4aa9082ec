#include "maintenance/row_walk.h"

#include "jet/recordset.h"

#include <QtCore/QElapsedTimer>

namespace maintenance {
namespace {

constexpr qint64 kRoundMs = 20;

// Reports each whole percent, and the end in any case, and processes pending events fifty times a
// second.
class ProgressMeter {
public:
    ProgressMeter(const CommandContext& context, std::int64_t total)
        : context_(context), total_(total) {
        since_round_.start();
    }
    ~ProgressMeter() { Tell(total_); }
    ProgressMeter(const ProgressMeter&) = delete;
    ProgressMeter& operator=(const ProgressMeter&) = delete;

    void Step() {
        ++done_;
        const std::int64_t percent = total_ > 0 ? done_ * 100 / total_ : 0;
        if (percent != percent_ && done_ < total_) Tell(done_);
        percent_ = percent;
        if (since_round_.hasExpired(kRoundMs)) LetWindowsLive();
    }

private:
    void Tell(std::int64_t done) const {
        if (context_.progress) context_.progress(done, total_);
    }
    void LetWindowsLive() {
        context_.events.ProcessEvents();
        since_round_.start();
    }

    const CommandContext& context_;
    std::int64_t total_;
    std::int64_t done_ = 0;
    std::int64_t percent_ = -1;
    QElapsedTimer since_round_;
};

}  // namespace

base::Status WalkRows(CommandContext& context, const QString& sql,
                      const std::function<base::Status(jet::Recordset&)>& visit) {
    jet::Recordset rows;
    RETURN_IF_ERROR(rows.Open(sql.toStdU16String(), *context.catalogue.CatalogueConnection,
                              jet::CursorType::kDynamic, jet::LockType::kOptimistic));
    ProgressMeter meter(context, rows.RecordCount());
    while (!rows.Eof()) {
        RETURN_IF_ERROR(visit(rows));
        RETURN_IF_ERROR(rows.MoveNext());
        meter.Step();
    }
    return {};
}

}  // namespace maintenance
