#include "jet/held_rows.h"

#include "jet/held_rows_content.h"

namespace jet {

std::size_t HeldRows::size() const {
    return content_ != nullptr ? content_->rows : 0;
}

Value HeldRows::Field(std::size_t row, std::size_t field) const {
    const Content::Place place = content_->places[field];
    if (!place.is_stored) return content_->loose[place.number][row];
    return content_->decoder->Read((*content_->stored)[row], place.number);
}

}  // namespace jet
