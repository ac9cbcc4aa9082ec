#include "pictures/jpeg_codec.h"

#include <cassert>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>

extern "C" {
#include <jerror.h>
#include <jpeglib.h>
}

namespace pictures {
namespace {

// More scans than any encoder writes: each costs a pass over the whole picture.
constexpr int kMaxScans = 200;
// A picture of at least this many bytes must have at least one byte of file for every 4096 pixels:
// the shortest codes that the format allows need more.
constexpr std::int64_t kSuspiciousBytes = std::int64_t{64} << 20;
constexpr std::int64_t kMaxPixelsPerByte = 4096;

// What the error jump needs. Plain data: no destructor may lie across the jump.
struct ErrorState {
    jpeg_error_mgr manager;
    std::jmp_buf jump;
    int code;
    char text[JMSG_LENGTH_MAX];
};

void Record(j_common_ptr info) {
    auto* state = reinterpret_cast<ErrorState*>(info->err);  // NOLINT: manager is its first member
    state->code = info->err->msg_code;
    info->err->format_message(info, state->text);
}

[[noreturn]] void ErrorExit(j_common_ptr info) {
    Record(info);
    std::longjmp(reinterpret_cast<ErrorState*>(info->err)->jump, 1);  // NOLINT: as above
}

// A file that ends early or is damaged is refused; the library would fill the rest with grey.
void EmitMessage(j_common_ptr info, int level) {
    if (level >= 0) return;
    const int code = info->err->msg_code;
    if (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE)
        ErrorExit(info);
    ++info->err->num_warnings;
}

void OutputMessage(j_common_ptr) {}

void WatchScans(j_common_ptr info) {
    auto* decompress =
        reinterpret_cast<j_decompress_ptr>(info);  // NOLINT: set on decompressors only
    if (decompress->input_scan_number > kMaxScans) {
        info->err->msg_code = JERR_BAD_PROGRESSION;
        ErrorExit(info);
    }
}

void InstallErrors(ErrorState& state) {
    jpeg_std_error(&state.manager);
    state.manager.error_exit = ErrorExit;
    state.manager.emit_message = EmitMessage;
    state.manager.output_message = OutputMessage;
    state.code = 0;
    state.text[0] = '\0';
}

void SetText(ErrorState& state, int code, const char* text) {
    state.code = code;
    std::snprintf(state.text, sizeof state.text, "%s", text);
}

bool IsLying(std::int64_t pixels, std::size_t file_bytes) {
    return pixels * 3 > kSuspiciousBytes &&
           static_cast<std::int64_t>(file_bytes) * kMaxPixelsPerByte < pixels;
}

int DecoderScale(int scale) {
    return scale == 2 || scale == 4 || scale == 8 ? scale : 1;
}

// Four channels: an Adobe file says that they are inks; any other holds luminance, two colour
// differences and opacity.
void ChooseColours(jpeg_decompress_struct& info) {
    if (info.num_components == 4) {
        if (!info.saw_Adobe_marker)
            info.jpeg_color_space = JCS_CMYK;  // hand the channels over as they are
        info.out_color_space = JCS_CMYK;
    } else {
        info.out_color_space = JCS_EXT_BGR;
    }
}

std::uint8_t Clamp(int value) {
    return static_cast<std::uint8_t>(value < 0 ? 0 : (value > 255 ? 255 : value));
}

// ITU-R BT.601 full range, 16-bit fixed point, as JFIF has it.
void LuminanceRowToBgra(std::uint8_t* row, int width) {
    for (std::uint8_t* p = row; p != row + 4 * static_cast<std::ptrdiff_t>(width); p += 4) {
        const int y = p[0];
        const int cb = p[1] - 128;
        const int cr = p[2] - 128;
        p[0] = Clamp(y + ((116130 * cb + 32768) >> 16));
        p[1] = Clamp(y - ((22554 * cb + 46802 * cr + 32768) >> 16));
        p[2] = Clamp(y + ((91881 * cr + 32768) >> 16));
    }
}

// Adobe stores inks inverted: 255 is no ink.
void InkRowToBgra(std::uint8_t* row, int width) {
    for (std::uint8_t* p = row; p != row + 4 * static_cast<std::ptrdiff_t>(width); p += 4) {
        const int black = p[3];
        const int cyan = p[0];
        p[0] = static_cast<std::uint8_t>(p[2] * black / 255);
        p[1] = static_cast<std::uint8_t>(p[1] * black / 255);
        p[2] = static_cast<std::uint8_t>(cyan * black / 255);
        p[3] = 255;
    }
}

// The part that the library jumps out of: objects with destructors belong to the caller. Returns
// the step that failed.
JpegStep DecodeGuarded(jpeg_decompress_struct& info, ErrorState& state, jpeg_progress_mgr& progress,
                       std::span<const std::uint8_t> jpeg, int scale, cDIBSection& target) {
    volatile JpegStep step = JpegStep::kInitialise;
    if (setjmp(state.jump) != 0)
        return step;  // NOLINT(cert-err52-cpp): the library's only way to report
    jpeg_create_decompress(&info);
    progress.progress_monitor = WatchScans;
    info.progress = &progress;
    step = JpegStep::kReadParameters;
    jpeg_mem_src(&info, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
    jpeg_read_header(&info, TRUE);
    const std::int64_t pixels = std::int64_t{info.image_width} * info.image_height;
    if (pixels > kMaxPixels || IsLying(pixels, jpeg.size())) {
        SetText(state, JERR_IMAGE_TOO_BIG, "The picture is too large");
        return step;
    }
    step = JpegStep::kReadData;
    ChooseColours(info);
    info.scale_num = 1;
    info.scale_denom = static_cast<unsigned>(DecoderScale(scale));
    jpeg_start_decompress(&info);
    const int width = ReducedSide(static_cast<int>(info.image_width), scale);
    const int height = ReducedSide(static_cast<int>(info.image_height), scale);
    assert(width == static_cast<int>(info.output_width));
    if (!target.Create(width, height, info.output_components)) {
        SetText(state, JERR_OUT_OF_MEMORY, "Insufficient memory");
        return step;
    }
    while (info.output_scanline < info.output_height) {
        const int from_top = static_cast<int>(info.output_scanline);
        JSAMPROW rows[16];
        int count = 0;
        for (; count < 16 && from_top + count < height; ++count)
            rows[count] = target.RowFromTop(from_top + count);
        const int read =
            static_cast<int>(jpeg_read_scanlines(&info, rows, static_cast<JDIMENSION>(count)));
        if (info.out_color_space != JCS_CMYK) continue;
        for (int i = 0; i < read; ++i)
            info.saw_Adobe_marker ? InkRowToBgra(rows[i], width)
                                  : LuminanceRowToBgra(rows[i], width);
    }
    jpeg_finish_decompress(&info);
    return JpegStep::kNone;
}

JpegStep EncodeGuarded(jpeg_compress_struct& info, ErrorState& state, const cDIBSection& source,
                       int quality, unsigned char*& buffer, unsigned long& size) {
    volatile JpegStep step = JpegStep::kInitialise;
    if (setjmp(state.jump) != 0) return step;  // NOLINT(cert-err52-cpp): as above
    jpeg_create_compress(&info);
    step = JpegStep::kWrite;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = static_cast<JDIMENSION>(source.dib_width());
    info.image_height = static_cast<JDIMENSION>(source.dib_height());
    info.input_components = source.dib_channels();
    info.in_color_space = source.dib_channels() == 4 ? JCS_EXT_BGRX : JCS_EXT_BGR;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        // The library takes rows it does not change as pointers to non-const.
        auto* row = const_cast<JSAMPROW>(source.RowFromTop(static_cast<int>(info.next_scanline)));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    return JpegStep::kNone;
}

JpegOutcome OutcomeOf(JpegStep step, const ErrorState& state) {
    if (step == JpegStep::kNone) return {};
    return {.failed = step, .code = state.code, .text = state.text};
}

}  // namespace

int ReducedSide(int side, int scale) {
    const int divisor = DecoderScale(scale);
    return (side + divisor - 1) / divisor;
}

JpegOutcome JpegDecode(std::span<const std::uint8_t> jpeg, int scale, cDIBSection& target) {
    ErrorState state{};
    InstallErrors(state);
    jpeg_decompress_struct info{};
    info.err = &state.manager;
    jpeg_progress_mgr progress{};
    const JpegStep step = DecodeGuarded(info, state, progress, jpeg, scale, target);
    jpeg_destroy_decompress(&info);
    if (step != JpegStep::kNone) target.CleanUp();
    return OutcomeOf(step, state);
}

JpegOutcome JpegEncode(const cDIBSection& source, int quality, std::vector<std::uint8_t>& jpeg) {
    ErrorState state{};
    InstallErrors(state);
    if (source.empty()) {
        SetText(state, JERR_EMPTY_IMAGE, "Empty JPEG image (DNL not supported)");
        return OutcomeOf(JpegStep::kWrite, state);
    }
    jpeg_compress_struct info{};
    info.err = &state.manager;
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    const JpegStep step = EncodeGuarded(info, state, source, quality, buffer, size);
    jpeg_destroy_compress(&info);
    const std::unique_ptr<unsigned char, void (*)(void*)> owned(buffer, std::free);
    if (step == JpegStep::kNone) jpeg.assign(buffer, buffer + size);
    return OutcomeOf(step, state);
}

}  // namespace pictures
