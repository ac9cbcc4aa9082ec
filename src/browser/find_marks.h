// FindMarkDelegate: draws the nodes of the tree, those of found tables marked: underlined on a
// tinted ground, and the one where the user is with a frame around it.
#pragma once

#include <QtWidgets/QStyledItemDelegate>

#include <functional>

namespace browser {

enum class FindMark { kNone, kFound, kHere };

// How an item of a found table is told from others, before it is drawn.
void MarkFound(QStyleOptionViewItem& option);
// And behind that the item where the user is.
void DrawHereFrame(QPainter& painter, const QStyleOptionViewItem& option);

class FindMarkDelegate : public QStyledItemDelegate {
public:
    // The mark of a table (from 0).
    using MarkOf = std::function<FindMark(std::size_t table)>;

    FindMarkDelegate(MarkOf mark_of, QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    FindMark MarkOfNode(const QModelIndex& index) const;

    MarkOf mark_of_;
};

}  // namespace browser
