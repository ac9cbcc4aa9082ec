#include "exchange/row_source.h"

#include "exchange/csv_reader.h"
#include "exchange/json_rows.h"
#include "exchange/wtf8.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>

namespace exchange {
namespace {

constexpr std::size_t kMaxColumns = 1000;  // a table has at most 255

class CsvSource final : public RowSource {
public:
    CsvSource(std::string_view bytes, bool unescape_formulas)
        : reader_(bytes), unescape_formulas_(unescape_formulas) {
        CsvRecord head;
        if (!reader_.Next(head)) {
            status_ = reader_.status().ok()
                          ? base::Status(base::StatusCode::kInvalidArgument,
                                         "line 1: the names of the columns are missing")
                          : reader_.status();
            return;
        }
        for (const CsvField& field : head.fields)
            AddColumn(field);
    }

    const std::vector<std::u16string>& columns() const override { return columns_; }
    bool columns_are_known() const override { return true; }
    const base::Status& status() const override { return status_; }

    bool Next(SourceRow& row) override {
        if (!status_.ok()) return false;
        do {
            if (!reader_.Next(record_)) {
                status_ = reader_.status();
                return false;
            }
        } while (IsEmptyLine());
        Take(row);
        return true;
    }

private:
    void AddColumn(const CsvField& field) {
        auto name = FromWtf8(field.text);
        const bool is_new =
            name && std::find(columns_.begin(), columns_.end(), *name) == columns_.end();
        if (!status_.ok()) return;
        if (!is_new || name->empty())
            status_ = {base::StatusCode::kInvalidArgument,
                       "line 1: \"" + field.text + "\" is not the name of a column, or is twice"};
        else
            columns_.push_back(std::move(*name));
    }

    bool IsEmptyLine() const {
        return columns_.size() > 1 && record_.fields.size() == 1 && record_.fields[0] == CsvField{};
    }

    void Take(SourceRow& row) {
        row.line = record_.line;
        row.problem.clear();
        row.cells.assign(record_.fields.size(), Cell::Null());
        if (row.cells.size() != columns_.size())
            row.problem = std::to_string(row.cells.size()) + " fields where there are " +
                          std::to_string(columns_.size()) + " columns";
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            const CsvField& field = record_.fields[i];
            if (field.text.empty() && !field.quoted) continue;
            auto text = FromWtf8(field.text);
            if (!text) row.problem = "the text is not UTF-8";
            row.cells[i] = Cell::Text(std::move(text).value_or(std::u16string()));
            if (unescape_formulas_) UnescapeFormula(row.cells[i].text);
        }
    }

    CsvReader reader_;
    bool unescape_formulas_;
    CsvRecord record_;
    std::vector<std::u16string> columns_;
    base::Status status_;
};

class JsonSource final : public RowSource {
public:
    explicit JsonSource(std::string_view bytes) : rows_(bytes, kSchemaVersion) {}

    const std::vector<std::u16string>& columns() const override { return columns_; }
    bool columns_are_known() const override { return false; }
    const base::Status& status() const override { return rows_.status(); }

    bool Next(SourceRow& row) override {
        const auto found = rows_.Next();
        if (!found) return false;
        row.line = found->line;
        row.problem.clear();
        row.cells.assign(columns_.size(), Cell());
        Parse(found->text, row);
        return true;
    }

private:
    void Parse(std::string_view text, SourceRow& row) {
        QJsonParseError error;
        auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
        // Qt drops a U+FEFF at the start of a text unless it is escaped. Outside of texts it is no
        // JSON, neither this way nor that.
        bytes.replace("\xEF\xBB\xBF", "\\ufeff");
        const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
        if (error.error != QJsonParseError::NoError) {
            row.problem = "no valid JSON: " + error.errorString().toStdString();
            return;
        }
        const QJsonObject object = document.object();
        for (auto member = object.begin(); member != object.end(); ++member)
            Take(member.key().toStdU16String(), member.value(), row);
    }

    void Take(std::u16string name, const QJsonValue& value, SourceRow& row) {
        const std::size_t place = PlaceOf(std::move(name));
        if (place == kMaxColumns) {
            row.problem = "there are too many columns";
            return;
        }
        if (row.cells.size() <= place) row.cells.resize(place + 1);
        Cell& cell = row.cells[place];
        switch (value.type()) {
        case QJsonValue::Null:
            cell = Cell::Null();
            break;
        case QJsonValue::Bool:
            cell.kind = Cell::Kind::kTruth;
            cell.truth = value.toBool();
            break;
        case QJsonValue::Double:
            cell.kind = Cell::Kind::kNumber;
            cell.number = value.toDouble();
            break;
        case QJsonValue::String:
            cell = Cell::Text(value.toString().toStdU16String());
            break;
        default:
            row.problem = "an array or an object is no cell";
            break;
        }
    }

    // kMaxColumns: there is no room for it.
    std::size_t PlaceOf(std::u16string name) {
        const auto found = std::find(columns_.begin(), columns_.end(), name);
        const auto place = static_cast<std::size_t>(found - columns_.begin());
        if (found == columns_.end() && place < kMaxColumns) columns_.push_back(std::move(name));
        return place;
    }

    JsonRows rows_;
    std::vector<std::u16string> columns_;
};

}  // namespace

std::unique_ptr<RowSource> MakeRowSource(std::string_view bytes, Format format,
                                         bool unescape_formulas) {
    if (format == Format::kCsv) return std::make_unique<CsvSource>(bytes, unescape_formulas);
    return std::make_unique<JsonSource>(bytes);
}

}  // namespace exchange
