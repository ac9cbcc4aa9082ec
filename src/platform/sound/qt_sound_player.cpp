// Sounds are played on a thread of their own, and the caller waits for it with a time limit: a
// sound server that does not answer delays the program once and cannot block it.
#include "platform/sound/wave_file.h"
#include "platform/sound_player.h"

#include "platform/files.h"

#include <QtCore/QBuffer>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtMultimedia/QAudioSink>
#include <QtMultimedia/QMediaDevices>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace platform {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

// Larger files are not played.
constexpr qint64 kMaxFileBytes = qint64{32} * 1024 * 1024;
// Time allowed for finding and opening the device, in addition to the length of the sound.
constexpr milliseconds kDeviceAllowance{4000};
// The size of the device's buffer, and the time after the last sample was due at which it has been
// played for certain.
constexpr milliseconds kDeviceBuffer{100};
constexpr milliseconds kRunOut{150};

// Silence before the sound: a suspended device drops the first samples.
constexpr milliseconds kLeadIn{40};

std::optional<WaveSound> LoadSound(const QString& wave_file) {
    const auto size = FileSize(wave_file);
    QFile file;
    if (!size.ok() || *size > kMaxFileBytes || !OpenFile(file, wave_file, QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.read(kMaxFileBytes);
    auto sound =
        ReadWave(std::as_bytes(std::span(bytes.data(), static_cast<std::size_t>(bytes.size()))));
    if (!sound.ok() || sound->samples.empty()) return {};
    return std::move(*sound);
}

QAudioFormat FormatOf(const WaveSound& sound) {
    QAudioFormat format;
    format.setChannelCount(sound.channels);
    format.setSampleRate(sound.frames_per_second);
    switch (sound.kind) {
    case SampleKind::kUnsigned8:
        format.setSampleFormat(QAudioFormat::UInt8);
        break;
    case SampleKind::kSigned16:
        format.setSampleFormat(QAudioFormat::Int16);
        break;
    case SampleKind::kSigned32:
        format.setSampleFormat(QAudioFormat::Int32);
        break;
    case SampleKind::kFloat32:
        format.setSampleFormat(QAudioFormat::Float);
        break;
    }
    return format;
}

QByteArray WithLeadIn(const WaveSound& sound) {
    const auto frames = static_cast<qsizetype>(kLeadIn.count() * sound.frames_per_second / 1000);
    const char silence = sound.kind == SampleKind::kUnsigned8 ? '\x80' : '\0';
    QByteArray samples(frames * static_cast<qsizetype>(sound.frame_bytes()), silence);
    samples.append(reinterpret_cast<const char*>(sound.samples.data()),
                   static_cast<qsizetype>(sound.samples.size()));
    return samples;
}

// Plays on the calling thread until the last sample has been heard or the device has failed. A
// timer ends it: the device becomes idle when it has taken the last sample, and to stop it then
// would drop what is in its buffer.
void PlayOnDevice(const WaveSound& sound) {
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull()) return;
    QByteArray samples = WithLeadIn(sound);
    QBuffer source(&samples);
    source.open(QIODevice::ReadOnly);
    QAudioSink sink(device, FormatOf(sound));
    sink.setBufferSize(FormatOf(sound).bytesForDuration(kDeviceBuffer / 1us));
    QEventLoop loop;
    QObject::connect(&sink, &QAudioSink::stateChanged, &loop, [&](QAudio::State state) {
        if (state == QAudio::StoppedState) loop.quit();
    });
    sink.start(&source);
    if (sink.state() == QAudio::StoppedState) return;
    QTimer::singleShot(kLeadIn + milliseconds(sound.duration_ms()) + kRunOut, &loop,
                       &QEventLoop::quit);
    loop.exec();
    sink.stop();
}

// The playing of one sound. Shared by the caller, which waits, and the sound thread.
class Job {
public:
    explicit Job(WaveSound sound) : sound_(std::move(sound)) {}

    void Play() {
        PlayOnDevice(sound_);
        const std::lock_guard lock(mutex_);
        is_done_ = true;
        done_.notify_all();
    }
    // False when the sound has not ended within its length and kDeviceAllowance.
    bool Wait() {
        const auto limit = milliseconds(sound_.duration_ms()) + kDeviceAllowance;
        std::unique_lock lock(mutex_);
        return done_.wait_for(lock, limit, [this] { return is_done_; });
    }

private:
    WaveSound sound_;
    std::mutex mutex_;
    std::condition_variable done_;
    bool is_done_ = false;
};

class QtSoundPlayer final : public SoundPlayer {
public:
    ~QtSoundPlayer() override {
        if (!thread_) return;
        thread_->quit();
        if (thread_->wait(is_stuck_ ? 0ms : 2000ms)) return;
        // A QThread must not be destroyed while it runs; this one hangs and ends with the process.
        [[maybe_unused]] static QThread* const abandoned = thread_.release();
    }

    void PlaySynchronously(const QString& wave_file) override {
        if (is_stuck_) return;
        auto sound = LoadSound(wave_file);
        if (!sound) return;
        const auto job = std::make_shared<Job>(std::move(*sound));
        QMetaObject::invokeMethod(Worker(), [job] { job->Play(); });
        is_stuck_ = !job->Wait();
    }

private:
    // An object that lives on the sound thread.
    QObject* Worker() {
        if (!thread_) {
            thread_ = std::make_unique<QThread>();
            worker_ = new QObject;
            worker_->moveToThread(thread_.get());
            QObject::connect(thread_.get(), &QThread::finished, worker_, &QObject::deleteLater);
            thread_->start();
        }
        return worker_;
    }

    std::unique_ptr<QThread> thread_;
    QObject* worker_ = nullptr;  // deleted by its thread
    bool is_stuck_ = false;
};

}  // namespace

std::unique_ptr<SoundPlayer> MakeSoundPlayer() {
    return std::make_unique<QtSoundPlayer>();
}

}  // namespace platform
