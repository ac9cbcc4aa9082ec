// PictureSequence: fills picture boxes one after the other. Each picture is decoded in a thread of
// the sequence's own, so that a damaged one is known before anything is painted and a large one
// holds nobody up. A new sequence puts an end to the one before, whose results are then dropped.
// Threads: the user-interface thread.
#pragma once

#include "widgets/picture_box.h"
#include "widgets/picture_loader.h"

#include <QtCore/QObject>
#include <QtCore/QThreadPool>

#include <vector>

namespace widgets {

struct PictureStep {
    PictureBox* box;       // outlives the sequence
    PictureSource source;  // empty: the box keeps its placeholder
    QStringView name;      // of the step; a literal
    // A picture that cannot be decoded ends the sequence: the boxes behind it keep the placeholder.
    bool failure_ends = true;
};

class PictureSequence : public QObject {
    Q_OBJECT

public:
    explicit PictureSequence(QObject* parent = nullptr);
    // Waits for a picture that is being decoded.
    ~PictureSequence() override;

    // `room`: pixels that a box has which is not shown at present.
    void Start(std::vector<PictureStep> steps, QSize room);
    // Boxes that still wait show the placeholder.
    void Stop();
    // What it is doing or did last; kept for whoever looks with a debugger.
    QStringView current_step() const { return current_step_; }

private:
    void TakeNextStep();
    void Take(std::uint64_t sequence, const base::Result<DecodedPicture>& decoded);

    std::vector<PictureStep> steps_;
    std::size_t next_ = 0;
    QSize room_;
    std::uint64_t sequence_ = 0;  // counts them; a result of an earlier one is nobody's
    QStringView current_step_;
    QThreadPool decoder_;
};

}  // namespace widgets
