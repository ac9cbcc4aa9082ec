// FileLookup: tests in a thread of its own whether files exist, so that a drive that does not
// respond does not block the windows. Results are signals. Threads: the object belongs to the
// thread that created it, which needs an event loop.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

#include <cstddef>
#include <functional>
#include <memory>

namespace browser {

class FileLookup : public QObject {
    Q_OBJECT

public:
    // Called in the lookup's thread, for one path at a time; must not use widgets.
    using FileTest = std::function<bool(const QString& path)>;

    explicit FileLookup(FileTest test, QObject* parent = nullptr);
    // Neither the destructor nor Forget waits for a test in progress.
    ~FileLookup() override;

    // Requests a test of `path`; Answered repeats `key` and `path`. The latest request is processed
    // first, because its row is the one on the screen.
    void Ask(std::size_t key, const QString& path);
    // Discards all requests: no earlier one is answered any more.
    void Forget();

Q_SIGNALS:
    void Answered(std::size_t key, const QString& path, bool is_there);
    // After the answers that there were at once: what they change is best shown together.
    void AllAnswered();

private:
    class Requests;

    FileTest test_;
    std::shared_ptr<Requests> requests_;  // shared with the thread that tests them; null: no thread
};

}  // namespace browser
