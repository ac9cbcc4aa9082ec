// FindQuery: what is typed into the Find field, understood.
//
//     taxi "two words"      both texts, in any field of the table
//     -word                 not this text
//     author:bob            in this field; also name, file, company, year, version
//     year:>1980            a number; also times; <, <=, >=, = and 1980..1989
//     played:2003-05        a date, the whole month; also added, filedate; 2003, 2003-05-17,
//     5/17/2003 is:missing            also favourite, pinmame, played, unplayed
//
// Everything must hold. A word with an unknown name before its colon is a text like any other
// ("C:\Tables"). A part that is not finished yet ("author:", "is:mis", "year:>") asks for nothing.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringView>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace browser {

// The searched texts of a table, in the order in which the index keeps them.
enum class FindField { kName, kFile, kAuthor, kCompany, kYear, kVersion };
inline constexpr std::size_t kFindFieldCount = 6;

enum class FindNumber { kYear, kTimesPlayed };
enum class FindDate { kFileDate, kLastPlayed, kDateAdded };
enum class FindFlag { kMissing, kFavourite, kPinMame, kPlayed, kUnplayed };

// At least `from`, less than `to`.
struct FindRange {
    double from = 0;
    double to = 0;
    bool operator==(const FindRange&) const = default;
};

struct FindTerm {
    bool excluded = false;  // what it says must not hold
    // One of these four.
    std::string text;  // folded (find_fold.h); empty: it is another
    std::optional<FindNumber> number;
    std::optional<FindDate> date;
    std::optional<FindFlag> flag;

    std::optional<FindField> field;  // of the text; nullopt: any
    FindRange range;                 // of the number, or of the date in days since 1899-12-30
    bool operator==(const FindTerm&) const = default;
};

struct FindQuery {
    // A longer text is cut, and terms beyond the limit are left out.
    static constexpr qsizetype kMaxLength = 1000;
    static constexpr std::size_t kMaxTerms = 50;

    std::vector<FindTerm> terms;
    // The first part that cannot be understood, as typed ("year:>x"); nothing is found then. Empty:
    // there is none.
    QString not_understood;

    bool asks_for_something() const { return !terms.empty() && not_understood.isEmpty(); }
    bool Asks(FindFlag flag) const;
    bool operator==(const FindQuery&) const = default;
};

FindQuery ParseFindQuery(QStringView text);

// For what adds and removes whole parts of the text, "is:missing" for example.
bool HasPart(const QString& text, const QString& part);
// With a space behind it, so that one can go on typing.
QString WithPart(const QString& text, const QString& part);
// Without each of them.
QString WithoutPart(const QString& text, const QString& part);

}  // namespace browser
