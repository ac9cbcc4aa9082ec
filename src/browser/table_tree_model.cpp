#include "browser/table_tree_model.h"

#include "browser/texts.h"
#include "platform/files.h"

#include <QtGui/QFont>

#include <algorithm>
#include <utility>

namespace browser {
namespace {

// Internal ids of indexes: the parent of the node.
constexpr quintptr kTopLevel = 0;  // the root
constexpr quintptr kUnderRoot = 1;
constexpr quintptr kFirstTable = 2;  // a detail line has kFirstTable + its table

QVariant RootFont() {
    QFont bold;
    bold.setBold(true);
    return bold;
}

const QString& FavoriteIcon() {
    static const QString key = QStringLiteral("favorite");
    return key;
}

// How deep the node lies; the interfaces to assistive technology have no number of their own for
// it.
QString LevelText(const Node& node) {
    return BrowserTexts::tr("Level %1").arg(!node.table ? 1 : node.detail ? 3 : 2);
}

}  // namespace

TableTreeModel::TableTreeModel(IconSource icons, FileTest file_test, QObject* parent)
    : QAbstractItemModel(parent), icons_(std::move(icons)),
      files_(file_test ? std::move(file_test) : FileTest(platform::FileExists)),
      tables_(std::make_shared<const TableSnapshot>()) {
    connect(&files_, &FileLookup::Answered, this, &TableTreeModel::KeepAnswer);
    connect(&files_, &FileLookup::AllAnswered, this, &TableTreeModel::TellAnswers);
}

void TableTreeModel::Show(TableSnapshot tables, const QString& root_text,
                          const QString& root_icon) {
    beginResetModel();
    tables_ = std::make_shared<const TableSnapshot>(std::move(tables));
    has_nodes_ = true;
    root_text_ = root_text;
    root_icon_ = root_icon;
    icon_overrides_.clear();
    file_name_overrides_.clear();
    image_file_overrides_.clear();
    files_.Forget();
    answered_.clear();
    file_states_.assign(tables_->size(), FileState::kUnknown);
    endResetModel();
}

void TableTreeModel::Clear() {
    beginResetModel();
    tables_ = std::make_shared<const TableSnapshot>();
    has_nodes_ = false;
    icon_overrides_.clear();
    file_name_overrides_.clear();
    image_file_overrides_.clear();
    files_.Forget();
    answered_.clear();
    file_states_.clear();
    endResetModel();
}

void TableTreeModel::SetRootIcon(const QString& icon_key) {
    root_icon_ = icon_key;
    if (has_nodes_)
        Q_EMIT dataChanged(RootIndex(), RootIndex(), {Qt::DecorationRole, kIconKeyRole});
}

void TableTreeModel::SetTableIcon(const QModelIndex& index, const QString& icon_key) {
    icon_overrides_[*NodeOf(index).table] = icon_key;
    Q_EMIT dataChanged(index, index, {Qt::DecorationRole, kIconKeyRole});
}

void TableTreeModel::SetFileName(const QModelIndex& index, const QString& file_name) {
    const std::size_t table = *NodeOf(index).table;
    if (FileNameOf(table) == file_name) return;
    file_name_overrides_[table] = file_name;
    file_states_[table] = FileState::kUnknown;
    Q_EMIT dataChanged(index, index, {Qt::DecorationRole, kIconKeyRole, kTagRole});
}

void TableTreeModel::SetImageFile(const QModelIndex& index, const QString& image_file) {
    const std::size_t table = *NodeOf(index).table;
    if (ImageFileOf(table) == image_file) return;
    image_file_overrides_[table] = image_file;
    Q_EMIT dataChanged(index, index, {Qt::DecorationRole});
}

QModelIndex TableTreeModel::RootIndex() const {
    return has_nodes_ ? createIndex(0, 0, kTopLevel) : QModelIndex();
}

Node TableTreeModel::NodeOf(const QModelIndex& index) {
    if (index.internalId() == kTopLevel) return {};
    if (index.internalId() == kUnderRoot) return {static_cast<std::size_t>(index.row()), {}};
    return {static_cast<std::size_t>(index.internalId() - kFirstTable), index.row()};
}

std::optional<std::size_t> TableTreeModel::TableOf(const QModelIndex& index) {
    if (!index.isValid() || index.internalId() != kUnderRoot) return std::nullopt;
    return static_cast<std::size_t>(index.row());
}

QModelIndex TableTreeModel::IndexOf(const Node& node) const {
    if (!node.table) return RootIndex();
    if (node.detail) return createIndex(*node.detail, 0, kFirstTable + *node.table);
    return createIndex(static_cast<int>(*node.table), 0, kUnderRoot);
}

QModelIndex TableTreeModel::IndexOfNode(std::int64_t number) const {
    if (!has_nodes_) return {};
    const auto node = NodeAt(number, tables_->size());
    return node ? IndexOf(*node) : QModelIndex();
}

std::int64_t TableTreeModel::NodeNumber(const QModelIndex& index) const {
    return index.isValid() ? NumberOf(NodeOf(index)) : 0;
}

QModelIndex TableTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column != 0 || row >= rowCount(parent)) return {};
    if (!parent.isValid()) return RootIndex();
    const Node node = NodeOf(parent);
    return node.table ? createIndex(row, 0, kFirstTable + *node.table)
                      : createIndex(row, 0, kUnderRoot);
}

QModelIndex TableTreeModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || child.internalId() == kTopLevel) return {};
    if (child.internalId() == kUnderRoot) return RootIndex();
    return IndexOf({NodeOf(child).table, std::nullopt});
}

int TableTreeModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return has_nodes_ ? 1 : 0;
    const Node node = NodeOf(parent);
    if (!node.table) return static_cast<int>(tables_->size());
    return node.detail ? 0 : kDetailCount;
}

int TableTreeModel::columnCount(const QModelIndex&) const {
    return 1;
}

bool TableTreeModel::hasChildren(const QModelIndex& parent) const {
    return rowCount(parent) > 0;
}

Qt::ItemFlags TableTreeModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (NodeOf(index).detail) flags |= Qt::ItemNeverHasChildren;
    return flags;
}

std::optional<std::size_t> TableTreeModel::TableOfNode(const QModelIndex& index) const {
    if (!index.isValid() || !has_nodes_) return std::nullopt;
    return NodeOf(index).table;
}

QVariant TableTreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Node node = NodeOf(index);
    switch (role) {
    case Qt::DisplayRole:
        return TextOf(node);
    case Qt::DecorationRole:
        return icons_ ? icons_(IconKeyOf(node)) : QVariant();
    case Qt::AccessibleTextRole:
        return SpokenText(node);
    case Qt::AccessibleDescriptionRole:
        return LevelText(node);
    case Qt::FontRole:
        return node.table ? QVariant() : RootFont();
    case kTagRole:
        return TagOf(node);
    case kIconKeyRole:
        return IconKeyOf(node);
    case kNodeKeyRole:
        if (!node.table || node.detail) return {};
        return NodeKey(QString::number(tables_->Id(*node.table)));
    default:
        return {};
    }
}

QString TableTreeModel::TextOf(const Node& node) const {
    if (!node.table) return root_text_;
    return node.detail ? tables_->DetailLine(*node.table, *node.detail)
                       : tables_->DisplayName(*node.table);
}

QString TableTreeModel::SpokenText(const Node& node) const {
    return node.table && !node.detail ? SpokenName(*node.table) : TextOf(node);
}

bool TableTreeModel::IsFavorite(std::size_t table) const {
    return tables_->Favorite(table) || icon_overrides_.value(table) == FavoriteIcon();
}

QString TableTreeModel::SpokenName(std::size_t table) const {
    QString spoken = tables_->DisplayName(table);
    if (IsFavorite(table)) spoken += BrowserTexts::tr(", favorite");
    if (FileIsMissing(table)) spoken += BrowserTexts::tr(", its file is missing");
    return spoken;
}

QString TableTreeModel::TagOf(const Node& node) const {
    if (!node.table) return kRootTag.toString();
    return node.detail ? kDetailTag.toString() : FileNameOf(*node.table);
}

QString TableTreeModel::IconKeyOf(const Node& node) const {
    if (!node.table) return root_icon_;
    return node.detail ? QStringLiteral("detail") : TableIconKey(*node.table);
}

// In order of precedence: missing file, favourite, PinMAME table.
QString TableTreeModel::TableIconKey(std::size_t table) const {
    if (const auto chosen = icon_overrides_.constFind(table); chosen != icon_overrides_.cend())
        return *chosen;
    if (FileIsMissing(table)) return QStringLiteral("stop");
    if (tables_->Favorite(table)) return FavoriteIcon();
    return tables_->PinMame(table) ? QStringLiteral("mame") : QStringLiteral("pinball");
}

QString TableTreeModel::FileNameOf(std::size_t table) const {
    const auto changed = file_name_overrides_.constFind(table);
    return changed != file_name_overrides_.cend() ? *changed : tables_->FileName(table);
}

QString TableTreeModel::ImageFileOf(std::size_t table) const {
    const auto changed = image_file_overrides_.constFind(table);
    return changed != image_file_overrides_.cend() ? *changed : tables_->ImageFile(table);
}

// False as long as the file has not been tested.
bool TableTreeModel::FileIsMissing(std::size_t table) const {
    FileState& state = file_states_[table];
    if (state == FileState::kUnknown) {
        state = FileState::kAsked;
        files_.Ask(table, FileNameOf(table));
    }
    return state == FileState::kMissing;
}

void TableTreeModel::KeepAnswer(std::size_t table, const QString& path, bool is_there) {
    if (path != FileNameOf(table)) return;  // the FileName has changed since
    file_states_[table] = is_there ? FileState::kThere : FileState::kMissing;
    answered_.push_back(table);
}

// One signal for each run of tables, as a view paints itself again for each.
void TableTreeModel::TellAnswers() {
    std::vector<std::size_t> tables = std::exchange(answered_, {});
    std::sort(tables.begin(), tables.end());
    for (auto first = tables.begin(); first != tables.end();) {
        auto last = first;
        while (last + 1 != tables.end() && *(last + 1) <= *last + 1)
            ++last;
        Q_EMIT dataChanged(IndexOf({*first, std::nullopt}), IndexOf({*last, std::nullopt}),
                           {Qt::DecorationRole, kIconKeyRole});
        first = last + 1;
    }
}

}  // namespace browser
