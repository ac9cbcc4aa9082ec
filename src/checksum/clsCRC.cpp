#include "checksum/clsCRC.h"

#include "base/ansi_text.h"
#include "base/file_names.h"
#include "base/unicode.h"
#include "checksum/crc_16.h"
#include "platform/error_numbers.h"

#include <libdeflate.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <system_error>

namespace checksum {
namespace {

// Large enough to make the cost of system calls negligible, small enough to stay in the
// second-level cache between reading and summing.
constexpr std::size_t kChunkBytes = std::size_t{64} << 10;

std::string NameOf(const std::filesystem::path& path) {
    return base::ToUtf8(base::TextOf(path.filename()));
}

// Only ordinary files have a length; a pipe would block.
base::Result<std::uint64_t> LengthOf(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        return base::Status(base::StatusCode::kNotFound, NameOf(path) + ": file not found",
                            platform::kFileNotFound);
    if (!std::filesystem::is_regular_file(status))
        return base::Status(base::StatusCode::kUnsupported, NameOf(path) + ": not a file");
    const std::uint64_t length = std::filesystem::file_size(path, error);
    if (error)
        return base::Status(base::StatusCode::kIoError, NameOf(path) + ": its size cannot be read");
    return length;
}

std::uint32_t UpdateRegister(bool is_crc32, std::uint32_t value, std::span<const std::byte> bytes) {
    // libdeflate complements its argument and its result itself.
    if (is_crc32) return ~libdeflate_crc32(~value, bytes.data(), bytes.size());
    return UpdateCrc16(value, bytes);
}

}  // namespace

std::int32_t clsCRC::AddBytes(std::span<const std::byte> bytes) {
    if (!bytes.empty()) Register() = UpdateRegister(is_crc32_, Register(), bytes);
    return Value();
}

std::int32_t clsCRC::AddString(std::u16string_view text) {
    return AddBytes(base::ToAnsi(text));
}

void clsCRC::Algorithm(std::int32_t selector) {
    is_crc32_ = selector != Crc16;
    Clear();
}

std::int32_t clsCRC::CalculateBytes(std::span<const std::byte> bytes) {
    Clear();
    return AddBytes(bytes);
}

base::Result<std::optional<std::int32_t>> clsCRC::CalculateFile(const std::filesystem::path& path) {
    ASSIGN_OR_RETURN(const std::uint64_t length, LengthOf(path));
    if (length == 0) return std::optional<std::int32_t>();
    std::ifstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0);  // the chunks are the buffer
    file.open(path, std::ios::binary);
    auto value = CalculateStream(file, length);
    if (value.ok()) return value;
    return base::Status(value.status().code(), NameOf(path) + ": " + value.status().message());
}

base::Result<std::optional<std::int32_t>> clsCRC::CalculateStream(std::istream& stream,
                                                                  std::uint64_t length_bytes) {
    buffer_.resize(kChunkBytes);
    clsCRC fresh;
    fresh.Algorithm(is_crc32_ ? Crc32 : Crc16);
    for (std::uint64_t left = length_bytes; left > 0;) {
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(left, kChunkBytes));
        if (!stream.read(reinterpret_cast<char*>(buffer_.data()),
                         static_cast<std::streamsize>(size)))
            return base::Status(base::StatusCode::kIoError, "cannot be read");
        fresh.AddBytes(std::span(buffer_).first(size));
        left -= size;
    }
    Clear();
    Register() = fresh.Register();
    return std::optional(Value());
}

std::int32_t clsCRC::CalculateString(std::u16string_view text) {
    return CalculateBytes(base::ToAnsi(text));
}

std::int32_t clsCRC::Value() const {
    return static_cast<std::int32_t>(is_crc32_ ? ~crc32_ : crc16_ & 0xFFFF);
}

void clsCRC::Value(std::int32_t value) {
    Register() = static_cast<std::uint32_t>(value);
}

void clsCRC::Clear() {
    crc16_ = 0;
    crc32_ = 0xFFFFFFFF;
}

}  // namespace checksum
