// WallController: the wall of pictures beside the tree: what is chosen here is chosen there, by the
// tree's own signals, and the other way round; and which pictures are made.
#pragma once

#include "browser/icon_list.h"
#include "browser/picture_wall.h"
#include "browser/table_tree_model.h"
#include "browser/table_tree_view.h"
#include "browser/wall_delegate.h"
#include "browser/wall_model.h"
#include "thumbnails/thumbnail_loader.h"

#include <QtCore/QObject>

#include <functional>

namespace browser {

class WallController : public QObject {
    Q_OBJECT

public:
    struct Parts {
        TableTreeModel& model;
        TableTreeView& tree;
        WallModel& wall_model;
        PictureWall& wall;
        IconList& icons;
    };
    struct Actions {
        // What a click on a node of the tree does, for one that is selected already.
        std::function<void(const QModelIndex& node)> show_node;
        std::function<FindMark(std::size_t table)> mark_of;
        // What is to be done once in another thread when the wall is used; may be empty.
        std::function<void()> tidy{};
    };

    // Everything in `parts` is borrowed and outlives the controller. `load` makes a picture.
    WallController(const Parts& parts, Actions actions, thumbnails::ThumbnailLoader::Load load);

    // Whether the wall takes the tree's place; ShowViews does it.
    void Show(bool wall) { is_wanted_ = wall; }
    // Shows the one of them that is wanted, or none.
    void ShowViews(bool has_tables);
    bool is_wanted() const { return is_wanted_; }

    // Makes pictures larger (`steps` > 0) or smaller.
    void Step(int steps);
    // Files may have changed.
    void LookAgain();
    void ShowPlace(std::size_t table);
    void ShowMarks() { parts_.wall.viewport()->update(); }

private:
    void ConnectTree();
    void Choose(int row);
    void Follow();
    void Want();
    QSize BoxInPixels() const;

    Parts parts_;
    Actions actions_;
    thumbnails::ThumbnailLoader pictures_;
    WallDelegate& delegate_;
    bool is_wanted_ = false;
    bool choosing_ = false;
    int first_before_ = 0;  // row that was the first one shown
    bool downwards_ = true;
};

}  // namespace browser
