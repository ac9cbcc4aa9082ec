// The standard streams of a program on the command line.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArray>

#include <string_view>

namespace platform {

enum class StandardStream { kIn, kOut, kError };

// The number of the failure to write to a pipe that nobody reads any more.
inline constexpr int kPipeClosed = 32;

// Writing to such a pipe is a failure from now on and does not end the program.
void KeepGoingWhenPipesClose();

bool IsTerminal(StandardStream stream);

// All of `bytes`, or a Status that says why not. kNoSpace: the disk is full.
base::Status WriteTo(StandardStream stream, std::string_view bytes);

// Everything up to the end. kInvalidArgument: there is more than `most` bytes.
base::Result<QByteArray> ReadStandardInput(qint64 most);

}  // namespace platform
