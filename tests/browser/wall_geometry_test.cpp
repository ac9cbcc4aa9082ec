#include "browser/wall_geometry.h"

#include <gtest/gtest.h>

namespace browser {

void PrintTo(const RowRange& range, std::ostream* out) {
    *out << range.first << ".." << range.last;
}

namespace {

TEST(WallGeometryTest, ColumnsFillTheWidth) {
    for (int width = 40; width < 3000; width += 7) {
        const WallCells cells = CellsFor(width, 160, 16);
        EXPECT_LT(cells.columns * cells.cell.width(), width);
        EXPECT_GE((cells.columns * cells.cell.width()) + cells.columns, width)
            << "a rest of pixels";
        EXPECT_LE(cells.picture.width() + 2 * cells.margin, cells.cell.width());
        EXPECT_LT(cells.cell.width(), 2 * (160 + 2 * cells.margin)) << "no room for one more";
    }
}

TEST(WallGeometryTest, AtFirstTwoPicturesStandSideBySide) {
    EXPECT_EQ(FirstPictureWidth(2000), kFirstPictureWidth);
    EXPECT_EQ(FirstPictureWidth(0), StepPictureWidth(0, -1));
    for (int width = 217; width < 1000; ++width)
        EXPECT_GE(CellsFor(width, FirstPictureWidth(width), 16).columns, 2) << width;
}

TEST(WallGeometryTest, ACellHoldsThePictureAndTheName) {
    const WallCells cells = CellsFor(700, 160, 16);
    EXPECT_EQ(cells.columns, 4);
    EXPECT_EQ(cells.picture, QSize(160, 120));
    EXPECT_EQ(cells.cell, QSize(174, 120 + 16 + 3 * cells.margin));
}

TEST(WallGeometryTest, ANarrowViewShowsSmallPictures) {
    const WallCells cells = CellsFor(113, 512, 16);
    EXPECT_EQ(cells.columns, 1);
    EXPECT_EQ(cells.picture, QSize(100, 75));
    EXPECT_GT(CellsFor(0, 512, 16).picture.width(), 0);
}

TEST(WallGeometryTest, WidthsGoUpAndDownAndStopAtTheEnds) {
    EXPECT_GT(StepPictureWidth(160, 1), 160);
    EXPECT_LT(StepPictureWidth(160, -1), 160);
    EXPECT_EQ(StepPictureWidth(StepPictureWidth(160, 3), -3), 160);
    const int most = StepPictureWidth(160, 100);
    EXPECT_EQ(StepPictureWidth(most, 1), most);
    const int least = StepPictureWidth(160, -100);
    EXPECT_EQ(StepPictureWidth(least, -1), least);
    EXPECT_EQ(KnownPictureWidth(161), 160);
    EXPECT_EQ(KnownPictureWidth(1), least);
    EXPECT_EQ(KnownPictureWidth(32000), most);
    EXPECT_EQ(KnownPictureWidth(kFirstPictureWidth), kFirstPictureWidth);
}

TEST(WallGeometryTest, RowsInPartAreShown) {
    WallCells cells;
    cells.columns = 3;
    cells.cell = QSize(100, 50);
    EXPECT_EQ(RowsShown(cells, 0, 100, 30), (RowRange{0, 5}));
    EXPECT_EQ(RowsShown(cells, 1, 100, 30), (RowRange{0, 8}));
    EXPECT_EQ(RowsShown(cells, 49, 100, 30), (RowRange{0, 8}));
    EXPECT_EQ(RowsShown(cells, 50, 100, 30), (RowRange{3, 8}));
    EXPECT_EQ(RowsShown(cells, 450, 100, 29), (RowRange{27, 28}));
    EXPECT_EQ(RowsShown(cells, 0, 100, 0), (RowRange{0, -1}));
}

TEST(WallGeometryTest, KeysLeadThroughLinesAndColumns) {
    WallCells cells;
    cells.columns = 4;
    cells.cell = QSize(100, 50);
    const auto after = [&](WallStep step, int row) { return RowAfter(cells, 120, step, row, 22); };
    EXPECT_EQ(after(WallStep::kRight, 3), 4) << "on in the next line";
    EXPECT_EQ(after(WallStep::kRight, 21), 21);
    EXPECT_EQ(after(WallStep::kLeft, 4), 3);
    EXPECT_EQ(after(WallStep::kLeft, 0), 0);
    EXPECT_EQ(after(WallStep::kDown, 5), 9);
    EXPECT_EQ(after(WallStep::kDown, 19), 21) << "the last line is shorter";
    EXPECT_EQ(after(WallStep::kDown, 20), 20);
    EXPECT_EQ(after(WallStep::kUp, 5), 1);
    EXPECT_EQ(after(WallStep::kUp, 1), 1);
    EXPECT_EQ(after(WallStep::kPageDown, 1), 9);
    EXPECT_EQ(after(WallStep::kPageDown, 15), 21);
    EXPECT_EQ(after(WallStep::kPageUp, 9), 1);
    EXPECT_EQ(after(WallStep::kPageUp, 6), 2);
    EXPECT_EQ(after(WallStep::kFirst, 9), 0);
    EXPECT_EQ(after(WallStep::kLast, 9), 21);
}

TEST(WallGeometryTest, WhatIsShownIsWantedBeforeWhatComesNext) {
    EXPECT_EQ(RowsWanted({4, 6}, 100, true), (std::vector<int>{4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(RowsWanted({4, 6}, 100, false), (std::vector<int>{4, 5, 6, 3, 2, 1}));
    EXPECT_EQ(RowsWanted({4, 6}, 8, true), (std::vector<int>{4, 5, 6, 7}));
    EXPECT_EQ(RowsWanted({0, 2}, 8, false), (std::vector<int>{0, 1, 2}));
    EXPECT_TRUE(RowsWanted({0, -1}, 0, true).empty());
}

}  // namespace
}  // namespace browser
