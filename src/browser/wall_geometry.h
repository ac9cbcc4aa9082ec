// How the wall of pictures is laid out: columns of cells that fill its width, a picture of four by
// three and a line of text in each. In pixels of the window's coordinates.
#pragma once

#include <QtCore/QSize>

#include <vector>

namespace browser {

// The width of a picture until the user chooses one: the largest up to this one of which two stand
// side by side in a view of `view_width`.
inline constexpr int kFirstPictureWidth = 160;
int FirstPictureWidth(int view_width);

// The next larger (`steps` > 0) or smaller width of a picture; the largest and the smallest stay.
int StepPictureWidth(int width, int steps);
// The nearest of the widths that StepPictureWidth gives.
int KnownPictureWidth(int width);

struct WallCells {
    int columns = 1;
    QSize cell;     // with its margins; the columns fill the width, but for a rest of some pixels
    QSize picture;  // the box in its middle
    int margin = 0;
    int line_height = 0;
    bool operator==(const WallCells&) const = default;
};

// For a view of `view_width` and texts in lines of `line_height`.
WallCells CellsFor(int view_width, int picture_width, int line_height);

// Rows of the model, `first` and `last` included; none: last < first.
struct RowRange {
    int first = 0;
    int last = -1;
    bool operator==(const RowRange&) const = default;
};

// Rows that a view shows, wholly or in part, which is scrolled down by `offset`.
RowRange RowsShown(const WallCells& cells, int offset, int view_height, int rows);

// Where a key leads from `row` of `rows`.
enum class WallStep { kLeft, kRight, kUp, kDown, kPageUp, kPageDown, kFirst, kLast };
// Left and right go on in the next line; up and down stay in the column, but for the last line,
// which may be shorter. Requires: 0 <= row < rows.
int RowAfter(const WallCells& cells, int view_height, WallStep step, int row, int rows);

// Rows whose pictures are wanted, the most wanted first: those that are shown, then those that
// come next, as many again.
std::vector<int> RowsWanted(RowRange shown, int rows, bool downwards);

}  // namespace browser
