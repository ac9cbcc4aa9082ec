// ByteCursor: takes integers and pieces off the front of bytes from a file. Past the end it returns
// zeros and empty pieces and stays failed, so that a parser can check once, at its end.
#pragma once

#include "base/byte_reader.h"

namespace jet {

class ByteCursor {
public:
    explicit ByteCursor(std::span<const std::byte> bytes, std::size_t at = 0)
        : bytes_(bytes), at_(at), failed_(at > bytes.size()) {}

    bool failed() const { return failed_; }
    std::size_t position() const { return at_; }
    std::size_t left() const { return failed_ ? 0 : bytes_.size() - at_; }

    template <std::integral T>
    T Take() {
        const auto piece = TakeBytes(sizeof(T));
        return piece.empty() ? T{0} : base::LoadLittle<T>(piece.data());
    }
    std::uint8_t TakeByte() { return Take<std::uint8_t>(); }
    std::span<const std::byte> TakeBytes(std::size_t size) {
        if (size > left()) {
            failed_ = true;
            return {};
        }
        const auto piece = bytes_.subspan(at_, size);
        at_ += size;
        return piece;
    }

private:
    std::span<const std::byte> bytes_;
    std::size_t at_;
    bool failed_;
};

}  // namespace jet
