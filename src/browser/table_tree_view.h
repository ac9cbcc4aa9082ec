// TableTreeView: the tree tvwDB. Translates mouse and key events into the signals below.
#pragma once

#include <QtWidgets/QTreeView>

namespace browser {

class TableTreeModel;

class TableTreeView : public QTreeView {
    Q_OBJECT

public:
    // `model` is borrowed and outlives the view.
    explicit TableTreeView(TableTreeModel& model, QWidget* parent = nullptr);

    // Selects a node and scrolls to it, without NodeClicked.
    void SelectNode(const QModelIndex& index);
    // In which the longest of the first names, and what stands around it, is not cut; in pixels.
    int WidthOfNames() const;

Q_SIGNALS:
    // A node was clicked or selected with the keyboard.
    void NodeClicked(const QModelIndex& index);
    void DoubleClicked();
    void EnterPressed();
    void DeletePressed();
    // The menu key, or Shift+F10; `global_position` is beside the selected node.
    void MenuPressed(const QPoint& global_position);
    // After each key that is a character, Enter included.
    void KeyPressed();
    // The right button was released at `x_twips` from the left edge.
    void RightButtonUp(int x_twips, const QPoint& global_position);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    bool selecting_ = false;  // during SelectNode
};

}  // namespace browser
