// SoundPlayer: plays a wave file to its end. Silent, without a message and without a wait, when the
// file is missing or there is no sound device; never the cause of a hang.
#pragma once

#include <QtCore/QString>

#include <memory>

namespace platform {

class SoundPlayer {
public:
    virtual ~SoundPlayer() = default;
    virtual void PlaySynchronously(const QString& wave_file) = 0;
};

std::unique_ptr<SoundPlayer> MakeSoundPlayer();

}  // namespace platform
