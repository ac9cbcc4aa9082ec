#include "browser/table_snapshot.h"

#include "base/marked_text.h"
#include "browser/texts.h"
#include "catalogue/field_text.h"
#include "platform/shown_text.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace browser {
namespace {

struct DetailColumn {
    QStringView label;
    QStringView column;
};

constexpr std::array<DetailColumn, kDetailCount> kDetails = {{
    {MARKED_TEXT("BrowserTexts", "File Date: "), u"FileDate"},
    {MARKED_TEXT("BrowserTexts", "Author: "), u"Author"},
    {MARKED_TEXT("BrowserTexts", "Company: "), u"Company"},
    {MARKED_TEXT("BrowserTexts", "Year: "), u"Year"},
    {MARKED_TEXT("BrowserTexts", "Last Played: "), u"LastPlayed"},
    {MARKED_TEXT("BrowserTexts", "Date Added: "), u"DateAdded"},
}};

std::int32_t CountOf(const jet::Value& value) {
    if (value.is_null()) return 0;
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(jet::ToInteger(value), Limits::min(), Limits::max()));
}

}  // namespace

// Indexes of the columns in the query's rows; nullopt for a column that an old read-only catalogue
// does not have.
struct TableSnapshot::Columns {
    using Place = std::optional<std::size_t>;

    explicit Columns(const jet::Recordset& rows)
        : id(Find(rows, u"ID")), display_name(Find(rows, u"DisplayName")),
          file_name(Find(rows, u"FileName")), favorite(Find(rows, u"Favorite")),
          pinmame(Find(rows, u"PinMame")), version(Find(rows, u"Version")),
          times_played(Find(rows, u"TimesPlayed")), image_file(Find(rows, u"ImageFile")) {
        for (std::size_t detail = 0; detail < details.size(); ++detail)
            details[detail] = Find(rows, kDetails[detail].column);
    }

    static Place Find(const jet::Recordset& rows, QStringView name) {
        for (std::size_t field = 0; field < rows.FieldCount(); ++field) {
            const std::u16string& candidate = rows.FieldName(field);
            if (name.compare(QStringView(candidate), Qt::CaseInsensitive) == 0) return field;
        }
        return std::nullopt;
    }

    static base::Result<jet::Value> ValueOf(jet::Recordset& rows, Place place) {
        if (!place) return jet::Value::Null();
        return rows.Fields(*place);
    }

    Place id;
    Place display_name;
    Place file_name;
    Place favorite;
    Place pinmame;
    Place version;
    Place times_played;
    Place image_file;
    std::array<Place, kDetailCount> details;
};

QString DetailLabel(int detail) {
    return platform::Shown<BrowserTexts>(kDetails[static_cast<std::size_t>(detail)].label);
}

QString TableSnapshot::Text(TextStore::Reference reference) const {
    return texts_.Get(reference);
}

TextStore::Reference TableSnapshot::KeepText(const jet::Value& value) {
    const auto* text = value.get_if<std::u16string>();
    return texts_.Add(text ? *text : jet::ToText(value));
}

void TableSnapshot::KeepDetail(Row& row, int detail, const jet::Value& value) {
    auto kind = DetailKind::kNull;
    std::uint64_t& kept = row.details[static_cast<std::size_t>(detail)];
    if (const auto* date = value.get_if<jet::Date>()) {
        kind = DetailKind::kDate;
        kept = std::bit_cast<std::uint64_t>(date->days);
    } else if (!value.is_null()) {
        kind = DetailKind::kText;
        kept = std::bit_cast<std::uint64_t>(KeepText(value));
    }
    row.detail_kinds = static_cast<std::uint16_t>(row.detail_kinds |
                                                  (static_cast<unsigned>(kind) << (2 * detail)));
}

QString TableSnapshot::DetailText(std::size_t table, int detail) const {
    const Row& row = rows_[table];
    const std::uint64_t kept = row.details[static_cast<std::size_t>(detail)];
    switch (KindOf(row, detail)) {
    case DetailKind::kDate:
        return catalogue::FieldText(jet::Value::DateTime(std::bit_cast<double>(kept)));
    case DetailKind::kText:
        return Text(std::bit_cast<TextStore::Reference>(kept));
    case DetailKind::kNull:
        break;
    }
    return {};
}

std::optional<double> TableSnapshot::DetailDate(std::size_t table, int detail) const {
    const Row& row = rows_[table];
    if (KindOf(row, detail) != DetailKind::kDate) return std::nullopt;
    return std::bit_cast<double>(row.details[static_cast<std::size_t>(detail)]);
}

QString TableSnapshot::DetailLine(std::size_t table, int detail) const {
    return DetailLabel(detail) + DetailText(table, detail);
}

base::Status TableSnapshot::AddRow(jet::Recordset& rows, const Columns& columns) {
    Row row;
    ASSIGN_OR_RETURN(const jet::Value id, Columns::ValueOf(rows, columns.id));
    ASSIGN_OR_RETURN(const jet::Value name, Columns::ValueOf(rows, columns.display_name));
    ASSIGN_OR_RETURN(const jet::Value file, Columns::ValueOf(rows, columns.file_name));
    ASSIGN_OR_RETURN(const jet::Value favorite, Columns::ValueOf(rows, columns.favorite));
    ASSIGN_OR_RETURN(const jet::Value pinmame, Columns::ValueOf(rows, columns.pinmame));
    ASSIGN_OR_RETURN(const jet::Value version, Columns::ValueOf(rows, columns.version));
    ASSIGN_OR_RETURN(const jet::Value times_played, Columns::ValueOf(rows, columns.times_played));
    ASSIGN_OR_RETURN(const jet::Value image_file, Columns::ValueOf(rows, columns.image_file));
    row.id = static_cast<std::int32_t>(jet::ToInteger(id));
    row.times_played = CountOf(times_played);
    row.version = KeepText(version);
    row.image_file = KeepText(image_file);
    row.display_name = KeepText(name);
    row.file_name = KeepText(file);
    row.favorite = jet::ToBool(favorite);
    row.pinmame = jet::ToBool(pinmame);
    for (int detail = 0; detail < kDetailCount; ++detail) {
        ASSIGN_OR_RETURN(const jet::Value value,
                         Columns::ValueOf(rows, columns.details[static_cast<std::size_t>(detail)]));
        KeepDetail(row, detail, value);
    }
    rows_.push_back(row);
    return {};
}

base::Result<TableSnapshot> TableSnapshot::Read(jet::Recordset& rows,
                                                const std::function<void(std::int64_t)>& progress) {
    TableSnapshot snapshot;
    snapshot.rows_.reserve(static_cast<std::size_t>(std::max<std::int64_t>(rows.RecordCount(), 0)));
    const Columns columns(rows);
    while (!rows.Eof()) {
        RETURN_IF_ERROR(snapshot.AddRow(rows, columns));
        if (progress) progress(static_cast<std::int64_t>(snapshot.size()));
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return snapshot;
}

}  // namespace browser
