// PictureWall: the tables as pictures in columns, their names below. Translates mouse and key
// events into the signals below, as TableTreeView does.
#pragma once

#include "browser/wall_geometry.h"

#include <QtWidgets/QListView>

#include <optional>

namespace browser {

class WallModel;

class PictureWall : public QListView {
    Q_OBJECT

public:
    // `model` is borrowed and outlives the view.
    explicit PictureWall(WallModel& model, QWidget* parent = nullptr);

    // Selects a row and scrolls to it, without RowChosen. After a reset of the model the row comes
    // where the selected one stood. Negative: selects none.
    void SelectRow(int row);

    int picture_width() const { return picture_width_; }
    // Whether SetPictureWidth gave it; until then it goes with the width of the view.
    bool width_is_chosen() const { return width_is_chosen_; }
    // One of the widths of wall_geometry.h; what is at the top of the view stays there.
    void SetPictureWidth(int width);
    const WallCells& cells() const { return cells_; }
    RowRange shown_rows() const;

Q_SIGNALS:
    // A row was clicked or selected with the keyboard.
    void RowChosen(int row);
    void DoubleClicked();
    void EnterPressed();
    void DeletePressed();
    // The menu key, Shift+F10 or the right mouse button, on the selected row.
    void MenuPressed(const QPoint& global_position);
    // After each key that is a character, Enter included.
    void KeyPressed();
    // The cells have another size.
    void CellsChanged();
    // The rows that are shown have been painted.
    void Painted();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void dataChanged(const QModelIndex& first, const QModelIndex& last,
                     const QList<int>& roles) override;
    void updateGeometries() override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    static WallStep StepOf(CursorAction action);
    void LayOut();
    void KeepPlace();
    // In a view of this height, in pixels.
    RowRange ShownRows(int height) const;
    // Whether it is seen there, in part at least.
    bool RowIsShown(int row, int height) const;

    int picture_width_ = kFirstPictureWidth;
    bool width_is_chosen_ = false;
    WallCells cells_;
    bool selecting_ = false;               // during SelectRow
    int wheel_ = 0;                        // eighths of a degree that made no step yet
    std::optional<int> place_of_current_;  // from the top of the view; while the model is reset
};

}  // namespace browser
