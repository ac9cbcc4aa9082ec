// Opening what the system has programs for, and its own tools; knows no Qt.
#pragma once

#include "base/status.h"

#include <filesystem>
#include <string>

namespace platform {

// The system's action "open", in a normal window. `target`: a file or an address; never read by a
// command interpreter. kNotFound: there is no program for it, or no such file.
base::Status OpenDocument(const std::wstring& target);
// The viewer of help files (.chm); empty: there is none.
std::filesystem::path HelpViewer();
// The tool that shows what this computer is, where the registry names it; empty: it names none that
// is there.
std::filesystem::path InformationTool();

}  // namespace platform
