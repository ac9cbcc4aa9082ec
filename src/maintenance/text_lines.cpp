#include "maintenance/text_lines.h"

#include "base/ansi_text.h"
#include "platform/files.h"

#include <algorithm>
#include <span>

namespace maintenance {
namespace {

constexpr std::byte kCr{'\r'};
constexpr std::byte kLf{'\n'};

bool IsLineEnd(std::byte b) {
    return b == kCr || b == kLf;
}

}  // namespace

base::Result<TextLines> TextLines::Open(jet::FileSystem& files, const QString& path) {
    ASSIGN_OR_RETURN(auto file, files.Open(platform::ToPath(path), jet::OpenMode::kRead));
    ASSIGN_OR_RETURN(const std::uint64_t size, file->Size());
    return TextLines(std::move(file), size);
}

TextLines::TextLines(std::unique_ptr<jet::File> file, std::uint64_t size)
    : file_(std::move(file)), size_(size) {}

bool TextLines::FillPiece() {
    piece_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size_ - offset_, kPieceBytes)));
    position_ = 0;
    if (piece_.empty()) return false;
    status_ = file_->ReadAt(offset_, piece_);
    if (!status_.ok()) {
        piece_.clear();
        size_ = offset_;
        return false;
    }
    offset_ += piece_.size();
    return true;
}

void TextLines::Take(std::span<const std::byte> bytes) {
    if (line_.size() + bytes.size() > kMaxLineBytes) too_long_ = true;
    if (too_long_)
        line_.clear();
    else
        line_.insert(line_.end(), bytes.begin(), bytes.end());
}

std::optional<QString> TextLines::Next() {
    line_.clear();
    too_long_ = false;
    bool has_line = false;
    while (position_ < piece_.size() || FillPiece()) {
        if (after_cr_ && piece_[position_] == kLf) ++position_;
        after_cr_ = false;
        if (position_ == piece_.size()) continue;
        has_line = true;
        const std::span rest = std::span<const std::byte>(piece_).subspan(position_);
        const auto end = std::find_if(rest.begin(), rest.end(), IsLineEnd);
        const auto length = static_cast<std::size_t>(end - rest.begin());
        Take(rest.first(length));
        position_ += length;
        if (end == rest.end()) continue;
        after_cr_ = *end == kCr;
        ++position_;
        break;
    }
    if (!has_line) return std::nullopt;
    return QString::fromStdU16String(base::FromAnsi(line_));
}

}  // namespace maintenance
