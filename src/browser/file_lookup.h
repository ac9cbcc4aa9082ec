// FileLookup: asks whether files exist without ever waiting for the answer. A question is put in a
// thread of its own, so that a drive that does not answer holds up no window; the answer comes as a
// signal.
// Threads: belongs to the thread that made it, which needs an event loop for the answers.
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
    // Called in the other thread, one question at a time; must not touch what belongs to a window.
    using FileTest = std::function<bool(const QString& path)>;

    explicit FileLookup(FileTest test, QObject* parent = nullptr);
    // Does not wait for a question that is still being asked, nor does Forget.
    ~FileLookup() override;

    // Asks for `path`; Answered names the question by `key` and path. The latest question is put
    // first: it is about what is on the screen now.
    void Ask(std::size_t key, const QString& path);
    // No answer to an earlier question comes any more.
    void Forget();

Q_SIGNALS:
    void Answered(std::size_t key, const QString& path, bool is_there);

private:
    class Questions;

    FileTest test_;
    std::shared_ptr<Questions> questions_;  // shared with the thread that asks them; null: none
};

}  // namespace browser
