#include "jet/pages/flusher.h"

#include <system_error>

namespace jet {

Flusher::Flusher(std::chrono::milliseconds delay, std::function<bool()> flush)
    : delay_(delay), flush_(std::move(flush)) {}

Flusher::~Flusher() {
    {
        const std::lock_guard lock(mutex_);
        stop_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) thread_.join();
}

bool Flusher::Request() {
    {
        const std::lock_guard lock(mutex_);
        if (requested_) return true;
        requested_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) return true;
    try {
        thread_ = std::thread([this] { Run(); });
        return true;
    } catch (const std::system_error&) {
        const std::lock_guard lock(mutex_);
        requested_ = false;
        return false;
    }
}

void Flusher::Run() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return stop_ || requested_; });
        wake_.wait_for(lock, delay_, [this] { return stop_; });
        if (stop_) return;
        requested_ = false;
        lock.unlock();
        const bool is_done = flush_();
        lock.lock();
        if (!is_done) requested_ = true;
    }
}

}  // namespace jet
