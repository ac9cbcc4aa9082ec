// GivenPaths: files and folders that another start of the program has handed over, one after the
// other, each as soon as the program is free for it.
#pragma once

#include <QtCore/QString>
#include <QtCore/QTimer>

#include <deque>
#include <functional>

namespace app {

class GivenPaths {
public:
    // How many may wait.
    static constexpr std::size_t kMost = 100;

    // `may_take` tells whether `take` may be called now; it is asked again and again while a path
    // waits. Neither is called before the next pass of the event loop, nor while `take` runs.
    GivenPaths(std::function<bool()> may_take, std::function<void(const QString& path)> take);

    // False: too many are waiting.
    bool Add(const QString& path);

private:
    void TakeNext();

    std::function<bool()> may_take_;
    std::function<void(const QString& path)> take_;
    std::deque<QString> waiting_;
    QTimer timer_;
    bool is_taking_ = false;
};

}  // namespace app
