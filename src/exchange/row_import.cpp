#include "exchange/row_import.h"

#include "base/marked_text.h"
#include "base/unicode.h"
#include "catalogue/error_report.h"
#include "jet/connection.h"
#include "jet/sql/expressions/bind.h"
#include "jet/tables/database.h"
#include "jet/values/coerce.h"

#include <QtCore/QString>

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace exchange {
namespace {

using base::Result;
using base::Status;

std::u16string Folded(std::u16string_view text) {
    return QStringView(text).toString().toCaseFolded().toStdU16String();
}

std::u16string_view KeyColumn(MatchBy match) {
    switch (match) {
    case MatchBy::kFile:
        return u"FileName";
    case MatchBy::kCrc:
        return u"CRC";
    case MatchBy::kId:
        break;
    }
    return u"ID";
}

// What a column holds when a row does not speak of it. A default that the engine does not
// understand gives no value, as in its INSERT.
std::vector<jet::Value> Defaults(jet::Connection& connection, const jet::TableDesign& design) {
    std::vector<jet::Value> values;
    for (const jet::ColumnDesign& column : design.columns) {
        jet::Value value;
        if (column.default_value && !column.autonumber) {
            std::u16string_view text = *column.default_value;
            if (text.starts_with(u'=')) text.remove_prefix(1);
            auto row = connection.Execute(u"Select " + std::u16string(text));
            if (row.ok() && !row->Eof())
                value = jet::Coerce(row->Fields(std::size_t{0}).value_or({}), column).value_or({});
        }
        values.push_back(std::move(value));
    }
    return values;
}

// The rows of the catalogue by the column that is matched.
class KeyIndex {
public:
    explicit KeyIndex(MatchBy match) : match_(match) {}

    void Add(const jet::Value& value, jet::RowId row) {
        if (value.is_null()) return;
        const std::u16string text = jet::ToText(value);
        exact_[text].push_back(row);
        if (match_ != MatchBy::kId) folded_[Folded(text)].push_back(row);
    }
    // Empty: none. More than one: the key does not tell.
    std::vector<jet::RowId> Find(const jet::Value& value) const {
        const std::u16string text = jet::ToText(value);
        if (const auto found = exact_.find(text); found != exact_.end()) return found->second;
        if (match_ == MatchBy::kId) return {};
        const auto found = folded_.find(Folded(text));
        return found == folded_.end() ? std::vector<jet::RowId>() : found->second;
    }

private:
    using Map = std::unordered_map<std::u16string, std::vector<jet::RowId>>;
    MatchBy match_;
    Map exact_;
    Map folded_;
};

class Importer {
public:
    Importer(jet::Table& table, RowSource& source, const ImportOptions& options,
             std::vector<jet::Value> defaults, const base::RunSteps& steps)
        : table_(table), source_(source), options_(options), steps_(steps),
          defaults_(std::move(defaults)), index_(options.match),
          id_column_(jet::sql::FindColumn(table.design(), u"ID")),
          key_column_(jet::sql::FindColumn(table.design(), KeyColumn(options.match))) {
        for (std::size_t i = 0; i < table.design().columns.size(); ++i)
            all_columns_.push_back(i);
    }

    Status Run() {
        RETURN_IF_ERROR(ReadKeys());
        SourceRow row;
        bool has_rows = false;
        while (!has_failed_ && source_.Next(row)) {
            has_rows = true;
            FindPlaces();
            if (source_.columns_are_known() && !HasKeyColumn()) break;
            RETURN_IF_ERROR(TakeRow(row));
            RETURN_IF_ERROR(TellSteps(row.line));
        }
        FindPlaces();
        if (has_rows && !HasKeyColumn()) NoteMissingKeyColumn();
        if (!source_.status().ok()) Note({0, source_.status().message()});
        NoteUnknownColumns();
        return {};
    }
    Status TellSteps(std::int64_t line) {
        constexpr int kRowsApart = 64;
        if (++rows_ % kRowsApart != 0) return {};
        if (steps_.progress) steps_.progress(std::min(line, options_.lines), options_.lines);
        return base::StatusOf(steps_.stop);
    }
    ImportReport TakeReport() { return std::move(report_); }

private:
    Status ReadKeys() {
        if (key_column_ == all_columns_.size())
            return {base::StatusCode::kNotFound,
                    "The catalogue has no column " + base::ToUtf8(KeyColumn(options_.match)) + "."};
        ASSIGN_OR_RETURN(const auto cursor, table_.Scan());
        while (true) {
            ASSIGN_OR_RETURN(const auto row, cursor->Next());
            if (!row) return {};
            jet::Value key;
            RETURN_IF_ERROR(cursor->Read(std::span(&key_column_, 1), std::span(&key, 1)));
            index_.Add(key, *row);
        }
    }

    // Where in the table the columns of the file are.
    void FindPlaces() {
        while (places_.size() < source_.columns().size()) {
            const std::u16string& name = source_.columns()[places_.size()];
            const std::size_t place = jet::sql::FindColumn(table_.design(), name);
            if (place == all_columns_.size())
                report_.unknown_columns.push_back(name);
            else if (std::find(places_.begin(), places_.end(), place) != places_.end())
                Note({0, "the column " + base::ToUtf8(name) + " is there twice"});
            places_.push_back(place);
        }
    }

    bool HasKeyColumn() const {
        return std::find(places_.begin(), places_.end(), key_column_) != places_.end();
    }

    // In place of what each row says about it.
    void NoteMissingKeyColumn() {
        report_.problems.clear();
        report_.problem_count = 0;
        Note({0, "there is no column " + base::ToUtf8(KeyColumn(options_.match)) +
                     ", by which rows are to be found"});
    }

    Status TakeRow(const SourceRow& row) {
        if (!row.problem.empty()) {
            Note({row.line, row.problem});
            return {};
        }
        if (!ReadValues(row)) return {};
        const jet::Value* key = given_[key_column_] ? &*given_[key_column_] : nullptr;
        if (key == nullptr || key->is_null()) return TakeRowWithoutKey(row);
        const std::vector<jet::RowId> found = index_.Find(*key);
        if (found.size() > 1) {
            Note({row.line, std::to_string(found.size()) + " tables have the " +
                                base::ToUtf8(KeyColumn(options_.match)) + " " +
                                base::ToUtf8(jet::ToText(*key))});
            return {};
        }
        const bool is_new = found.empty() ? met_keys_.insert(jet::ToText(*key)).second
                                          : met_rows_.insert(found.front()).second;
        if (!is_new) {
            Note({row.line,
                  "an earlier line has the same " + base::ToUtf8(KeyColumn(options_.match))});
            return {};
        }
        return found.empty() ? AddRow(row) : ChangeRow(row, found.front());
    }

    Status TakeRowWithoutKey(const SourceRow& row) {
        if (options_.match == MatchBy::kId) return AddRow(row);
        Note({row.line, "there is no " + base::ToUtf8(KeyColumn(options_.match)) +
                            " by which the row could be found"});
        return {};
    }

    // False: a cell does not fit its column; all of them are noted.
    bool ReadValues(const SourceRow& row) {
        given_.assign(all_columns_.size(), std::nullopt);
        bool fits = true;
        for (std::size_t i = 0; i < row.cells.size() && i < places_.size(); ++i) {
            if (places_[i] == all_columns_.size() || row.cells[i].kind == Cell::Kind::kAbsent)
                continue;
            auto value = ValueOf(row.cells[i], table_.design().columns[places_[i]]);
            if (!value.ok()) {
                Note({row.line, value.status().message()});
                fits = false;
                continue;
            }
            given_[places_[i]] = std::move(value).value();
        }
        return fits;
    }

    Status AddRow(const SourceRow& row) {
        if (options_.update_only) {
            ++report_.passed_over;
            return {};
        }
        ++report_.added;
        if (!report_.accepted()) return {};
        std::vector<jet::Value> values = defaults_;
        for (std::size_t i = 0; i < given_.size(); ++i)
            if (given_[i] && (i != id_column_ || options_.match == MatchBy::kId))
                values[i] = *given_[i];
        return Stored(row, table_.Insert(values).status());
    }

    Status ChangeRow(const SourceRow& row, jet::RowId place) {
        std::vector<jet::Value> now(all_columns_.size());
        RETURN_IF_ERROR(table_.Read(place, all_columns_, now));
        std::vector<jet::ColumnChange> changes;
        for (std::size_t i = 0; i < given_.size(); ++i)
            if (i != id_column_ && given_[i] && *given_[i] != now[i])
                changes.push_back({i, *given_[i]});
        ++(changes.empty() ? report_.unchanged : report_.changed);
        if (changes.empty() || !report_.accepted()) return {};
        return Stored(row, table_.Update(place, changes));
    }

    // After a change that failed the table can only be put back.
    Status Stored(const SourceRow& row, const Status& stored) {
        if (stored.ok()) return {};
        if (!catalogue::IsValueTrouble(stored)) return stored;
        has_failed_ = true;
        Note({row.line, stored.message()});
        return {};
    }

    void NoteUnknownColumns() {
        if (options_.ignore_unknown) return;
        for (const std::u16string& name : report_.unknown_columns)
            Note({0, "the catalogue has no column " + base::ToUtf8(name)});
    }

    void Note(RowProblem problem) {
        ++report_.problem_count;
        if (report_.problems.size() < ImportReport::kMaxProblems)
            report_.problems.push_back(std::move(problem));
    }

    jet::Table& table_;
    RowSource& source_;
    const ImportOptions& options_;
    const base::RunSteps& steps_;
    std::int64_t rows_ = 0;
    const std::vector<jet::Value> defaults_;
    KeyIndex index_;
    const std::size_t id_column_;
    const std::size_t key_column_;
    std::vector<std::size_t> all_columns_;
    std::vector<std::size_t> places_;
    std::vector<std::optional<jet::Value>> given_;  // the row's, by the table's columns
    // What earlier rows of the file have been: rows of the table, and new ones by their keys.
    std::set<jet::RowId> met_rows_;
    std::unordered_set<std::u16string> met_keys_;
    bool has_failed_ = false;
    ImportReport report_;
};

}  // namespace

Result<ImportReport> ImportRows(jet::Connection& connection, RowSource& source,
                                const ImportOptions& options, const base::RunSteps& steps) {
    if (!connection.is_open())
        return Status(base::StatusCode::kInvalidArgument, "The catalogue is closed.");
    ASSIGN_OR_RETURN(jet::Table * table, connection.database()->FindTable(u"Tables"));
    std::vector<jet::Value> defaults = Defaults(connection, table->design());
    const jet::NamedChange named(connection, MARKED_TEXT("HistoryTexts", "Import"));
    Status outcome = Status(base::StatusCode::kInvalidArgument, "not begun");
    ImportReport report;
    const Status done = connection.Change([&](jet::Database&) -> Status {
        Importer importer(*table, source, options, std::move(defaults), steps);
        outcome = importer.Run();
        if (outcome.ok()) outcome = base::StatusOf(steps.stop);
        report = importer.TakeReport();
        if (!outcome.ok()) return outcome;
        if (report.accepted() && !options.dry_run) return {};
        return {base::StatusCode::kInvalidArgument, "taken back"};
    });
    if (!outcome.ok()) return done;  // it failed, or could not begin
    const bool is_kept = report.accepted() && !options.dry_run;
    if (is_kept) RETURN_IF_ERROR(done);
    return report;
}

}  // namespace exchange
