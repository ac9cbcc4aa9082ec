// Console: the streams of the program. Results go to the standard output, messages to the standard
// error output; both are UTF-8, but names of files are the bytes of the disk. After a failure to
// write results everything further is dropped, and the program ends with it.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstdint>
#include <string_view>

namespace cli {

class Console {
public:
    virtual ~Console() = default;
    virtual base::Status WriteOut(std::string_view bytes) = 0;
    virtual void WriteError(std::string_view bytes) = 0;
    virtual base::Result<QByteArray> ReadIn(qint64 most) = 0;
    // Whether results may be coloured: a terminal, and nobody objects.
    virtual bool OutIsColoured() const = 0;
    // Whether a person watches the results or the messages.
    virtual bool OutIsTerminal() const = 0;
    virtual bool ErrorShowsProgress() const = 0;

    // A line of results. On a terminal, characters that it would obey are written as escapes.
    void Print(const QString& line);
    // "tavolo-cli: message", with such escapes in any case: messages quote cells and file names.
    void Complain(const QString& message);
    void Complain(const base::Status& failure);
    // Results as they are.
    base::Status Write(std::string_view bytes);
    const base::Status& write_failure() const { return write_failure_; }

    // A line that is written over and over again while something takes long.
    void ShowProgress(std::int64_t done, std::int64_t total);

private:
    base::Status write_failure_;
};

// The streams of this process. NO_COLOR (no-color.org) and TERM=dumb switch colours and progress
// off.
class StandardConsole final : public Console {
public:
    StandardConsole();
    base::Status WriteOut(std::string_view bytes) override;
    void WriteError(std::string_view bytes) override;
    base::Result<QByteArray> ReadIn(qint64 most) override;
    bool OutIsColoured() const override { return OutIsTerminal() && !is_plain_; }
    bool OutIsTerminal() const override { return out_is_terminal_; }
    bool ErrorShowsProgress() const override { return error_is_terminal_ && !is_plain_; }

private:
    bool is_plain_;
    bool out_is_terminal_;
    bool error_is_terminal_;
};

}  // namespace cli
