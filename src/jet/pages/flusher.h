// Flusher: a thread that calls a function once, some time after the first of any number of
// requests. It makes commits durable in the background. The thread begins with the first request:
// who only reads has none.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace jet {

class Flusher {
public:
    // `flush` runs in the flusher's thread, never twice at a time. It answers whether it is done;
    // if not, it is called again after the same delay.
    Flusher(std::chrono::milliseconds delay, std::function<bool()> flush);
    ~Flusher();  // waits for a running call; starts no other
    Flusher(const Flusher&) = delete;
    Flusher& operator=(const Flusher&) = delete;

    // At most `delay` from now, `flush` is called. False: the system has no thread for it, so the
    // caller must flush.
    bool Request();

private:
    void Run();

    std::chrono::milliseconds delay_;
    std::function<bool()> flush_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool requested_ = false;
    bool stop_ = false;
    std::thread thread_;
};

}  // namespace jet
