// TableTreeModel: the tree of the selected tables: a root that names the selection, a node for each
// table, six detail lines under each table. There is no object per node: an index holds the number
// of its table, and texts and icons are computed on demand. Whether a table file exists is tested
// once, by FileLookup, when its row is first drawn; a table whose file is missing then gets the
// icon "stop".
#pragma once

#include "browser/file_lookup.h"
#include "browser/node_number.h"
#include "browser/table_snapshot.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QHash>

#include <functional>
#include <optional>
#include <vector>

namespace browser {

// Tags of the root and of detail lines; the tag of a table is its FileName.
inline constexpr QStringView kRootTag = u"X1";
inline constexpr QStringView kDetailTag = u"X";

class TableTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    enum Role { kTagRole = Qt::UserRole, kIconKeyRole, kNodeKeyRole };

    using FileTest = FileLookup::FileTest;
    // The decoration for an icon key ("mame", "closed"); may be an empty function.
    using IconSource = std::function<QVariant(const QString& icon_key)>;

    // Without `file_test`, platform::FileExists is used.
    explicit TableTreeModel(IconSource icons = {}, FileTest file_test = {},
                            QObject* parent = nullptr);

    // Replaces the content. `root_icon`: the key of the root's icon until SetRootIcon.
    void Show(TableSnapshot tables, const QString& root_text, const QString& root_icon);
    void Clear();
    bool has_nodes() const { return has_nodes_; }
    // What the tree shows; never null. Each Show and Clear has its own.
    const TableSnapshotPointer& tables() const { return tables_; }
    // The table (from 0) of its node; nullopt for any other node.
    static std::optional<std::size_t> TableOf(const QModelIndex& index);
    // False also as long as the file has not been looked for.
    bool IsKnownMissing(std::size_t table) const {
        return file_states_[table] == FileState::kMissing;
    }
    // Has the file looked for, unless that was done; dataChanged tells when it is known.
    void LookForFile(std::size_t table) const { FileIsMissing(table); }
    // The star that the tree shows counts, too: a favourite's, or one of a mark that was changed
    // since.
    bool IsFavorite(std::size_t table) const;
    // Name and state in words, for assistive technology. Has the file looked for; its absence is
    // not said before that is known.
    QString SpokenName(std::size_t table) const;
    bool IsFileKnown(std::size_t table) const {
        return file_states_[table] == FileState::kThere || IsKnownMissing(table);
    }

    // Sets the key of the root's icon: "open" or "closed".
    void SetRootIcon(const QString& icon_key);
    // Overrides a table's icon until the next Show. Requires: `index` is a table.
    void SetTableIcon(const QModelIndex& index, const QString& icon_key);
    // Overrides a table's FileName until the next Show. Requires: `index` is a table.
    void SetFileName(const QModelIndex& index, const QString& file_name);
    // The same for its ImageFile.
    void SetImageFile(const QModelIndex& index, const QString& image_file);

    QModelIndex RootIndex() const;
    // Invalid if there is no such node.
    QModelIndex IndexOfNode(std::int64_t number) const;
    // 0 for an invalid index.
    std::int64_t NodeNumber(const QModelIndex& index) const;

    // Tables are counted from 0 in the order of the tree.
    std::size_t table_count() const { return tables_ ? tables_->size() : 0; }
    // The ID of its row. Requires: table < table_count().
    std::int32_t Id(std::size_t table) const { return tables_->Id(table); }
    // The table that an index is, or is a detail line of; nullopt: the root, or an invalid index.
    std::optional<std::size_t> TableOfNode(const QModelIndex& index) const;
    QModelIndex IndexOfTable(std::size_t table) const { return IndexOf({table, std::nullopt}); }
    // As set since the last Show, or as it was read.
    QString FileNameOf(std::size_t table) const;
    QString ImageFileOf(std::size_t table) const;

    // The key of the table with this id, see kNodeKeyRole.
    static QString NodeKey(const QString& id) { return u'X' + id; }
    static QString Tag(const QModelIndex& index) { return index.data(kTagRole).toString(); }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    enum class FileState : std::uint8_t { kUnknown, kAsked, kThere, kMissing };

    static Node NodeOf(const QModelIndex& index);
    QModelIndex IndexOf(const Node& node) const;
    QString TextOf(const Node& node) const;
    QString TagOf(const Node& node) const;
    QString SpokenText(const Node& node) const;
    QString IconKeyOf(const Node& node) const;
    QString TableIconKey(std::size_t table) const;
    bool FileIsMissing(std::size_t table) const;
    void KeepAnswer(std::size_t table, const QString& path, bool is_there);
    void TellAnswers();

    IconSource icons_;
    mutable FileLookup files_;
    TableSnapshotPointer tables_;  // never null
    bool has_nodes_ = false;
    QString root_text_;
    QString root_icon_;
    QHash<std::size_t, QString> icon_overrides_;
    QHash<std::size_t, QString> file_name_overrides_;
    QHash<std::size_t, QString> image_file_overrides_;
    mutable std::vector<FileState> file_states_;
    std::vector<std::size_t> answered_;  // tables whose answers have not been told yet
};

}  // namespace browser
