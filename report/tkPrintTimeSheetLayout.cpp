#include "report/tkPrintTimeSheetLayout.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "report/tkPageFooterLayout.h"
#include "report/tkPageHeaderLayout.h"

tkPrintTimeSheetLayout::tkPrintTimeSheetLayout(tkReportSnapshot snapshot, bool onlyLastColumnWraps,
                                               tkSize intercellSpacing, tkPageHeaderLayout& header,
                                               tkPageFooterLayout& footer, std::string title)
    : _data(std::move(snapshot.data)),
      _intercellSpacing(intercellSpacing),
      _onlyLastColumnWraps(onlyLastColumnWraps),
      _numRows(static_cast<int32_t>(snapshot.rowCount)),
      _numColumns(static_cast<int32_t>(snapshot.columns.size())),
      _header(header),
      _footer(footer),
      _title(std::move(title)) {
    _header.setTitle(_title);
    _data.resize(_numColumns);
    _columnWidths.assign(_numColumns, 0.0);
    _minColumnWidths.assign(_numColumns, 0.0);
    _rowHeights.assign(_numRows, 0.0);
    _subtotalRows.assign(_numRows, false);
    for (uint32_t row : snapshot.subtotalRows) {
        _subtotalRows.at(row) = true;
    }
    // Only the last column wraps in a report; the others keep the table's single line.
    _cellWraps.assign(_numColumns, !_onlyLastColumnWraps);
    if (_numColumns > 0) {
        _cellWraps.back() = true;
    }

    _header.setFrameOrigin({_origin.x, -_header.frame().height});
    _footer.setFrameOrigin({_origin.x, -_footer.frame().height});
    _footer.setDurationString(snapshot.durationString);
    _header.setDateOffset(0.0);
    // Entries only: subtotal rows are not entries.
    _footer.setEntryCountString(std::to_string(snapshot.entryCount()));
}

void tkPrintTimeSheetLayout::setFrame(const tkRect& rect) {
    _frame = rect;
    _pageWidth = rect.width;
    _pageHeight = rect.height;
    figureColumnWidths();
    figureRowHeights();
    _frame.height = _totalHeight;
}

void tkPrintTimeSheetLayout::refreshSizes() {
    if (_frame == _oldFrame) {
        return;
    }
    figureColumnWidths();
    figureRowHeights();
    _oldFrame = _frame;
}

void tkPrintTimeSheetLayout::figureColumnWidths() {
    // Header and footer span the page.
    for (tkPageAreaLayout* area : std::initializer_list<tkPageAreaLayout*>{&_header, &_footer}) {
        tkRect widened = area->frame();
        widened.width = _pageWidth;
        area->setFrame(widened);
    }
    // Every column starts from the width of its title.
    const std::array<double, 6> titleWidths = _header.getColumnWidths();
    for (int32_t c = 0; c < _numColumns && c < static_cast<int32_t>(titleWidths.size()); ++c) {
        _minColumnWidths[c] = titleWidths[c];
    }

    _totalWidth = 0.0;
    for (int32_t c = 0; c + 1 < _numColumns; ++c) {
        double width = _minColumnWidths[c];
        for (const std::string& value : _data[c]) {
            const tkRect bounds{0.0, 0.0, kMeasureExtent, kMinRowHeight};
            width = std::max(width,
                             _cellMeasurer->cellSizeForBounds(value, bounds, _cellWraps[c]).width);
        }
        width += kColumnPadding;
        _minColumnWidths[c] = width;
        _columnWidths[c] = width;
        _totalWidth += width + _intercellSpacing.width;
    }
    // Here _totalWidth is where the last column begins, less the margin.
    _footer.setEntryCountColumn(_totalWidth);
    if (_numColumns == 0) {
        return;
    }
    // Deliberately no floor: columns wider than the page leave the last one a negative width.
    const double lastWidth = (_pageWidth - 2.0 * kTableMargin) - _totalWidth;
    _columnWidths.back() = lastWidth;
    _totalWidth += lastWidth;
    _header.setColumnWidths(_columnWidths, _intercellSpacing.width);
}

double tkPrintTimeSheetLayout::rowHeight(int32_t row) const {
    double height = 0.0;
    if (_onlyLastColumnWraps && _numColumns > 0) {
        const int32_t last = _numColumns - 1;
        const tkRect inner =
            _cellMeasurer->drawingRectForBounds({0.0, 0.0, _columnWidths[last], kMeasureExtent});
        height = _cellMeasurer->cellSizeForBounds(_data[last][row], inner, _cellWraps[last]).height;
    } else {
        for (int32_t c = 0; c < _numColumns; ++c) {
            height = std::max(
                height,
                _cellMeasurer->cellSizeForBounds(_data[c][row], rectOfColumn(c), _cellWraps[c])
                    .height);
        }
    }
    return std::max(height, kMinRowHeight);
}

// The break rule. A running height starts at one row spacing; each row adds its height and a
// spacing. The row that makes the run exceed the table's height is a break: it is still laid
// out as the last row of its page, below the table area and into the footer's room (or past the
// page's edge if it is tall), and the next page's run starts with its height although it
// stands on the page before. Deliberate: the break falls one row after the row that no longer
// fit, and a row is never split. When the very last row breaks, the list of breaks ends with
// two equal entries, which makes a last page of header and footer only.
void tkPrintTimeSheetLayout::figureRowHeights() {
    if (_numRows == 0) {
        // An empty report is one page; heights and rectangles stay as they were.
        _numPages = 1;
        return;
    }
    const double spacing = _intercellSpacing.height;
    _headerHeight = _header.frame().height;
    _footerHeight = _footer.frame().height;
    _pageTableHeight = _pageHeight - _footerHeight - _headerHeight - spacing;

    std::vector<int32_t> breaks;
    double run = spacing;
    double document = _pageHeight;
    for (int32_t r = 0; r < _numRows; ++r) {
        const double height = rowHeight(r);
        _rowHeights[r] = height;
        if (run + height + spacing > _pageTableHeight) {
            breaks.push_back(r);
            run = height + spacing;
            document += _pageHeight;
        } else {
            run += height + spacing;
        }
    }
    breaks.push_back(_numRows - 1);
    _totalHeight = document;
    _numPages = static_cast<int32_t>(breaks.size());

    _rowRects.clear();
    _rowRects.reserve(_numRows);
    _lowestRowBottom.clear();
    _lowestRowBottom.reserve(_numRows);
    int32_t next = 0;
    for (size_t page = 0; page < breaks.size(); ++page) {
        const int32_t last = breaks[page];
        if (next > last) {
            continue;
        }
        double y = _totalHeight - static_cast<double>(page) * _pageHeight - _headerHeight;
        for (int32_t r = next; r <= last; ++r) {
            y -= _rowHeights[r] + spacing;
            _rowRects.push_back({kTableMargin, y, _pageWidth - 2.0 * kTableMargin, _rowHeights[r]});
            const double bottom = y - spacing;
            _lowestRowBottom.push_back(
                _lowestRowBottom.empty() ? bottom : std::min(_lowestRowBottom.back(), bottom));
        }
        next = last + 1;
    }
    _rowRectsFigured = true;
}

void tkPrintTimeSheetLayout::ensureRowRects() {
    if (!_rowRectsFigured) {
        figureRowHeights();
    }
}

tkRect tkPrintTimeSheetLayout::rectOfRow(int32_t row) {
    if (_numRows == 0) {
        return {};
    }
    ensureRowRects();
    if (row < 0 || row >= static_cast<int32_t>(_rowRects.size())) {
        return {};
    }
    return _rowRects[row];
}

tkRect tkPrintTimeSheetLayout::rectOfColumn(int32_t column) const {
    double x = kTableMargin;
    for (int32_t k = 0; k < column && k < _numColumns; ++k) {
        x += _columnWidths[k] + _intercellSpacing.width;
    }
    const double width = column >= 0 && column < _numColumns ? _columnWidths[column] : 0.0;
    return {x, 0.0, width, std::max(_totalHeight, _frame.height)};
}

tkRect tkPrintTimeSheetLayout::frameOfCellAtColumn(int32_t column, int32_t row) {
    return rectIntersection(rectOfColumn(column), rectOfRow(row));
}

int32_t tkPrintTimeSheetLayout::rowAtPoint(const tkPoint& point) {
    if (point.y > _totalHeight) {
        return -1;
    }
    if (_numRows < 1) {
        return -2;
    }
    ensureRowRects();
    // The first row whose rectangle, less the spacing, reaches below the point.
    const auto found =
        std::partition_point(_lowestRowBottom.begin(), _lowestRowBottom.end(),
                             [&point](double bottom) { return !(bottom < point.y); });
    if (found == _lowestRowBottom.end()) {
        return -2;
    }
    return static_cast<int32_t>(found - _lowestRowBottom.begin());
}

int32_t tkPrintTimeSheetLayout::columnAtPoint(const tkPoint& point) const {
    if (point.x < 0.0) {
        return -1;
    }
    if (_numColumns < 1) {
        return -2;
    }
    double left = kTableMargin;
    for (int32_t c = 0; c < _numColumns; ++c) {
        if (left + _intercellSpacing.width >= point.x) {
            return c;
        }
        left += _columnWidths[c] + _intercellSpacing.width;
    }
    return -2;
}

tkRange tkPrintTimeSheetLayout::rowsInRect(const tkRect& rect) {
    if (_numRows == 0) {
        return {0, 0};
    }
    const int32_t top = rowAtPoint({rect.x, rect.maxY()});
    int32_t bottom = rowAtPoint({rect.maxX(), rect.y});
    if (top == -2) {
        return {0, 0};
    }
    if (bottom == -2) {
        bottom = _numRows - 1;
    }
    if (top < 0) {
        return {0, std::max(bottom, 0)};
    }
    if (bottom >= 0) {
        return {top, bottom - top};
    }
    return {top, _numRows - 1 - top};
}

tkRange tkPrintTimeSheetLayout::columnsInRect(const tkRect& rect) const {
    const int32_t left = columnAtPoint({rect.x, rect.maxY()});
    const int32_t right = columnAtPoint({rect.maxX(), rect.y});
    if (left < 0) {
        return {0, std::max(right, 0)};
    }
    if (right < 0) {
        return {left, _numColumns - 1 - left};
    }
    return {left, right - left};
}

double tkPrintTimeSheetLayout::cellSizeForWidth(double width, double height,
                                                const std::string& value) const {
    const bool wraps = _numColumns > 0 && _cellWraps.back();
    if (width != 0.0) {
        return _cellMeasurer->cellSizeForBounds(value, {0.0, 0.0, width, kMeasureExtent}, wraps)
            .height;
    }
    return _cellMeasurer->cellSizeForBounds(value, {0.0, 0.0, kMeasureExtent, height}, wraps).width;
}

bool tkPrintTimeSheetLayout::knowsPageRange() {
    if (_numPages == 0) {
        figureRowHeights();
    }
    return true;
}

tkRect tkPrintTimeSheetLayout::rectForPage(int32_t page) {
    if (_numPages == 0) {
        figureRowHeights();
    }
    if (page > _numPages) {
        return {};
    }
    return {0.0, _totalHeight - page * _pageHeight, _pageWidth, _pageHeight};
}

void tkPrintTimeSheetLayout::beginPageInRect(const tkRect& rect) {
    if (_pageHeight > 0.0) {
        _currentPageNumber = static_cast<int32_t>((_totalHeight - rect.y) / _pageHeight);
    }
}

void tkPrintTimeSheetLayout::drawPageBorder() {
    const int32_t page = _currentPageNumber;
    _header.setFrameOrigin({_origin.x, _totalHeight - (page - 1) * _pageHeight - _headerHeight});
    _header.setPageNumber(page, _numPages);
    _footer.setFrameOrigin({_origin.x, _totalHeight - page * _pageHeight + _origin.y});
}

void tkPrintTimeSheetLayout::forEachCellInRect(
    const tkRect& rect,
    const std::function<void(int32_t column, int32_t row, const tkRect& frame)>& draw) {
    const tkRange rows = rowsInRect(rect);
    const tkRange columns = columnsInRect(rect);
    for (int32_t c = columns.location; c <= columns.location + columns.length; ++c) {
        if (c < 0 || c >= _numColumns) {
            continue;
        }
        // An empty report asks for row 0 too; it has no cell to draw.
        for (int32_t r = rows.location; r <= rows.location + rows.length && r < _numRows; ++r) {
            const tkRect cell = frameOfCellAtColumn(c, r);
            if (rectsIntersect(cell, rect)) {
                draw(c, r, cell);
            }
        }
    }
}
