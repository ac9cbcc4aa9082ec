// SoundRecording: what the sound server of the test (with_sound_server.sh) is given to play, from
// construction on.
#pragma once

#include "support/wait_for.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace test_support {

using Samples = std::vector<std::int16_t>;

inline Samples SamplesFromBytes(const QByteArray& bytes) {
    Samples samples(static_cast<std::size_t>(bytes.size()) / sizeof(std::int16_t));
    if (!samples.empty()) std::memcpy(samples.data(), bytes.constData(), samples.size() * 2);
    return samples;
}

// Of a wave file as scripts/make_sounds.py writes it: a header of 44 bytes, then 16-bit samples.
inline Samples SamplesOfWave(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return SamplesFromBytes(file.readAll().sliced(44));
}

class SoundRecording {
public:
    SoundRecording() {
        recorder_.start(QStringLiteral("parec"),
                        {QStringLiteral("--raw"), QStringLiteral("--device=tavolo_test.monitor"),
                         QStringLiteral("--format=s16le"), QStringLiteral("--rate=22050"),
                         QStringLiteral("--channels=1"), QStringLiteral("--latency-msec=20")});
        is_running_ = WaitFor([this] { return Take() > 0; });
    }
    ~SoundRecording() {
        recorder_.kill();
        recorder_.waitForFinished();
    }
    SoundRecording(const SoundRecording&) = delete;
    SoundRecording& operator=(const SoundRecording&) = delete;

    bool is_running() const { return is_running_; }

    // Everything recorded so far and `seconds` more.
    Samples TakeUntil(double seconds_more) {
        const qsizetype wanted = Take() + static_cast<qsizetype>(seconds_more * 22050) * 2;
        WaitFor([&] { return Take() >= wanted; });
        return SamplesFromBytes(recorded_);
    }

private:
    qsizetype Take() {
        recorder_.waitForReadyRead(1);
        recorded_ += recorder_.readAllStandardOutput();
        return recorded_.size();
    }

    QProcess recorder_;
    QByteArray recorded_;
    bool is_running_ = false;
};

inline int Loudest(const Samples& samples) {
    int loudest = 0;
    for (const std::int16_t sample : samples)
        loudest = std::max(loudest, std::abs(int{sample}));
    return loudest;
}

// Whether `sound` stands in `recording` sample for sample, give or take 2: nine of ten of its
// pieces of 20 ms, in their order. A machine under load may make the device run dry for a moment,
// which parts two pieces.
inline bool Holds(const Samples& recording, const Samples& sound) {
    constexpr std::size_t kPiece = 441;
    constexpr int kTolerance = 2;
    std::size_t pieces = 0, found = 0, next = 0;
    for (std::size_t piece = 0; piece + kPiece <= sound.size(); piece += kPiece, ++pieces) {
        for (std::size_t at = next; at + kPiece <= recording.size(); ++at) {
            std::size_t i = 0;
            while (i < kPiece &&
                   std::abs(int{recording[at + i]} - int{sound[piece + i]}) <= kTolerance)
                ++i;
            if (i < kPiece) continue;
            ++found;
            next = at + kPiece;
            break;
        }
    }
    return pieces > 0 && found * 10 >= pieces * 9;
}

}  // namespace test_support
