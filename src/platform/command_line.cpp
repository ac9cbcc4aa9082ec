#include "platform/command_line.h"

namespace platform {
namespace {

bool IsBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

class Splitter {
public:
    explicit Splitter(QStringView line) : line_(line) {}

    QStringList Split() {
        if (line_.isEmpty()) return {};
        QStringList arguments{ProgramName()};
        for (SkipBlanks(); !AtEnd(); SkipBlanks())
            arguments.push_back(Argument());
        return arguments;
    }

private:
    bool AtEnd() const { return next_ >= line_.size(); }
    bool Sees(char16_t c) const { return !AtEnd() && line_[next_] == c; }
    void SkipBlanks() {
        while (!AtEnd() && IsBlank(line_[next_]))
            ++next_;
    }

    QString ProgramName() {
        QString name;
        bool quoted = false;
        for (; !AtEnd() && (quoted || !IsBlank(line_[next_])); ++next_) {
            if (!Sees(u'"')) {
                name += line_[next_];
            } else if (quoted && next_ + 1 < line_.size() && line_[next_ + 1] == u'"') {
                name += line_[next_++];
            } else {
                quoted = !quoted;
            }
        }
        return name;
    }

    QString Argument() {
        QString argument;
        bool quoted = false;
        while (!AtEnd() && (quoted || !IsBlank(line_[next_]))) {
            if (Sees(u'\\'))
                TakeBackslashes(argument);
            else if (Sees(u'"'))
                quoted = TakeQuote(argument, quoted);
            else
                argument += line_[next_++];
        }
        return argument;
    }

    void TakeBackslashes(QString& argument) {
        qsizetype count = 0;
        for (; Sees(u'\\'); ++next_)
            ++count;
        if (!Sees(u'"')) {
            argument += QString(count, u'\\');
            return;
        }
        argument += QString(count / 2, u'\\');
        if (count % 2 != 0) argument += line_[next_++];
    }

    // True: what follows is quoted.
    bool TakeQuote(QString& argument, bool quoted) {
        ++next_;
        if (!quoted || !Sees(u'"')) return !quoted;
        argument += line_[next_++];
        return true;
    }

    QStringView line_;
    qsizetype next_ = 0;
};

}  // namespace

QStringList SplitCommandLine(const QString& command_line) {
    return Splitter(command_line).Split();
}

QString QuoteForCommandLine(const QString& text) {
    QString quoted(u'"');
    qsizetype backslashes = 0;
    for (const QChar c : text) {
        if (c == u'"') quoted += QString(backslashes + 1, u'\\');
        backslashes = c == u'\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    return quoted + QString(backslashes, u'\\') + u'"';
}

QString QuoteProgramName(const QString& name) {
    return u'"' + QString(name).replace(u'"', QLatin1String("\"\"")) + u'"';
}

}  // namespace platform
