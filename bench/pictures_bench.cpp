// pictures_bench: decoding a 12-megapixel JPEG at 1:1 and 1:8 and encoding it, as ratios of our
// time to that of djpeg and cjpeg of libjpeg-turbo (whole processes, output to /dev/null) and to
// the codec's own time (the same library called directly, rows into one buffer in its natural
// order). Best of several rounds; below 1 means that we are faster.
#include "pictures/jpeg_codec.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

extern "C" {
#include <jpeglib.h>
}

namespace {

constexpr int kRounds = 5;
constexpr int kWidth = 4000;
constexpr int kHeight = 3000;

double BestSeconds(const std::function<void()>& work) {
    double best = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        work();
        best = std::min(
            best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

pictures::cDIBSection PhotoLike() {
    pictures::cDIBSection section;
    section.Create(kWidth, kHeight, 3);
    unsigned noise = 1;
    for (int y = 0; y < kHeight; ++y) {
        std::uint8_t* row = section.RowFromTop(y);
        for (int x = 0; x < kWidth * 3; ++x) {
            noise = noise * 1664525U + 1013904223U;
            const double wave = std::sin(x * 0.002) * std::cos(y * 0.003 + (x % 3));
            row[x] = static_cast<std::uint8_t>(128 + 100 * wave + (noise >> 28));
        }
    }
    return section;
}

void CodecDecode(const std::vector<std::uint8_t>& jpeg, unsigned scale) {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_BGR;
    info.scale_num = 1;
    info.scale_denom = scale;
    jpeg_start_decompress(&info);
    const std::size_t stride = std::size_t{3} * info.output_width;
    std::vector<std::uint8_t> pixels(stride * info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.data() + stride * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
}

void CodecEncode(pictures::cDIBSection& section) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = kWidth;
    info.image_height = kHeight;
    info.input_components = 3;
    info.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 75, TRUE);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = section.RowFromTop(static_cast<int>(info.next_scanline));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::free(buffer);
}

void RunProgram(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setStandardOutputFile(QStringLiteral("/dev/null"));
    process.start(program, arguments);
    process.waitForFinished(-1);
}

void Print(const char* what, double ours, double codec, double program, const char* name) {
    std::printf("%-22s %8.1f ms   %5.2f x codec   %5.2f x %s\n", what, ours * 1000, ours / codec,
                ours / program, name);
}

}  // namespace

int main() {
    pictures::cDIBSection photo = PhotoLike();
    std::vector<std::uint8_t> jpeg;
    if (!pictures::JpegEncode(photo, 75, jpeg).ok()) return 1;
    const QTemporaryDir folder;
    const QString jpeg_path = folder.filePath(QStringLiteral("photo.jpg"));
    const QString ppm_path = folder.filePath(QStringLiteral("photo.ppm"));
    QFile file(jpeg_path);
    if (!file.open(QIODevice::WriteOnly)) return 1;
    file.write(reinterpret_cast<const char*>(jpeg.data()), static_cast<qint64>(jpeg.size()));
    file.close();
    RunProgram(QStringLiteral("djpeg"), {QStringLiteral("-outfile"), ppm_path, jpeg_path});

    std::printf("%d x %d pixels, JPEG of %.1f MB, best of %d rounds\n", kWidth, kHeight,
                static_cast<double>(jpeg.size()) / 1e6, kRounds);
    for (const unsigned scale : {1U, 8U}) {
        const double ours = BestSeconds([&] {
            pictures::cDIBSection section;
            (void)pictures::JpegDecode(jpeg, static_cast<int>(scale), section);
        });
        const double codec = BestSeconds([&] { CodecDecode(jpeg, scale); });
        const double program = BestSeconds([&] {
            RunProgram(QStringLiteral("djpeg"),
                       {QStringLiteral("-scale"), QStringLiteral("1/%1").arg(scale),
                        QStringLiteral("-bmp"), jpeg_path});
        });
        Print(scale == 1 ? "decode 1:1" : "decode 1:8", ours, codec, program, "djpeg");
    }
    const double ours = BestSeconds([&] {
        std::vector<std::uint8_t> out;
        (void)pictures::JpegEncode(photo, 75, out);
    });
    const double codec = BestSeconds([&] { CodecEncode(photo); });
    const double program = BestSeconds([&] {
        RunProgram(QStringLiteral("cjpeg"),
                   {QStringLiteral("-quality"), QStringLiteral("75"), ppm_path});
    });
    Print("encode", ours, codec, program, "cjpeg");
    return 0;
}
