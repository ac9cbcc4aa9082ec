#include "platform/sound_player.h"

#include "platform/files.h"
#include "platform/windows/qt_text.h"
#include "platform/windows/windows_header.h"

#include <mmsystem.h>

namespace platform {
namespace {

class SystemSoundPlayer final : public SoundPlayer {
public:
    // A missing file is not replaced by the system's own sound.
    void PlaySynchronously(const QString& wave_file) override {
        if (FileExists(wave_file)) PlaySoundW(Wide(wave_file).c_str(), nullptr, SND_NODEFAULT);
    }
};

}  // namespace

std::unique_ptr<SoundPlayer> MakeSoundPlayer() {
    return std::make_unique<SystemSoundPlayer>();
}

}  // namespace platform
