// SoundPlayer: plays wave files. A missing file or sound device is no error: nothing is played and
// the call returns at once. A sound server that does not answer delays the program once, by a few
// seconds.
#pragma once

#include <QtCore/QString>

#include <memory>

namespace platform {

class SoundPlayer {
public:
    virtual ~SoundPlayer() = default;
    // Returns when the sound has been played.
    virtual void PlaySynchronously(const QString& wave_file) = 0;
};

std::unique_ptr<SoundPlayer> MakeSoundPlayer();

}  // namespace platform
