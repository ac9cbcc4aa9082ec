#include "browser/find_index.h"

#include "browser/find_fold.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace browser {
namespace {

constexpr char kFieldEnd = '\x1F';  // folded texts have none
constexpr std::size_t kBlockSize = std::size_t{1} << 20;
// Of one field: no longer text makes an offset in a block overflow.
constexpr qsizetype kMaxFieldLength = 100'000;

constexpr std::array kDateDetails = {kFileDateDetail, kLastPlayedDetail, kDateAddedDetail};

// The first number of up to four digits: 1980 in "1980?" and in "(c) 1980"; 0: there is none.
std::int32_t YearIn(QStringView text) {
    const auto is_digit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    const auto* const first = std::find_if(text.begin(), text.end(), is_digit);
    const auto* const last = std::find_if_not(first, text.end(), is_digit);
    if (last - first > 4) return 0;
    return QStringView(first, last).toInt();
}

QString FieldOf(const TableSnapshot& tables, std::size_t table, std::size_t field) {
    switch (static_cast<FindField>(field)) {
    case FindField::kName:
        return tables.DisplayName(table);
    case FindField::kFile:
        return tables.FileName(table);
    case FindField::kAuthor:
        return tables.DetailText(table, kAuthorDetail);
    case FindField::kCompany:
        return tables.DetailText(table, kCompanyDetail);
    case FindField::kYear:
        return tables.DetailText(table, kYearDetail);
    case FindField::kVersion:
        return tables.Version(table);
    }
    return {};
}

}  // namespace

std::unique_ptr<const FindIndex> FindIndex::Make(TableSnapshotPointer tables, const Stop& stop) {
    std::unique_ptr<FindIndex> index(new FindIndex(std::move(tables)));
    const std::size_t count = index->tables_->size();
    index->years_.reserve(count);
    for (std::size_t table = 0; table < count; ++table) {
        if (stop()) return nullptr;
        index->tables_->ExpectAfter(table);
        index->Add(table);
    }
    index->CountBytes();
    return index;
}

void FindIndex::Add(std::size_t table) {
    if (blocks_.empty() || blocks_.back().text.size() >= kBlockSize) {
        if (!blocks_.empty()) blocks_.back().text.shrink_to_fit();
        blocks_.emplace_back().first_table = table;
    }
    Block& block = blocks_.back();
    for (std::size_t field = 0; field < kFindFieldCount; ++field) {
        const QString text = FieldOf(*tables_, table, field);
        AppendFolded(QStringView(text).left(kMaxFieldLength), block.text);
        block.text += kFieldEnd;
    }
    block.ends.push_back(static_cast<std::uint32_t>(block.text.size()));
    years_.push_back(YearIn(tables_->DetailText(table, kYearDetail)));
}

void FindIndex::CountBytes() {
    for (const Block& block : blocks_)
        for (const char c : block.text)
            ++byte_counts_[static_cast<unsigned char>(c)];
}

std::vector<std::uint32_t> FindIndex::Find(const FindQuery& query,
                                           const IsMissing& is_missing) const {
    std::vector<std::uint32_t> found;
    if (!query.asks_for_something()) return found;
    Marks all(tables_->size(), 1);
    for (const FindTerm& term : query.terms) {
        const Marks marks = MarksOf(term, is_missing);
        const char wanted = term.excluded ? 0 : 1;
        for (std::size_t table = 0; table < all.size(); ++table)
            all[table] = static_cast<char>(all[table] & (marks[table] == wanted ? 1 : 0));
    }
    for (std::size_t table = 0; table < all.size(); ++table)
        if (all[table] != 0) found.push_back(static_cast<std::uint32_t>(table));
    return found;
}

FindIndex::Marks FindIndex::MarksOf(const FindTerm& term, const IsMissing& is_missing) const {
    if (!term.text.empty()) return MarksOfText(term);
    Marks marks(tables_->size(), 0);
    for (std::size_t table = 0; table < marks.size(); ++table) {
        const bool is_meant =
            term.flag ? HasFlag(table, *term.flag, is_missing) : IsInRange(table, term);
        marks[table] = is_meant ? 1 : 0;
    }
    return marks;
}

bool FindIndex::HasFlag(std::size_t table, FindFlag flag, const IsMissing& is_missing) const {
    switch (flag) {
    case FindFlag::kMissing:
        return is_missing(table);
    case FindFlag::kFavourite:
        return tables_->Favorite(table);
    case FindFlag::kPinMame:
        return tables_->PinMame(table);
    case FindFlag::kPlayed:
        return tables_->TimesPlayed(table) > 0;
    case FindFlag::kUnplayed:
        return tables_->TimesPlayed(table) <= 0;
    }
    return false;
}

bool FindIndex::IsInRange(std::size_t table, const FindTerm& term) const {
    const auto is_in = [&](double value) {
        return value >= term.range.from && value < term.range.to;
    };
    if (term.number == FindNumber::kTimesPlayed) return is_in(tables_->TimesPlayed(table));
    if (term.number) return years_[table] != 0 && is_in(years_[table]);
    const auto date =
        tables_->DetailDate(table, kDateDetails.at(static_cast<std::size_t>(*term.date)));
    return date && is_in(*date);
}

FindIndex::Marks FindIndex::MarksOfText(const FindTerm& term) const {
    Marks marks(tables_->size(), 0);
    const std::size_t rare = RarestByte(term.text);
    for (const Block& block : blocks_)
        MarkText(block, term, rare, marks);
    return marks;
}

// The place of the byte that the fewest texts have: looking for that one passes over most of them.
std::size_t FindIndex::RarestByte(const std::string& text) const {
    const auto count = [this](char c) { return byte_counts_[static_cast<unsigned char>(c)]; };
    const auto rarest = std::min_element(text.begin(), text.end(),
                                         [&](char a, char b) { return count(a) < count(b); });
    return static_cast<std::size_t>(rarest - text.begin());
}

void FindIndex::MarkText(const Block& block, const FindTerm& term, std::size_t rare,
                         Marks& marks) const {
    const std::string& text = block.text;
    const std::size_t length = term.text.size();
    std::size_t row = 0;
    std::size_t at = 0;
    while (at + length <= text.size()) {
        const void* const found =
            std::memchr(text.data() + at + rare, term.text[rare], text.size() - at - length + 1);
        if (found == nullptr) return;
        at = static_cast<std::size_t>(static_cast<const char*>(found) - text.data()) - rare;
        if (std::memcmp(text.data() + at, term.text.data(), length) != 0) {
            ++at;
            continue;
        }
        while (block.ends[row] <= at)
            ++row;
        const auto start =
            text.begin() + static_cast<std::ptrdiff_t>(row == 0 ? 0 : block.ends[row - 1]);
        const bool is_meant =
            !term.field || std::count(start, text.begin() + static_cast<std::ptrdiff_t>(at),
                                      kFieldEnd) == static_cast<int>(*term.field);
        if (is_meant) marks[block.first_table + row] = 1;
        at = is_meant ? block.ends[row] : at + 1;
    }
}

}  // namespace browser
