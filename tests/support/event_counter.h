// EventCounter: how often an object gets an event of one kind, for what is painted or shown while
// the program works.
#pragma once

#include <QtCore/QEvent>
#include <QtCore/QObject>

namespace test_support {

class EventCounter : public QObject {
public:
    // `watched` is borrowed and outlives the counter.
    EventCounter(QObject& watched, QEvent::Type type) : type_(type) {
        watched.installEventFilter(this);
    }
    int count() const { return count_; }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == type_) ++count_;
        return false;
    }

private:
    QEvent::Type type_;
    int count_ = 0;
};

}  // namespace test_support
