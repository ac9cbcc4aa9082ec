#include "history/history_models.h"

#include "base/marked_text.h"
#include "history/change_names.h"
#include "history/change_texts.h"
#include "history/texts.h"
#include "jet/values/conversions.h"
#include "platform/shown_text.h"

#include <QtCore/QString>

#include <array>

namespace history {
namespace {

// A cell of a list shows so many characters; a rules text can have many thousands.
constexpr qsizetype kShownCharacters = 300;

QString OneLine(const std::u16string& text) {
    QString shown = QString::fromStdU16String(text);
    if (shown.size() > kShownCharacters) {
        shown.truncate(kShownCharacters);
        shown += QChar(0x2026);
    }
    for (QChar& character : shown)
        if (character == u'\n' || character == u'\r' || character == u'\t') character = u' ';
    return shown;
}

}  // namespace

void ChangeListModel::Show(std::vector<Change> changes) {
    beginResetModel();
    changes_ = std::move(changes);
    endResetModel();
}

const Change* ChangeListModel::ChangeOf(int row) const {
    if (row < 0 || row >= rowCount()) return nullptr;
    return &changes_[changes_.size() - 1 - static_cast<std::size_t>(row)];
}

std::optional<std::uint64_t> ChangeListModel::NumberOf(int row) const {
    const Change* const change = ChangeOf(row);
    return change != nullptr ? std::optional(change->number) : std::nullopt;
}

int ChangeListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(changes_.size());
}

int ChangeListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumnCount;
}

QVariant ChangeListModel::data(const QModelIndex& index, int role) const {
    const Change* const change = ChangeOf(index.row());
    if (role != Qt::DisplayRole || change == nullptr) return {};
    switch (index.column()) {
    case kWhen:
        return QString::fromStdU16String(jet::FormatGeneralDate(change->label.time));
    case kWhat:
        return ShownName(*change);
    default:
        return GroupedText(change->fields);
    }
}

QVariant ChangeListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    static constexpr std::array<QStringView, kColumnCount> kNames = {
        MARKED_TEXT("HistoryTexts", "When"), MARKED_TEXT("HistoryTexts", "Change"),
        MARKED_TEXT("HistoryTexts", "Fields")};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return platform::Shown<HistoryTexts>(kNames.at(static_cast<std::size_t>(section)));
}

void ChangeLinesModel::Show(LinesPointer lines) {
    beginResetModel();
    lines_ = std::move(lines);
    shown_ = lines_ ? lines_->all() : std::vector<ChangeLines::Place>();
    endResetModel();
}

void ChangeLinesModel::ShowOnly(std::vector<ChangeLines::Place> shown) {
    beginResetModel();
    shown_ = std::move(shown);
    endResetModel();
}

int ChangeLinesModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int ChangeLinesModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumnCount;
}

QVariant ChangeLinesModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !index.isValid() || index.row() >= rowCount()) return {};
    const ChangeLine line = lines_->Line(PlaceOf(index.row()));
    switch (index.column()) {
    case kTable:
        return OneLine(line.row);
    case kField:
        return OneLine(line.field);
    case kBefore:
        return OneLine(line.before);
    default:
        return OneLine(line.after);
    }
}

QVariant ChangeLinesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    static constexpr std::array<QStringView, kColumnCount> kNames = {
        MARKED_TEXT("HistoryTexts", "Table"), MARKED_TEXT("HistoryTexts", "Field"),
        MARKED_TEXT("HistoryTexts", "Before"), MARKED_TEXT("HistoryTexts", "After")};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return platform::Shown<HistoryTexts>(kNames.at(static_cast<std::size_t>(section)));
}

}  // namespace history
