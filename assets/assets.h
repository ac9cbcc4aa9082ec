// The artwork that is compiled in, as drawings (widgets/artwork.h): :/tavolo/icons/<key>.drawing,
// :/tavolo/placeholder.drawing (shown where there is no picture), :/tavolo/play.drawing and
// play_pressed.drawing, :/tavolo/tavolo.drawing (the program's icon).
#pragma once

namespace assets {

// Makes the artwork known to Qt. A static library's resources are not found without it. A second
// call does nothing.
void Load();

}  // namespace assets
