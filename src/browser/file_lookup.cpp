#include "browser/file_lookup.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace browser {

// The requests between two calls of Forget, and the thread that tests them, which keeps the object
// alive. After Close the thread ends when the test in progress has returned.
class FileLookup::Requests : public std::enable_shared_from_this<Requests> {
public:
    Requests(FileLookup& asker, FileTest test) : asker_(&asker), test_(std::move(test)) {}

    void Start() {
        std::thread([self = shared_from_this()] { self->TestAll(); }).detach();
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
    struct Result {
        std::size_t key;
        QString path;
        bool is_there;
    };

    void TestAll() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [this] { return !asker_ || !waiting_.empty(); });
            if (!asker_) return;
            const auto [key, path] = std::move(waiting_.back());
            waiting_.pop_back();
            lock.unlock();
            const bool is_there = test_(path);
            lock.lock();
            Answer(key, path, is_there);
        }
    }
    // Requires: the mutex is held, so that `asker_` is not destroyed before the result is queued.
    void Answer(std::size_t key, const QString& path, bool is_there) {
        if (!asker_) return;
        answers_.push_back({key, path, is_there});
        if (answers_.size() > 1) return;  // will be taken with the first one
        FileLookup* const asker = asker_;
        QMetaObject::invokeMethod(
            asker, [asker, self = shared_from_this()] { self->TellAnswers(*asker); },
            Qt::QueuedConnection);
    }
    // In the asker's thread. A slot may forget the requests.
    void TellAnswers(FileLookup& asker) {
        const std::vector<Result> answers = TakeAnswers();
        for (const Result& answer : answers)
            if (asker.requests_.get() == this)
                Q_EMIT asker.Answered(answer.key, answer.path, answer.is_there);
        if (asker.requests_.get() == this) Q_EMIT asker.AllAnswered();
    }
    std::vector<Result> TakeAnswers() {
        const std::lock_guard lock(mutex_);
        return std::exchange(answers_, {});
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::pair<std::size_t, QString>> waiting_;
    std::vector<Result> answers_;
    FileLookup* asker_;  // null after Close
    const FileTest test_;
};

FileLookup::FileLookup(FileTest test, QObject* parent) : QObject(parent), test_(std::move(test)) {}

FileLookup::~FileLookup() {
    Forget();
}

void FileLookup::Ask(std::size_t key, const QString& path) {
    if (!requests_) {
        requests_ = std::make_shared<Requests>(*this, test_);
        requests_->Start();
    }
    requests_->Add(key, path);
}

void FileLookup::Forget() {
    if (requests_) requests_->Close();
    requests_.reset();
}

}  // namespace browser
