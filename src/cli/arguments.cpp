#include "cli/arguments.h"

#include <algorithm>

namespace cli {
namespace {

QString Text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString Quoted(const QString& word) {
    return u'\'' + word + u'\'';
}

}  // namespace

QString Arguments::Value(std::string_view option, const QString& fallback) const {
    const auto found = values_.find(option);
    return found == values_.end() ? fallback : found->second.last();
}

QStringList Arguments::Values(std::string_view option) const {
    const auto found = values_.find(option);
    return found == values_.end() ? QStringList() : found->second;
}

class ArgumentParser {
public:
    explicit ArgumentParser(const QStringList& words) : words_(words) {}

    Arguments Parse() {
        for (; next_ < words_.size() && arguments_.error.isEmpty();) {
            const QString word = words_[next_++];
            if (!only_operands_ && word == u"--")
                only_operands_ = true;
            else if (!only_operands_ && word.startsWith(QLatin1String("--")))
                TakeLong(word.mid(2));
            else if (!only_operands_ && word.size() > 1 && word.startsWith(u'-'))
                TakeShort(word);
            else
                TakeOperand(word);
        }
        if (arguments_.error.isEmpty() && !arguments_.help && !arguments_.version) Check();
        return std::move(arguments_);
    }

private:
    void Fail(const QString& text) { arguments_.error = text; }

    std::vector<const Option*> Known() const {
        std::vector<const Option*> known;
        for (const Option& option : CommonOptions())
            known.push_back(&option);
        if (arguments_.command != nullptr)
            for (const Option& option : arguments_.command->options)
                known.push_back(&option);
        return known;
    }

    void TakeLong(const QString& text) {
        const qsizetype equals = text.indexOf(u'=');
        const QString name = equals < 0 ? text : text.left(equals);
        const Option* option = FindLong(name);
        if (option == nullptr) return;
        if (equals >= 0 && option->value.empty())
            return Fail(QStringLiteral("option '--%1' takes no value").arg(Text(option->name)));
        if (equals >= 0) return Store(*option, text.mid(equals + 1));
        TakeValue(*option);
    }

    const Option* FindLong(const QString& name) {
        std::vector<const Option*> found;
        for (const Option* option : Known()) {
            if (Text(option->name) == name) return option;
            if (!name.isEmpty() && Text(option->name).startsWith(name)) found.push_back(option);
        }
        if (found.size() == 1) return found.front();
        if (found.empty())
            Fail(QStringLiteral("unknown option '--%1'").arg(name));
        else
            Fail(QStringLiteral("option '--%1' may be '--%2' or '--%3'")
                     .arg(name, Text(found[0]->name), Text(found[1]->name)));
        return nullptr;
    }

    void TakeShort(const QString& word) {
        for (qsizetype at = 1; at < word.size() && arguments_.error.isEmpty(); ++at) {
            const auto known = Known();
            const auto found = std::find_if(known.begin(), known.end(), [&](const Option* option) {
                return option->letter != 0 && QLatin1Char(option->letter) == word[at];
            });
            if (found == known.end())
                return Fail(QStringLiteral("unknown option '-%1'").arg(word[at]));
            if ((*found)->value.empty()) {
                Store(**found, {});
            } else if (at + 1 < word.size()) {
                return Store(**found, word.mid(at + 1));
            } else {
                return TakeValue(**found);
            }
        }
    }

    void TakeValue(const Option& option) {
        if (option.value.empty()) return Store(option, {});
        if (next_ >= words_.size())
            return Fail(QStringLiteral("option '--%1' needs a value").arg(Text(option.name)));
        Store(option, words_[next_++]);
    }

    void Store(const Option& option, const QString& value) {
        if (option.name == "help") arguments_.help = true;
        if (option.name == "version") arguments_.version = true;
        QString stored = value;
        if (!option.choices.empty() && !Choose(option, stored)) return;
        arguments_.values_[std::string(option.name)].append(stored);
    }

    // Takes a choice in any letter case and leaves it as the table spells it.
    bool Choose(const Option& option, QString& value) {
        QStringList choices;
        for (const std::string_view choice : option.choices) {
            if (Text(choice).compare(value, Qt::CaseInsensitive) == 0) {
                value = Text(choice);
                return true;
            }
            choices.append(Text(choice));
        }
        Fail(QStringLiteral("%1 is no value of '--%2': it takes %3")
                 .arg(Quoted(value), Text(option.name), choices.join(QStringLiteral(", "))));
        return false;
    }

    void TakeOperand(const QString& word) {
        if (arguments_.command != nullptr) {
            arguments_.operands.append(word);
            return;
        }
        arguments_.command = FindCommand(word.toStdString());
        if (arguments_.command == nullptr)
            Fail(QStringLiteral("unknown command %1").arg(Quoted(word)));
    }

    void Check() {
        const Command* command = arguments_.command;
        if (command == nullptr) return Fail(QStringLiteral("no command"));
        qsizetype least = 0;
        bool repeats = false;
        for (const Operand& operand : command->operands) {
            if (!operand.is_optional) ++least;
            repeats = repeats || operand.repeats;
        }
        const qsizetype given = arguments_.operands.size();
        if (given < least)
            return Fail(QStringLiteral("%1 is missing")
                            .arg(Text(command->operands[static_cast<std::size_t>(given)].name)));
        const auto most = static_cast<qsizetype>(command->operands.size());
        if (!repeats && given > most)
            return Fail(QStringLiteral("%1 is too much").arg(Quoted(arguments_.operands[most])));
        for (const Option& option : command->options)
            if (!option.repeats && arguments_.Values(option.name).size() > 1)
                return Fail(QStringLiteral("option '--%1' is given twice").arg(Text(option.name)));
    }

    const QStringList& words_;
    qsizetype next_ = 0;
    bool only_operands_ = false;
    Arguments arguments_;
};

Arguments ParseArguments(const QStringList& words) {
    return ArgumentParser(words).Parse();
}

}  // namespace cli
