// The artwork that is compiled in: :/tavolo/icons/<key>.svg, :/tavolo/placeholder.svg (shown where
// there is no picture),
// :/tavolo/play.svg and play_pressed.svg, :/tavolo/tavolo.svg (the program's icon).
#pragma once

namespace assets {

// Makes the artwork known to Qt. A static library's resources are not found without it. A second
// call does nothing.
void Load();

}  // namespace assets
