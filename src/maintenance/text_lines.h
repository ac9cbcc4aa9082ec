// TextLines: the lines of a file of single-byte text (code page 1252), read piece by piece. A line
// ends with CR, LF, CR LF or the end of the file. Lines longer than kMaxLineBytes are returned
// empty: such a file is not text.
#pragma once

#include "base/status.h"
#include "jet/pages/file_system.h"

#include <QtCore/QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace maintenance {

class TextLines {
public:
    static constexpr std::size_t kMaxLineBytes = std::size_t{16} << 20;  // bytes
    static constexpr std::size_t kPieceBytes = std::size_t{64} << 10;

    static base::Result<TextLines> Open(jet::FileSystem& files, const QString& path);

    // nullopt: the end of the file, or of what can be read of it (see status()).
    std::optional<QString> Next();
    // Why reading ended early; ok at the end of the file.
    const base::Status& status() const { return status_; }

private:
    TextLines(std::unique_ptr<jet::File> file, std::uint64_t size);
    bool FillPiece();
    void Take(std::span<const std::byte> bytes);

    std::unique_ptr<jet::File> file_;
    std::uint64_t size_;
    std::uint64_t offset_ = 0;  // of what follows the piece
    std::vector<std::byte> piece_;
    std::size_t position_ = 0;  // in the piece
    std::vector<std::byte> line_;
    bool too_long_ = false;
    bool after_cr_ = false;  // a LF at the position belongs to the line before
    base::Status status_;
};

}  // namespace maintenance
