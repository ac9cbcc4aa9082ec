#include "browser/table_snapshot.h"

#include "base/marked_text.h"
#include "browser/texts.h"
#include "catalogue/field_text.h"
#include "platform/shown_text.h"
#include "platform/text_view.h"

#include <algorithm>
#include <array>
#include <limits>

namespace browser {
namespace {

// The columns that are shown; those of the detail lines come last.
enum Column : int {
    kId,
    kDisplayName,
    kFileName,
    kFavorite,
    kPinMame,
    kVersion,
    kTimesPlayed,
    kImageFile,
    kFirstDetail,
};

constexpr std::array<QStringView, kFirstDetail> kColumns = {
    u"ID",      u"DisplayName", u"FileName",    u"Favorite",
    u"PinMame", u"Version",     u"TimesPlayed", u"ImageFile"};

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

QString TextOf(const jet::Value& value) {
    const auto* text = value.get_if<std::u16string>();
    return platform::ToQString(text ? *text : jet::ToText(value));
}

std::optional<std::size_t> FindField(const jet::Recordset& rows, QStringView name) {
    for (std::size_t field = 0; field < rows.FieldCount(); ++field)
        if (name.compare(QStringView(rows.FieldName(field)), Qt::CaseInsensitive) == 0)
            return field;
    return std::nullopt;
}

}  // namespace

QString DetailLabel(int detail) {
    return platform::Shown<BrowserTexts>(kDetails[static_cast<std::size_t>(detail)].label);
}

jet::Value TableSnapshot::ValueOf(std::size_t table, int column) const {
    const auto place = places_[static_cast<std::size_t>(column)];
    return place ? rows_.Field(table, *place) : jet::Value::Null();
}

QString TableSnapshot::Text(std::size_t table, int column) const {
    return TextOf(ValueOf(table, column));
}

std::int32_t TableSnapshot::Id(std::size_t table) const {
    return static_cast<std::int32_t>(jet::ToInteger(ValueOf(table, kId)));
}

const std::vector<std::int32_t>& TableSnapshot::Ids() const {
    std::call_once(ids_->once, [this] {
        ids_->ids.resize(size());
        for (std::size_t table = 0; table < size(); ++table)
            ids_->ids[table] = Id(table);
    });
    return ids_->ids;
}

QString TableSnapshot::DisplayName(std::size_t table) const {
    return Text(table, kDisplayName);
}

QString TableSnapshot::FileName(std::size_t table) const {
    return Text(table, kFileName);
}

QString TableSnapshot::ImageFile(std::size_t table) const {
    return Text(table, kImageFile);
}

bool TableSnapshot::Favorite(std::size_t table) const {
    return jet::ToBool(ValueOf(table, kFavorite));
}

bool TableSnapshot::PinMame(std::size_t table) const {
    return jet::ToBool(ValueOf(table, kPinMame));
}

QString TableSnapshot::Version(std::size_t table) const {
    return Text(table, kVersion);
}

std::int32_t TableSnapshot::TimesPlayed(std::size_t table) const {
    return CountOf(ValueOf(table, kTimesPlayed));
}

QString TableSnapshot::DetailText(std::size_t table, int detail) const {
    const jet::Value value = ValueOf(table, kFirstDetail + detail);
    return value.is<jet::Date>() ? catalogue::FieldText(value) : TextOf(value);
}

std::optional<double> TableSnapshot::DetailDate(std::size_t table, int detail) const {
    const jet::Value value = ValueOf(table, kFirstDetail + detail);
    const auto* date = value.get_if<jet::Date>();
    return date ? std::optional(date->days) : std::nullopt;
}

QString TableSnapshot::DetailLine(std::size_t table, int detail) const {
    return DetailLabel(detail) + DetailText(table, detail);
}

base::Result<TableSnapshot> TableSnapshot::Read(jet::Recordset& rows,
                                                const std::function<void(std::int64_t)>& progress) {
    TableSnapshot snapshot;
    std::vector<std::size_t> fields;
    const auto add = [&](QStringView name) {
        const auto field = FindField(rows, name);
        snapshot.places_.push_back(field ? std::optional(fields.size()) : std::nullopt);
        if (field) fields.push_back(*field);
    };
    std::for_each(kColumns.begin(), kColumns.end(), add);
    for (const DetailColumn& detail : kDetails)
        add(detail.column);
    ASSIGN_OR_RETURN(snapshot.rows_, rows.Hold(fields, progress));
    return snapshot;
}

}  // namespace browser
