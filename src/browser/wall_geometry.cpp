#include "browser/wall_geometry.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace browser {
namespace {

constexpr int kWidths[] = {96, 128, 160, 208, 256, 320, 400, 512};
constexpr int kMargin = 6;
// Of the width, in which QListView takes no column: it begins a new line where one ends with it.
constexpr int kRest = 1;

std::ptrdiff_t PlaceOf(int width) {
    const auto* const nearest =
        std::min_element(std::begin(kWidths), std::end(kWidths), [width](int left, int right) {
            return std::abs(left - width) < std::abs(right - width);
        });
    return nearest - std::begin(kWidths);
}

}  // namespace

int KnownPictureWidth(int width) {
    return kWidths[PlaceOf(width)];
}

int FirstPictureWidth(int view_width) {
    int first = kWidths[0];
    for (const int width : kWidths)
        if (width <= kFirstPictureWidth && 2 * (width + 2 * kMargin) <= view_width - kRest)
            first = width;
    return first;
}

int StepPictureWidth(int width, int steps) {
    const std::ptrdiff_t last = std::ssize(kWidths) - 1;
    return kWidths[std::clamp<std::ptrdiff_t>(PlaceOf(width) + steps, 0, last)];
}

WallCells CellsFor(int view_width, int picture_width, int line_height) {
    WallCells cells;
    cells.margin = kMargin;
    cells.line_height = line_height;
    cells.picture = QSize(picture_width, picture_width * 3 / 4);
    const int room = view_width - kRest;
    cells.columns = std::max(1, room / (picture_width + 2 * kMargin));
    // A view that is narrower than a picture shows it smaller.
    const int cell_width = std::max(room / cells.columns, 4 * kMargin);
    if (cell_width < picture_width + 2 * kMargin) {
        const int width = cell_width - 2 * kMargin;
        cells.picture = QSize(width, width * 3 / 4);
    }
    cells.cell = QSize(cell_width, cells.picture.height() + line_height + 3 * kMargin);
    return cells;
}

RowRange RowsShown(const WallCells& cells, int offset, int view_height, int rows) {
    const int height = std::max(1, cells.cell.height());
    const int top = std::max(0, offset) / height;
    const int bottom = std::max(0, offset + view_height - 1) / height;
    return {std::min(top * cells.columns, rows), std::min((bottom + 1) * cells.columns, rows) - 1};
}

int RowAfter(const WallCells& cells, int view_height, WallStep step, int row, int rows) {
    const int page = std::max(1, view_height / std::max(1, cells.cell.height()));
    const auto lines = [&](int count) {
        const int wanted = row + count * cells.columns;
        if (wanted < 0) return row % cells.columns;
        if (wanted < rows) return wanted;
        const bool is_in_last_line = row / cells.columns == (rows - 1) / cells.columns;
        const int below = (rows - 1) / cells.columns * cells.columns + row % cells.columns;
        return is_in_last_line ? row : std::min(below, rows - 1);
    };
    switch (step) {
    case WallStep::kLeft:
        return std::max(row - 1, 0);
    case WallStep::kRight:
        return std::min(row + 1, rows - 1);
    case WallStep::kUp:
        return lines(-1);
    case WallStep::kDown:
        return lines(1);
    case WallStep::kPageUp:
        return lines(-page);
    case WallStep::kPageDown:
        return lines(page);
    case WallStep::kFirst:
        return 0;
    case WallStep::kLast:
        return rows - 1;
    }
    return row;
}

std::vector<int> RowsWanted(RowRange shown, int rows, bool downwards) {
    std::vector<int> wanted;
    for (int row = shown.first; row <= shown.last; ++row)
        wanted.push_back(row);
    const int more = shown.last - shown.first + 1;
    for (int i = 1; i <= more; ++i) {
        const int row = downwards ? shown.last + i : shown.first - i;
        if (row >= 0 && row < rows) wanted.push_back(row);
    }
    return wanted;
}

}  // namespace browser
