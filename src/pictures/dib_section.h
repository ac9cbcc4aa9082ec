// cDIBSection: a device-independent bitmap in memory with directly addressable pixels. Rows are
// stored bottom-up and padded to a multiple of 4 bytes; a pixel is blue, green, red (3 channels) or
// blue, green, red, alpha (4 channels). Sizes are pixels, BytesPerScanLine is bytes. An instance is
// empty or holds a whole picture; a failed Create or Load leaves it empty. Threads: one instance
// belongs to one thread.
#pragma once

#include "platform/user_prompts.h"

#include <QtGui/QPainter>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictures {

// The 40-byte bitmap information header of the BMP format.
struct BitmapInfoHeader {
    std::uint32_t biSize = 40;
    std::int32_t biWidth = 0;
    std::int32_t biHeight = 0;  // positive: bottom-up
    std::uint16_t biPlanes = 0;
    std::uint16_t biBitCount = 0;
    std::uint32_t biCompression = 0;  // BI_RGB
    std::uint32_t biSizeImage = 0;
    std::int32_t biXPelsPerMeter = 0;
    std::int32_t biYPelsPerMeter = 0;
    std::uint32_t biClrUsed = 0;
    std::uint32_t biClrImportant = 0;
    bool operator==(const BitmapInfoHeader&) const = default;
};

// The limit of a picture: more pixels than any screen has.
inline constexpr std::int64_t kMaxPixels = std::int64_t{64} << 20;

class cDIBSection {
public:
    // A new picture of zeros (black). `channels` is 3 or 4. False, and empty: a size below 1, too
    // large a picture, no memory.
    bool Create(int width, int height, int channels);
    // Reads a BMP file (1 to 32 bits, run-length coded or not, either row order) as a 24-bit
    // picture. False, and empty, after the message "Can't load BMP image".
    bool Load(const QString& path, platform::UserPrompts& prompts);
    void CleanUp();

    bool empty() const { return bits_.empty(); }
    int BytesPerScanLine() const;
    int dib_width() const { return header_.biWidth; }
    int dib_height() const { return header_.biHeight; }
    int dib_channels() const { return header_.biBitCount / 8; }
    const BitmapInfoHeader& header() const { return header_; }
    // First byte of the lowest row; nullptr when empty.
    std::uint8_t* DIBSectionBitsPtr() { return bits_.empty() ? nullptr : bits_.data(); }
    // The row `from_top` rows below the upper edge. Requires: a row of the picture.
    std::uint8_t* RowFromTop(int from_top);
    const std::uint8_t* RowFromTop(int from_top) const;

    // Draws the picture, or the part of it from the source position on, at its own size. A negative
    // destination width or height means the picture's own.
    void PaintPicture(QPainter& painter, int dest_left, int dest_top, int dest_width = -1,
                      int dest_height = -1, int source_left = 0, int source_top = 0) const;

private:
    BitmapInfoHeader header_;
    std::vector<std::uint8_t> bits_;
};

}  // namespace pictures
