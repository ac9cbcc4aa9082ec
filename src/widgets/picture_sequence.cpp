#include "widgets/picture_sequence.h"

#include <QtCore/QMetaObject>

#include <memory>
#include <utility>

namespace widgets {

PictureSequence::PictureSequence(QObject* parent) : QObject(parent) {
    decoder_.setMaxThreadCount(1);
}

PictureSequence::~PictureSequence() {
    decoder_.clear();
    decoder_.waitForDone();
}

void PictureSequence::Start(std::vector<PictureStep> steps, QSize room) {
    Stop();
    steps_ = std::move(steps);
    room_ = room;
    for (const PictureStep& step : steps_)
        if (!step.source.is_empty()) step.box->Wait();
    TakeNextStep();
}

void PictureSequence::Stop() {
    ++sequence_;
    decoder_.clear();
    for (; next_ < steps_.size(); ++next_)
        steps_[next_].box->ShowPlaceholder();
    steps_.clear();
    next_ = 0;
}

// Skips steps without a picture; afterwards steps_[next_] is being decoded.
void PictureSequence::TakeNextStep() {
    for (; next_ < steps_.size(); ++next_) {
        current_step_ = steps_[next_].name;
        if (!steps_[next_].source.is_empty()) break;
    }
    if (next_ == steps_.size()) return;
    const PictureStep& step = steps_[next_];
    const QSize size = step.box->isVisible() ? step.box->SizeInPixels() : room_;
    decoder_.start([this, sequence = sequence_, source = step.source, size] {
        auto decoded = std::make_shared<base::Result<DecodedPicture>>(
            DecodePictureWithSize(source, size.expandedTo({1, 1})));
        QMetaObject::invokeMethod(
            this, [this, sequence, decoded] { Take(sequence, *decoded); }, Qt::QueuedConnection);
    });
}

void PictureSequence::Take(std::uint64_t sequence, const base::Result<DecodedPicture>& decoded) {
    if (sequence != sequence_) return;
    const PictureStep step = steps_[next_++];
    if (decoded.ok()) {
        step.box->ShowDecoded(step.source, *decoded);
    } else {
        step.box->ShowFailure(decoded.status());
        if (step.failure_ends) return Stop();
    }
    TakeNextStep();
}

}  // namespace widgets
