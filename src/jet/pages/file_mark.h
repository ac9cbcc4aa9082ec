// The file mark: 64 random bits in page 0 that change with every checkpoint. A journal names the
// marks that its database file can carry, so it is never applied to another file, nor to this one
// in another state (an older copy put back, or changed by another program since). The mark lies
// where the format counts committed writes: the last eight of the 256 commit words hold one byte of
// it each in their low half. Their high half stays 1, as in every file that was closed properly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace jet {

inline constexpr std::size_t kFileMarkBytes = 16;

// Where the mark begins in page 0. Pages of 2048 bytes belong to Jet 3, others to Jet 4.
std::size_t FileMarkOffset(std::uint32_t page_size);

// 0: the file was never written by this engine.
std::uint64_t ReadFileMark(std::span<const std::byte> first_page);
// Requires: kFileMarkBytes bytes.
void StoreFileMark(std::span<std::byte> words, std::uint64_t mark);
// A new one; never 0.
std::uint64_t MakeFileMark();

// Whether every 512-byte sector of `page` equals that sector in `known`, the mark itself apart.
// A page is 512-byte sectors on disk; a power cut leaves each of them old or new.
bool SameSector(std::span<const std::byte> page, std::span<const std::byte> known,
                std::size_t sector);

}  // namespace jet
