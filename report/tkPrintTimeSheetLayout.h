#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "report/ItkTextMeasurer.h"
#include "report/tkReportGeometry.h"
#include "report/tkReportSnapshot.h"

class tkPageFooterLayout;
class tkPageHeaderLayout;

// The "Time Sheet Report" as geometry: it measures every column and row of a snapshot itself,
// cuts the rows into pages by its own arithmetic, and answers a print loop's questions. All
// pages stand one below the other in one tall document with y growing upward; page p (from 1)
// covers y from totalHeight - p * pageHeight to totalHeight - (p - 1) * pageHeight, so page 1
// is at the top. Header and footer are moved to each page just before it is drawn.
//
// Measuring is one cell layout per cell of every column but the last, and one per row of the
// last column; row rectangles are figured once and looked up, so a report of n rows costs O(n)
// measures however many pages it has.
//
// Use: construct, setCellMeasurer() (and the header's and footer's fonts), then setFrame()
// with the page rectangle; until then nothing is figured.
class tkPrintTimeSheetLayout {
  public:
    // Stands at both sides of the printed grid.
    static constexpr double kTableMargin = 10.0;
    static constexpr double kMinRowHeight = 16.0;
    // Added to the widest cell of each column but the last.
    static constexpr double kColumnPadding = 4.0;
    static constexpr double kMeasureExtent = 5000.0;
    static constexpr double kHeightAdjustLimit = 0.25;

    // Takes the snapshot, gives the header the title and the footer the total and the entry
    // count, and hangs both just below the document's origin. With onlyLastColumnWraps only
    // the last column wraps and only it sets a row's height.
    tkPrintTimeSheetLayout(tkReportSnapshot snapshot, bool onlyLastColumnWraps,
                           tkSize intercellSpacing, tkPageHeaderLayout& header,
                           tkPageFooterLayout& footer, std::string title);

    // The grid's font. Not owned; set before setFrame().
    void setCellMeasurer(const ItkTextMeasurer& measurer) { _cellMeasurer = &measurer; }

    // Makes the layout ready: page width and height from rect, columns, rows and pages
    // figured, and the frame made as tall as all pages.
    void setFrame(const tkRect& rect);
    const tkRect& frame() const { return _frame; }
    // The x of both page areas, also added to the footer's y.
    void setOrigin(const tkPoint& origin) { _origin = origin; }
    // Figures columns and rows again when the frame differs from the one at the last refresh.
    // Every figuring starts from the widths that the header's titles keep, so a second one
    // widens each column but the last by a further kColumnPadding.
    void refreshSizes();

    // Column widths: each column but the last as wide as its title and its widest cell, plus
    // padding; the last takes what is left of the page, with no floor.
    void figureColumnWidths();
    // Row heights, pages and row rectangles; see the .cpp for the break rule.
    void figureRowHeights();
    // The measured height of a row, at least kMinRowHeight.
    double rowHeight(int32_t row) const;

    // The row's rectangle across the page; the zero rectangle with no rows or out of range.
    tkRect rectOfRow(int32_t row);
    // The column's strip down the whole document.
    tkRect rectOfColumn(int32_t column) const;
    tkRect frameOfCellAtColumn(int32_t column, int32_t row);
    // -1 above the document; -2 below the last row or with no rows.
    int32_t rowAtPoint(const tkPoint& point);
    // -1 left of 0; -2 past the last column or with no columns. Deliberately tests the
    // column's left edge, so it names the column after the one under the point; the inclusive
    // ranges of columnsInRect() absorb that.
    int32_t columnAtPoint(const tkPoint& point) const;
    // The rows and columns that may meet rect; location + length is the last one included.
    tkRange rowsInRect(const tkRect& rect);
    tkRange columnsInRect(const tkRect& rect) const;
    // The value measured in the last column's cell: its height at a width other than 0, its
    // width at the given height for a width of 0.
    double cellSizeForWidth(double width, double height, const std::string& value) const;
    tkPoint topLeft() const { return {0.0, _frame.height}; }
    double heightAdjustLimit() const { return kHeightAdjustLimit; }
    const std::string& printJobTitle() const { return _title; }

    // ---- The print loop, page by page ----

    // Figures the rows if that hasn't happened; always true. The range is left to the loop,
    // which finds the end through rectForPage().
    bool knowsPageRange();
    // Page p's rectangle, or the zero rectangle past the last page: where a loop stops.
    tkRect rectForPage(int32_t page);
    // The page in hand is read from its rectangle, so a loop may print any sub-range.
    void beginPageInRect(const tkRect& rect);
    void endPage() { ++_currentPageNumber; }
    // Hangs the header from the top of the page in hand, numbers it, and stands the footer
    // on the page's bottom.
    void drawPageBorder();
    // Every cell whose frame meets rect, column by column: what a page shows of the grid,
    // including the part of a tall row that runs over from the page before.
    void forEachCellInRect(
        const tkRect& rect,
        const std::function<void(int32_t column, int32_t row, const tkRect& frame)>& draw);

    // ---- Reading ----

    int32_t numRows() const { return _numRows; }
    int32_t numColumns() const { return _numColumns; }
    int32_t numPages() const { return _numPages; }
    int32_t currentPageNumber() const { return _currentPageNumber; }
    double totalWidth() const { return _totalWidth; }
    double totalHeight() const { return _totalHeight; }
    double pageWidth() const { return _pageWidth; }
    double pageHeight() const { return _pageHeight; }
    double pageTableHeight() const { return _pageTableHeight; }
    double headerHeight() const { return _headerHeight; }
    double footerHeight() const { return _footerHeight; }
    const std::vector<double>& columnWidths() const { return _columnWidths; }
    const std::vector<double>& minColumnWidths() const { return _minColumnWidths; }
    const std::vector<double>& rowHeights() const { return _rowHeights; }
    const std::string& cellText(int32_t column, int32_t row) const { return _data[column][row]; }
    bool cellWraps(int32_t column) const { return _cellWraps[column]; }
    // A row that carries a group's subtotal, drawn as a band of its own.
    bool isSubtotalRow(int32_t row) const { return _subtotalRows[row]; }
    bool onlyLastColumnWraps() const { return _onlyLastColumnWraps; }

  private:
    void ensureRowRects();

    std::vector<std::vector<std::string>> _data;
    std::vector<bool> _cellWraps;
    std::vector<bool> _subtotalRows;
    const ItkTextMeasurer* _cellMeasurer = nullptr;
    tkSize _intercellSpacing;
    int32_t _numPages = 0;
    std::vector<double> _columnWidths;
    std::vector<double> _minColumnWidths;
    std::vector<double> _rowHeights;
    bool _onlyLastColumnWraps;
    double _totalWidth = 0.0;
    double _totalHeight = 0.0;
    int32_t _numRows;
    int32_t _numColumns;
    tkRect _frame;
    tkRect _oldFrame;
    std::vector<tkRect> _rowRects;
    bool _rowRectsFigured = false;
    // The lowest (y - row spacing) of rows 0..r: never rises with r, so the first row whose
    // rectangle reaches below a point is found by binary search instead of a walk.
    std::vector<double> _lowestRowBottom;
    tkPageHeaderLayout& _header;
    tkPageFooterLayout& _footer;
    double _headerHeight = 0.0;
    double _pageTableHeight = 0.0;
    double _footerHeight = 0.0;
    double _pageHeight = 0.0;
    double _pageWidth = 0.0;
    int32_t _currentPageNumber = 1;
    std::string _title;
    tkPoint _origin;
};
