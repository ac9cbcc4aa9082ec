#include "cfb/byte_source.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

namespace cfb {
namespace {

std::string NameOf(const std::filesystem::path& path) {
    const std::u8string name = path.filename().u8string();
    return {name.begin(), name.end()};
}

class FileSource final : public ByteSource {
public:
    FileSource(std::ifstream file, std::uint64_t size_bytes, std::string name)
        : file_(std::move(file)), size_bytes_(size_bytes), name_(std::move(name)) {}

    std::uint64_t size_bytes() const override { return size_bytes_; }

    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) override {
        file_.clear();
        file_.seekg(static_cast<std::streamoff>(offset));
        file_.read(reinterpret_cast<char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        if (file_) return base::Status::Ok();
        return {base::StatusCode::kIoError,
                name_ + ": cannot be read at byte " + std::to_string(offset)};
    }

private:
    std::ifstream file_;
    std::uint64_t size_bytes_;
    std::string name_;
};

class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}

    std::uint64_t size_bytes() const override { return bytes_.size(); }

    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) override {
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), bytes.size(),
                    bytes.begin());
        return base::Status::Ok();
    }

private:
    std::vector<std::byte> bytes_;
};

}  // namespace

base::Result<std::unique_ptr<ByteSource>> OpenFileSource(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        return base::Status(base::StatusCode::kNotFound, NameOf(path) + ": no such file");
    if (!std::filesystem::is_regular_file(status))
        return base::Status(base::StatusCode::kUnsupported, NameOf(path) + ": not a file");
    std::ifstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0);
    file.open(path, std::ios::binary);
    const std::uint64_t size = std::filesystem::file_size(path, error);
    if (!file || error)
        return base::Status(base::StatusCode::kIoError, NameOf(path) + ": cannot be opened");
    return std::unique_ptr<ByteSource>(
        std::make_unique<FileSource>(std::move(file), size, NameOf(path)));
}

std::unique_ptr<ByteSource> MakeMemorySource(std::vector<std::byte> bytes) {
    return std::make_unique<MemorySource>(std::move(bytes));
}

}  // namespace cfb
