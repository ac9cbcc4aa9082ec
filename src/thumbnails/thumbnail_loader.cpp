#include "thumbnails/thumbnail_loader.h"

#include <algorithm>
#include <utility>

namespace thumbnails {
namespace {

// What arrives within this time is told together, so that it is painted together.
constexpr int kTellMs = 25;
constexpr qsizetype kBytesPerPixel = 4;
// Of what is kept beside the pixels, texts included, about.
constexpr qsizetype kBytesBeside = 512;

qsizetype BytesOf(QSize box) {
    return kBytesBeside + kBytesPerPixel * box.width() * box.height();
}

}  // namespace

ThumbnailLoader::ThumbnailLoader(Load load, Limits limits, QObject* parent)
    : QObject(parent), load_(std::move(load)), limits_(limits), known_(limits.bytes) {
    pool_.setMaxThreadCount(limits_.workers);
    tell_.setSingleShot(true);
    tell_.setInterval(kTellMs);
    connect(&tell_, &QTimer::timeout, this, &ThumbnailLoader::TakeDone);
}

ThumbnailLoader::~ThumbnailLoader() {
    Clear();
    pool_.waitForDone();
}

bool ThumbnailLoader::IsKnown(const Wish& wish) const {
    const Known* const known = known_.object(wish.picture);
    return known != nullptr && known->box == wish.box && known->state == state_;
}

void ThumbnailLoader::Want(const std::vector<Wish>& wishes) {
    qsizetype room = limits_.bytes;
    std::size_t taken = 0;
    while (taken < wishes.size() && (room -= BytesOf(wishes[taken].box)) >= 0)
        ++taken;
    std::vector<Job> waiting;
    // From the least wanted on: the cache drops what was looked at first.
    for (std::size_t i = taken; i-- > 0;)
        if (!IsKnown(wishes[i])) waiting.push_back({wishes[i], state_});
    {
        const std::lock_guard lock(mutex_);
        const auto is_at_work = [this](const Job& job) {
            return std::find(at_work_.begin(), at_work_.end(), job) != at_work_.end() ||
                   std::any_of(done_.begin(), done_.end(),
                               [&](const Done& done) { return done.job == job; });
        };
        std::erase_if(waiting, is_at_work);
        waiting_ = std::move(waiting);
    }
    StartWorkers();
}

void ThumbnailLoader::Clear() {
    {
        const std::lock_guard lock(mutex_);
        waiting_.clear();
        done_.clear();
    }
    ++state_;  // what is at work is no answer any more
    known_.clear();
}

void ThumbnailLoader::StartWorkers() {
    const std::lock_guard lock(mutex_);
    const auto wanted =
        std::min<std::size_t>(waiting_.size(), static_cast<std::size_t>(limits_.workers));
    for (; static_cast<std::size_t>(workers_) < wanted; ++workers_)
        pool_.start([this] { Work(); });
}

// In a worker's thread, as long as something waits.
void ThumbnailLoader::Work() {
    std::unique_lock lock(mutex_);
    while (!waiting_.empty()) {
        const Job job = std::move(waiting_.back());
        waiting_.pop_back();
        at_work_.push_back(job);
        lock.unlock();
        base::Result<QImage> image = load_(job.wish.picture, job.wish.box);
        lock.lock();
        std::erase(at_work_, job);
        done_.push_back({job, std::move(image)});
        if (done_.size() > 1) continue;  // will be told with the first one
        QMetaObject::invokeMethod(
            this, [this] { tell_.start(); }, Qt::QueuedConnection);
    }
    --workers_;
}

void ThumbnailLoader::TakeDone() {
    std::vector<Done> done;
    {
        const std::lock_guard lock(mutex_);
        done = std::exchange(done_, {});
    }
    for (Done& each : done) {
        auto known = std::make_unique<Known>();
        known->box = each.job.wish.box;
        known->state = each.job.state;
        if (each.image.ok())
            known->image = std::move(*each.image);
        else if (each.image.status().code() != base::StatusCode::kNotFound)
            known->failure = QString::fromStdString(each.image.status().message());
        const qsizetype cost = kBytesBeside + known->image.sizeInBytes();
        known_.insert(each.job.wish.picture, known.release(), cost);
    }
    if (!done.empty()) Q_EMIT Arrived();
}

}  // namespace thumbnails
