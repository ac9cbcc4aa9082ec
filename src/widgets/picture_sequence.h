// PictureSequence: fills picture boxes one after the other. Pictures are decoded in a background
// thread, so that a damaged one is known before anything is painted and a large one does not block
// the window. Start ends the sequence before; its results are dropped. Threads: called on the
// user-interface thread only.
#pragma once

#include "widgets/picture_box.h"
#include "widgets/picture_loader.h"

#include <QtCore/QObject>
#include <QtCore/QThreadPool>

#include <vector>

namespace widgets {

struct PictureStep {
    PictureBox* box;       // borrowed; outlives the sequence
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

    // `room`: the size in pixels to decode for a box that is not visible at present.
    void Start(std::vector<PictureStep> steps, QSize room);
    // Boxes that still wait show the placeholder.
    void Stop();
    // The step in progress, else the last one; for debugging.
    QStringView current_step() const { return current_step_; }

private:
    void TakeNextStep();
    void Take(std::uint64_t sequence, const base::Result<DecodedPicture>& decoded);

    std::vector<PictureStep> steps_;
    std::size_t next_ = 0;
    QSize room_;
    std::uint64_t sequence_ = 0;  // number of the current one; results of earlier ones are dropped
    QStringView current_step_;
    QThreadPool decoder_;
};

}  // namespace widgets
