#include "platform/shell.h"

#include "platform/command_line.h"
#include "platform/windows/documents.h"
#include "platform/windows/last_error.h"
#include "platform/windows/programs.h"
#include "platform/windows/qt_text.h"

namespace platform {
namespace {

class SystemShell final : public Shell {
public:
    base::Status Open(const QString& target) override { return OpenDocument(Wide(target)); }

    // The viewer takes a page of a file as FILE::/PAGE.
    base::Status OpenHelp(const QString& file, const QString& page) override {
        const std::filesystem::path viewer = HelpViewer();
        if (viewer.empty()) return Open(file);
        const QString line = QuoteProgramName(FromWide(viewer.native())) + u' ' +
                             QuoteForCommandLine(file + QStringLiteral("::/") + page);
        const DWORD error = programs_.Start(viewer, Wide(line), ShownAs::kNormal).error;
        return error == ERROR_SUCCESS ? base::Status() : ErrorStatus(error, viewer);
    }

    bool HasHelpViewer() override { return !HelpViewer().empty(); }

    QString SystemInformationTool() override { return FromWide(InformationTool().native()); }

private:
    Programs programs_;
};

}  // namespace

std::unique_ptr<Shell> MakeShell() {
    return std::make_unique<SystemShell>();
}

}  // namespace platform
