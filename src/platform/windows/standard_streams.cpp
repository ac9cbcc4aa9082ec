#include "platform/standard_streams.h"

#include "base/unicode.h"
#include "platform/windows/last_error.h"
#include "platform/windows/windows_header.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{64} << 10;

HANDLE HandleOf(StandardStream stream) {
    switch (stream) {
    case StandardStream::kIn:
        return GetStdHandle(STD_INPUT_HANDLE);
    case StandardStream::kOut:
        return GetStdHandle(STD_OUTPUT_HANDLE);
    case StandardStream::kError:
        break;
    }
    return GetStdHandle(STD_ERROR_HANDLE);
}

bool IsClosedPipe(DWORD error) {
    return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA ||
           error == ERROR_PIPE_NOT_CONNECTED;
}

base::Status Failure(DWORD error) {
    const base::Status failure = ErrorStatus(error, L"standard stream");
    return {failure.code(), failure.message(),
            IsClosedPipe(error) ? kPipeClosed : failure.number()};
}

// A console shows texts whatever its code page is.
base::Status WriteToConsole(HANDLE console, std::string_view bytes) {
    const std::u16string text = base::ToUtf16(bytes);
    std::wstring_view rest(reinterpret_cast<const wchar_t*>(text.data()), text.size());
    while (!rest.empty()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min<std::size_t>(rest.size(), 8192));
        if (!WriteConsoleW(console, rest.data(), wanted, &count, nullptr))
            return Failure(GetLastError());
        rest.remove_prefix(count);
    }
    return {};
}

}  // namespace

// Such a writing fails by itself on this system.
void KeepGoingWhenPipesClose() {}

bool IsTerminal(StandardStream stream) {
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

base::Status WriteTo(StandardStream stream, std::string_view bytes) {
    const HANDLE handle = HandleOf(stream);
    if (IsTerminal(stream)) return WriteToConsole(handle, bytes);
    while (!bytes.empty()) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kPieceBytes));
        if (!::WriteFile(handle, bytes.data(), wanted, &count, nullptr))
            return Failure(GetLastError());
        if (count == 0) return Failure(ERROR_DISK_FULL);
        bytes.remove_prefix(count);
    }
    return {};
}

base::Result<QByteArray> ReadStandardInput(qint64 most) {
    QByteArray bytes;
    QByteArray piece(static_cast<qsizetype>(kPieceBytes), '\0');
    while (true) {
        DWORD count = 0;
        if (!::ReadFile(HandleOf(StandardStream::kIn), piece.data(),
                        static_cast<DWORD>(piece.size()), &count, nullptr)) {
            const DWORD error = GetLastError();
            if (IsClosedPipe(error)) return bytes;
            return Failure(error);
        }
        if (count == 0) return bytes;
        bytes.append(piece.constData(), static_cast<qsizetype>(count));
        if (bytes.size() > most)
            return base::Status(base::StatusCode::kInvalidArgument, "There is too much to read.");
    }
}

}  // namespace platform
