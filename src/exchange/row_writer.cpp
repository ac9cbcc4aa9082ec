#include "exchange/row_writer.h"

#include "exchange/cell.h"
#include "exchange/csv_writer.h"
#include "exchange/wtf8.h"

#include <string>
#include <utility>
#include <vector>

namespace exchange {
namespace {

constexpr std::size_t kWrittenAtOnce = std::size_t{256} << 10;

// A format's way of writing rows. Everything is appended to `bytes`.
class RowFormat {
public:
    virtual ~RowFormat() = default;
    virtual void Begin(std::string& bytes) = 0;
    virtual void BeginRow(std::string& bytes, bool is_first) = 0;
    virtual void AddCell(std::string& bytes, std::size_t column, const jet::Value& value) = 0;
    virtual void EndRow(std::string& bytes) = 0;
    virtual void End(std::string& bytes) = 0;
};

class CsvFormat final : public RowFormat {
public:
    CsvFormat(std::vector<std::u16string> names, bool escape_formulas)
        : names_(std::move(names)), escape_formulas_(escape_formulas) {}
    void Begin(std::string& bytes) override {
        for (std::size_t i = 0; i < names_.size(); ++i)
            AddCell(bytes, i, jet::Value::Text(names_[i]));
        EndRow(bytes);
    }
    void BeginRow(std::string&, bool) override {}
    void AddCell(std::string& bytes, std::size_t column, const jet::Value& value) override {
        if (column > 0) bytes += ',';
        AppendCsvCell(bytes, value, escape_formulas_);
    }
    void EndRow(std::string& bytes) override { bytes += "\r\n"; }
    void End(std::string&) override {}

private:
    std::vector<std::u16string> names_;
    bool escape_formulas_;
};

class JsonFormat final : public RowFormat {
public:
    JsonFormat(const std::vector<std::u16string>& names, bool is_document)
        : is_document_(is_document) {
        for (const std::u16string& name : names) {
            std::string& key = keys_.emplace_back(keys_.empty() ? "" : ", ");
            AppendJsonText(key, name);
        }
    }
    void Begin(std::string& bytes) override {
        if (!is_document_) return;
        bytes += "{\"schema\": " + std::to_string(kSchemaVersion) + ", \"columns\": [";
        for (const std::string& key : keys_)
            bytes += key;
        bytes += "], \"rows\": [";
    }
    void BeginRow(std::string& bytes, bool is_first) override {
        if (is_document_) bytes += is_first ? "\n" : ",\n";
        bytes += '{';
    }
    void AddCell(std::string& bytes, std::size_t column, const jet::Value& value) override {
        bytes += keys_[column];
        bytes += ": ";
        AppendJsonCell(bytes, value);
    }
    void EndRow(std::string& bytes) override { bytes += is_document_ ? "}" : "}\n"; }
    void End(std::string& bytes) override {
        if (is_document_) bytes += "\n]}\n";
    }

private:
    bool is_document_;
    std::vector<std::string> keys_;
};

std::unique_ptr<RowFormat> MakeFormat(const WriteOptions& options,
                                      std::vector<std::u16string> names) {
    if (options.format == Format::kCsv)
        return std::make_unique<CsvFormat>(std::move(names), options.escape_formulas);
    return std::make_unique<JsonFormat>(names, options.format == Format::kJson);
}

std::vector<std::u16string> NamesOf(const jet::Recordset& rows,
                                    const std::vector<std::size_t>& places) {
    std::vector<std::u16string> names;
    names.reserve(places.size());
    for (const std::size_t place : places)
        names.push_back(rows.FieldName(place));
    return names;
}

}  // namespace

std::optional<Format> FormatOfFile(const QString& file_name) {
    const auto ends = [&](const char* ending) {
        return file_name.endsWith(QLatin1String(ending), Qt::CaseInsensitive);
    };
    if (ends(".csv")) return Format::kCsv;
    if (ends(".json")) return Format::kJson;
    if (ends(".jsonl") || ends(".ndjson")) return Format::kJsonLines;
    return std::nullopt;
}

base::Result<std::vector<std::size_t>> ColumnPlaces(const jet::Recordset& rows,
                                                    const QStringList& columns) {
    std::vector<std::size_t> places;
    if (columns.isEmpty())
        for (std::size_t field = 0; field < rows.FieldCount(); ++field)
            places.push_back(field);
    for (const QString& column : columns) {
        std::size_t field = 0;
        while (field < rows.FieldCount() &&
               QStringView(rows.FieldName(field)).compare(column, Qt::CaseInsensitive) != 0)
            ++field;
        if (field == rows.FieldCount())
            return base::Status(base::StatusCode::kInvalidArgument,
                                "there is no column \"" + column.toStdString() + "\"");
        places.push_back(field);
    }
    return places;
}

base::Result<std::int64_t> WriteRows(jet::Recordset& rows, const WriteOptions& options,
                                     const Sink& sink, const catalogue::Progress& progress,
                                     std::int64_t total) {
    ASSIGN_OR_RETURN(const std::vector<std::size_t> places, ColumnPlaces(rows, options.columns));
    const auto format = MakeFormat(options, NamesOf(rows, places));
    catalogue::ProgressMeter meter(progress, total);
    std::string bytes;
    format->Begin(bytes);
    std::int64_t count = 0;
    for (; !rows.Eof(); ++count) {
        format->BeginRow(bytes, count == 0);
        for (std::size_t column = 0; column < places.size(); ++column) {
            ASSIGN_OR_RETURN(const jet::Value value, rows.Fields(places[column]));
            format->AddCell(bytes, column, value);
        }
        format->EndRow(bytes);
        if (bytes.size() >= kWrittenAtOnce) {
            RETURN_IF_ERROR(sink(bytes));
            bytes.clear();
        }
        meter.Step();
        RETURN_IF_ERROR(rows.MoveNext());
    }
    format->End(bytes);
    RETURN_IF_ERROR(sink(bytes));
    return count;
}

}  // namespace exchange
