#include "browser/file_lookup.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace browser {

// The questions between two calls of Forget. The thread that asks them holds them alive; it ends
// after the question it is at when nobody wants answers any more.
class FileLookup::Questions : public std::enable_shared_from_this<Questions> {
public:
    Questions(FileLookup& asker, FileTest test) : asker_(&asker), test_(std::move(test)) {}

    void Start() {
        std::thread([self = shared_from_this()] { self->AskAll(); }).detach();
    }
    void Add(std::size_t key, const QString& path) {
        const std::lock_guard lock(mutex_);
        waiting_.emplace_back(key, path);
        changed_.notify_one();
    }
    void Close() {
        const std::lock_guard lock(mutex_);
        asker_ = nullptr;
        changed_.notify_one();
    }

private:
    void AskAll() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [this] { return !asker_ || !waiting_.empty(); });
            if (!asker_) return;
            const auto [key, path] = std::move(waiting_.back());
            waiting_.pop_back();
            lock.unlock();
            const bool is_there = test_(path);
            lock.lock();
            Tell(key, path, is_there);
        }
    }
    // Requires: the mutex is held, so that the asker lives until the answer is in its queue.
    void Tell(std::size_t key, const QString& path, bool is_there) {
        if (!asker_) return;
        FileLookup* const asker = asker_;
        QMetaObject::invokeMethod(
            asker,
            [asker, key, path, is_there, self = shared_from_this()] {
                if (asker->questions_ == self) Q_EMIT asker->Answered(key, path, is_there);
            },
            Qt::QueuedConnection);
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::pair<std::size_t, QString>> waiting_;
    FileLookup* asker_;  // null: nobody wants an answer any more
    const FileTest test_;
};

FileLookup::FileLookup(FileTest test, QObject* parent) : QObject(parent), test_(std::move(test)) {}

FileLookup::~FileLookup() {
    Forget();
}

void FileLookup::Ask(std::size_t key, const QString& path) {
    if (!questions_) {
        questions_ = std::make_shared<Questions>(*this, test_);
        questions_->Start();
    }
    questions_->Add(key, path);
}

void FileLookup::Forget() {
    if (questions_) questions_->Close();
    questions_.reset();
}

}  // namespace browser
