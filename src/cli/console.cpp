#include "cli/console.h"

#include "base/file_names.h"
#include "catalogue/error_report.h"
#include "cli/terminal_text.h"
#include "platform/standard_streams.h"
#include "platform/text_view.h"

#include <cstdlib>
#include <string>

namespace cli {
namespace {

using platform::StandardStream;

bool IsSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool TerminalIsDumb() {
    const char* terminal = std::getenv("TERM");
    return terminal != nullptr && std::string_view(terminal) == "dumb";
}

// Names of files are the bytes that the disk has.
std::string Bytes(const QString& text) {
    return base::EncodeFileName(platform::View(text));
}

}  // namespace

void Console::Print(const QString& line) {
    Write(Bytes(OutIsTerminal() ? ShownText(line) : line) + "\n").Ignore();
}

void Console::Complain(const QString& message) {
    WriteError("tavolo-cli: " + Bytes(ShownText(message)) + "\n");
}

void Console::Complain(const base::Status& failure) {
    Complain(catalogue::FailureText(failure));
}

base::Status Console::Write(std::string_view bytes) {
    if (write_failure_.ok()) write_failure_ = WriteOut(bytes);
    return write_failure_;
}

void Console::ShowProgress(std::int64_t done, std::int64_t total) {
    if (!ErrorShowsProgress() || total <= 0) return;
    // The line is cleared to its end; at the end of the run all of it.
    if (done >= total)
        WriteError("\r\033[K");
    else
        WriteError("\r" + std::to_string(done * 100 / total) + " %\033[K");
}

StandardConsole::StandardConsole()
    : is_plain_(IsSet("NO_COLOR") || TerminalIsDumb()),
      out_is_terminal_(platform::IsTerminal(StandardStream::kOut)),
      error_is_terminal_(platform::IsTerminal(StandardStream::kError)) {}

base::Status StandardConsole::WriteOut(std::string_view bytes) {
    return platform::WriteTo(StandardStream::kOut, bytes);
}

void StandardConsole::WriteError(std::string_view bytes) {
    platform::WriteTo(StandardStream::kError, bytes).Ignore();  // there is nowhere to say it
}

base::Result<QByteArray> StandardConsole::ReadIn(qint64 most) {
    return platform::ReadStandardInput(most);
}

}  // namespace cli
