// Helpers: the JPEG side of the pictures as the capture window uses it: files and memory into a
// cDIBSection and back, with the messages that a user sees.
#pragma once

#include "base/status.h"
#include "pictures/dib_section.h"
#include "platform/user_prompts.h"

#include <cstdint>
#include <span>

namespace pictures::Helpers {

// Every JPEG that the program writes has this quality.
inline constexpr int kJpegQuality = 75;

// Reads the whole file and decodes it (see LoadJPGFromPtr). An error: the file cannot be read;
// nothing was shown.
base::Result<bool> LoadJPG(cDIBSection& target, const QString& path, int scale,
                           platform::UserPrompts& prompts);

// True: `target` holds the picture, reduced to 1/`scale` (1, 2, 4 or 8) while decoding. False,
// after a message: it is empty.
bool LoadJPGFromPtr(cDIBSection& target, std::span<const std::uint8_t> jpeg, int scale,
                    platform::UserPrompts& prompts);

// True: the file was written. False, after a message: the codec failed. An error: the file cannot
// be written. `path` is then the whole new file, or what was there before.
base::Result<bool> SaveJPG(const cDIBSection& source, const QString& path,
                           platform::UserPrompts& prompts);

// Shows the codec's message; the context comes last.
void ReportIJLError(const QString& context, int status, const QString& text,
                    platform::UserPrompts& prompts);

// A zero-terminated text of single bytes; empty for a null address.
QString PtrToString(const char* text);

}  // namespace pictures::Helpers
