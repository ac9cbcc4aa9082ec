#include "browser/find_query.h"

#include "browser/find_fold.h"

#include <QtCore/QDate>

#include <algorithm>
#include <array>
#include <limits>

namespace browser {
namespace {

constexpr double kNoEnd = std::numeric_limits<double>::infinity();
constexpr qsizetype kMaxDigits = 9;

// A name that may stand before a colon. A year is looked at as a number when it is compared, and as
// a text otherwise.
struct Name {
    QStringView name;
    std::optional<FindField> field{};
    std::optional<FindNumber> number{};
    std::optional<FindDate> date{};
    bool is_flag = false;
};

constexpr std::array kNames = {
    Name{.name = u"name", .field = FindField::kName},
    Name{.name = u"file", .field = FindField::kFile},
    Name{.name = u"author", .field = FindField::kAuthor},
    Name{.name = u"company", .field = FindField::kCompany},
    Name{.name = u"year", .field = FindField::kYear, .number = FindNumber::kYear},
    Name{.name = u"version", .field = FindField::kVersion},
    Name{.name = u"times", .number = FindNumber::kTimesPlayed},
    Name{.name = u"filedate", .date = FindDate::kFileDate},
    Name{.name = u"played", .date = FindDate::kLastPlayed},
    Name{.name = u"added", .date = FindDate::kDateAdded},
    Name{.name = u"is", .is_flag = true},
};

struct FlagName {
    QStringView name;
    FindFlag flag;
};

constexpr std::array kFlags = {
    FlagName{u"missing", FindFlag::kMissing},    FlagName{u"favourite", FindFlag::kFavourite},
    FlagName{u"favorite", FindFlag::kFavourite}, FlagName{u"pinmame", FindFlag::kPinMame},
    FlagName{u"vpinmame", FindFlag::kPinMame},   FlagName{u"played", FindFlag::kPlayed},
    FlagName{u"unplayed", FindFlag::kUnplayed},
};

// A part of the typed text: what stands between spaces that are not between quotes.
struct Part {
    QStringView whole;  // as typed
    bool excluded = false;
    QStringView name;  // before the colon; null: there is none
    QStringView value;
};

class PartReader {
public:
    explicit PartReader(QStringView text) : text_(text) {}

    // nullopt: there is none left.
    std::optional<Part> Next() {
        while (at_ < text_.size() && text_[at_].isSpace())
            ++at_;
        if (at_ == text_.size()) return std::nullopt;
        const qsizetype start = at_;
        Part part;
        if (text_[at_] == u'-' && at_ + 1 < text_.size() && !text_[at_ + 1].isSpace()) {
            part.excluded = true;
            ++at_;
        }
        part.name = TakeName();
        part.value = TakeValue();
        part.whole = text_.sliced(start, at_ - start);
        return part;
    }

private:
    QStringView TakeName() {
        qsizetype end = at_;
        while (end < text_.size() && text_[end].isLetter())
            ++end;
        if (end == at_ || end == text_.size() || text_[end] != u':') return {};
        const QStringView name = text_.sliced(at_, end - at_);
        at_ = end + 1;
        return name;
    }
    // A quote that is not closed reaches to the end.
    QStringView TakeValue() {
        if (at_ < text_.size() && text_[at_] == u'"') {
            const qsizetype close = text_.indexOf(u'"', at_ + 1);
            const qsizetype end = close < 0 ? text_.size() : close;
            const QStringView value = text_.sliced(at_ + 1, end - at_ - 1);
            at_ = close < 0 ? end : end + 1;
            return value;
        }
        const qsizetype start = at_;
        while (at_ < text_.size() && !text_[at_].isSpace())
            ++at_;
        return text_.sliced(start, at_ - start);
    }

    QStringView text_;
    qsizetype at_ = 0;
};

std::optional<int> WholeNumber(QStringView text) {
    const bool is_number =
        !text.isEmpty() && text.size() <= kMaxDigits &&
        std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (!is_number) return std::nullopt;
    return text.toInt();
}

std::optional<FindRange> RangeOfNumber(QStringView text) {
    const auto number = WholeNumber(text);
    if (!number) return std::nullopt;
    return FindRange{double(*number), double(*number) + 1};
}

double Days(const QDate& date) {
    return double(QDate(1899, 12, 30).daysTo(date));
}

// A year, a month or a day.
std::optional<FindRange> RangeOfDate(QStringView text) {
    const bool is_us = text.contains(u'/');
    std::array<int, 3> numbers{};
    const auto pieces = text.split(is_us ? u'/' : u'-');
    if (pieces.size() > 3 || (is_us && pieces.size() != 3)) return std::nullopt;
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const auto number = WholeNumber(pieces[i]);
        if (!number) return std::nullopt;
        numbers.at(static_cast<std::size_t>(i)) = *number;
    }
    if (is_us) numbers = {numbers[2], numbers[0], numbers[1]};
    const auto [year, month, day] = numbers;
    if (year < 100 || year > 9999) return std::nullopt;
    const QDate first(year, pieces.size() > 1 ? month : 1, pieces.size() > 2 ? day : 1);
    if (!first.isValid()) return std::nullopt;
    const QDate end = pieces.size() == 1   ? first.addYears(1)
                      : pieces.size() == 2 ? first.addMonths(1)
                                           : first.addDays(1);
    return FindRange{Days(first), Days(end)};
}

// The length of the comparison at the start of a value; 0: there is none.
qsizetype ComparisonLength(QStringView value) {
    if (value.startsWith(QLatin1String(">=")) || value.startsWith(QLatin1String("<="))) return 2;
    return !value.isEmpty() && (value[0] == u'>' || value[0] == u'<' || value[0] == u'=') ? 1 : 0;
}

FindRange Compared(QStringView comparison, const FindRange& with) {
    if (comparison == u">") return {with.to, kNoEnd};
    if (comparison == u">=") return {with.from, kNoEnd};
    if (comparison == u"<") return {-kNoEnd, with.from};
    if (comparison == u"<=") return {-kNoEnd, with.to};
    return with;
}

// The range that a value says, ">1980" or "1980..1989"; nullopt: it cannot be understood.
template <typename RangeOf>
std::optional<FindRange> SaidRange(QStringView value, RangeOf range_of) {
    if (const qsizetype dots = value.indexOf(QLatin1String("..")); dots >= 0) {
        const auto first = range_of(value.first(dots));
        const auto last = range_of(value.sliced(dots + 2));
        if (!first || !last) return std::nullopt;
        return FindRange{first->from, last->to};
    }
    const qsizetype length = ComparisonLength(value);
    const auto with = range_of(value.sliced(length));
    if (!with) return std::nullopt;
    return Compared(value.first(length), *with);
}

// Still being typed: nothing, or a comparison or range without its last number.
bool IsUnfinished(QStringView value) {
    return value.size() == ComparisonLength(value) || value.endsWith(u'.');
}

bool IsComparison(QStringView value) {
    return ComparisonLength(value) > 0 || value.contains(QLatin1String("..")) ||
           value.endsWith(u'.');
}

// Turns parts into terms.
class Terms {
public:
    explicit Terms(FindQuery& query) : query_(query) {}

    void Add(const Part& part) {
        if (query_.terms.size() >= FindQuery::kMaxTerms) return;
        FindTerm term;
        term.excluded = part.excluded;
        const auto* const name =
            std::find_if(kNames.begin(), kNames.end(), [&](const Name& candidate) {
                return part.name.compare(candidate.name, Qt::CaseInsensitive) == 0;
            });
        if (part.name.isNull() || name == kNames.end())
            AddWord(term, PlainText(part));
        else if (name->is_flag)
            AddFlag(term, part);
        else if (name->field && !(name->number && IsComparison(part.value)))
            AddText(Of(term, *name->field), part.value);
        else
            AddRange(term, *name, part);
    }

private:
    // With the name that turned out to be none.
    static QStringView PlainText(const Part& part) {
        if (part.name.isNull()) return part.value;
        return part.whole.sliced(part.excluded ? 1 : 0);
    }
    // A lone minus is the start of a word that is not wanted.
    void AddWord(const FindTerm& term, QStringView word) {
        if (word != u"-") AddText(term, word);
    }
    static FindTerm Of(FindTerm term, FindField field) {
        term.field = field;
        return term;
    }
    void AddText(FindTerm term, QStringView text) {
        AppendFolded(text, term.text);
        if (!term.text.empty()) query_.terms.push_back(std::move(term));
    }
    void AddFlag(FindTerm term, const Part& part) {
        bool may_become_one = false;
        for (const FlagName& flag : kFlags) {
            if (part.value.compare(flag.name, Qt::CaseInsensitive) == 0) {
                term.flag = flag.flag;
                query_.terms.push_back(std::move(term));
                return;
            }
            may_become_one |= flag.name.startsWith(part.value, Qt::CaseInsensitive);
        }
        if (!may_become_one) Refuse(part);
    }
    void AddRange(FindTerm term, const Name& name, const Part& part) {
        if (IsUnfinished(part.value)) return;
        const auto range =
            name.number ? SaidRange(part.value, RangeOfNumber) : SaidRange(part.value, RangeOfDate);
        if (!range) return Refuse(part);
        term.number = name.number;
        term.date = name.date;
        term.range = *range;
        query_.terms.push_back(std::move(term));
    }
    void Refuse(const Part& part) {
        if (query_.not_understood.isEmpty()) query_.not_understood = part.whole.toString();
    }

    FindQuery& query_;
};

}  // namespace

bool FindQuery::Asks(FindFlag flag) const {
    return std::any_of(terms.begin(), terms.end(),
                       [flag](const FindTerm& term) { return term.flag == flag; });
}

FindQuery ParseFindQuery(QStringView text) {
    FindQuery query;
    Terms terms(query);
    PartReader parts(text.first(std::min(text.size(), FindQuery::kMaxLength)));
    while (const auto part = parts.Next())
        terms.Add(*part);
    return query;
}

bool HasPart(const QString& text, const QString& part) {
    PartReader parts(text);
    while (const auto found = parts.Next())
        if (found->whole.compare(part, Qt::CaseInsensitive) == 0) return true;
    return false;
}

QString WithPart(const QString& text, const QString& part) {
    const QString before = text.trimmed();
    return (before.isEmpty() ? QString() : before + u' ') + part + u' ';
}

QString WithoutPart(const QString& text, const QString& part) {
    QString rest;
    PartReader parts(text);
    while (const auto found = parts.Next())
        if (found->whole.compare(part, Qt::CaseInsensitive) != 0)
            rest += found->whole.toString() + u' ';
    return rest;
}

}  // namespace browser
