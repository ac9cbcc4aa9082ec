// TableTreeModel: the tree of the selected tables: a root that names the selection, a node per
// table, six detail lines under each. No object per node: an index carries the table's number, and
// texts and icons are computed when a view asks for them. Whether a table file exists is asked
// once, when its row is first drawn, and in a thread of its own: until the answer is there the
// table has the icon of its record, and a table whose file is missing then changes to "stop".
#pragma once

#include "browser/file_lookup.h"
#include "browser/node_number.h"
#include "browser/table_snapshot.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QHash>

#include <functional>
#include <vector>

namespace browser {

// Tags tell the kinds of node apart; a table's tag is its file name.
inline constexpr QStringView kRootTag = u"X1";
inline constexpr QStringView kDetailTag = u"X";

class TableTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    enum Role { kTagRole = Qt::UserRole, kIconKeyRole, kNodeKeyRole };

    using FileTest = FileLookup::FileTest;
    // What a view draws for an icon key ("mame", "closed"); may be empty.
    using IconSource = std::function<QVariant(const QString& icon_key)>;

    // `file_test` empty: platform::FileExists.
    explicit TableTreeModel(IconSource icons = {}, FileTest file_test = {},
                            QObject* parent = nullptr);

    // Shows another selection. `root_icon` is the selection's own icon, shown until the root is
    // first opened or closed.
    void Show(TableSnapshot tables, const QString& root_text, const QString& root_icon);
    void Clear();
    bool has_nodes() const { return has_nodes_; }

    // The root's icon, "open" or "closed".
    void SetRootIcon(const QString& icon_key);
    // A table's icon from now on, until the next Show. Requires: index is a table.
    void SetTableIcon(const QModelIndex& index, const QString& icon_key);
    // The file that a table stands for from now on, until the next Show. Requires: index is a
    // table.
    void SetFileName(const QModelIndex& index, const QString& file_name);

    QModelIndex RootIndex() const;
    // Invalid: no such node.
    QModelIndex IndexOfNode(std::int64_t number) const;
    // 0: the index is invalid.
    std::int64_t NodeNumber(const QModelIndex& index) const;

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
    QString IconKeyOf(const Node& node) const;
    QString TableIconKey(std::size_t table) const;
    QString FileNameOf(std::size_t table) const;
    bool FileIsMissing(std::size_t table) const;
    void KeepAnswer(std::size_t table, const QString& path, bool is_there);

    IconSource icons_;
    mutable FileLookup files_;
    TableSnapshot tables_;
    bool has_nodes_ = false;
    QString root_text_;
    QString root_icon_;
    QHash<std::size_t, QString> icon_overrides_;
    QHash<std::size_t, QString> file_name_overrides_;
    mutable std::vector<FileState> file_states_;
};

}  // namespace browser
