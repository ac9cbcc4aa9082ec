// ThumbnailLoader: makes small pictures in threads of its own and keeps those that were asked for
// last, up to a number of bytes. What is wanted is said as a whole, the most wanted first: what
// waits and is wanted no more is never made. Threads: the object belongs to the thread that created
// it, which needs an event loop; `Load` is called in the others.
#pragma once

#include "base/status.h"
#include "thumbnails/table_picture.h"

#include <QtCore/QCache>
#include <QtCore/QObject>
#include <QtCore/QThreadPool>
#include <QtCore/QTimer>

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace thumbnails {

class ThumbnailLoader : public QObject {
    Q_OBJECT

public:
    using Load = std::function<base::Result<QImage>(const TablePicture& picture, QSize box)>;

    struct Limits {
        qsizetype bytes = qsizetype{64} * 1024 * 1024;  // of the pictures that are kept
        int workers = 2;
    };

    struct Wish {
        TablePicture picture;
        QSize box;  // pixels
        bool operator==(const Wish&) const = default;
    };

    // What is known of a picture.
    struct Known {
        QImage image;     // null: there is none
        QSize box;        // that it was made for
        QString failure;  // why a picture that is there is not shown; empty: nothing failed
        std::uint64_t state = 0;
    };

    ThumbnailLoader(Load load, Limits limits, QObject* parent = nullptr);
    // Waits for pictures that are being made.
    ~ThumbnailLoader() override;

    // Of another box or an earlier state, perhaps, until a wish for it is fulfilled. nullptr:
    // nothing is known yet. Valid until control returns to the event loop.
    const Known* Find(const TablePicture& picture) const { return known_.object(picture); }

    // Replaces all wishes that wait, and keeps what is wanted from being dropped. Of wishes whose
    // pictures would not fit beside each other only the first are taken.
    void Want(const std::vector<Wish>& wishes);
    // The files may have changed: what is known is shown, and made again when it is wanted.
    void Doubt() { ++state_; }
    // Drops all wishes and pictures.
    void Clear();
    // Runs something else in one of the threads, before the pictures that are wanted later.
    void Run(std::function<void()> job) { pool_.start(std::move(job)); }

    qsizetype bytes() const { return known_.totalCost(); }

Q_SIGNALS:
    // More is known. Told for all that came in a short time together.
    void Arrived();

private:
    struct Job {
        Wish wish;
        std::uint64_t state = 0;
        bool operator==(const Job&) const = default;
    };
    struct Done {
        Job job;
        base::Result<QImage> image;
    };

    void StartWorkers();
    void Work();
    void TakeDone();
    bool IsKnown(const Wish& wish) const;

    const Load load_;
    const Limits limits_;
    QCache<TablePicture, Known> known_;  // costs are bytes
    std::uint64_t state_ = 1;
    QTimer tell_;

    std::mutex mutex_;          // guards what follows
    std::vector<Job> waiting_;  // the most wanted at the end
    std::vector<Job> at_work_;
    std::vector<Done> done_;
    int workers_ = 0;

    QThreadPool pool_;  // the last member: its threads end first
};

}  // namespace thumbnails
