#include "jet/pages/flusher.h"

namespace jet {

Flusher::Flusher(std::chrono::milliseconds delay, std::function<bool()> flush)
    : delay_(delay), flush_(std::move(flush)), thread_([this] { Run(); }) {}

Flusher::~Flusher() {
    {
        const std::lock_guard lock(mutex_);
        stop_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

void Flusher::Request() {
    {
        const std::lock_guard lock(mutex_);
        if (requested_) return;
        requested_ = true;
    }
    wake_.notify_one();
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
