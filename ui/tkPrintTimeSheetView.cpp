#include "ui/tkPrintTimeSheetView.h"

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QPrinter>
#include <algorithm>
#include <limits>
#include <utility>

#include "ui/tkReportPageCoordinates.h"

tkPrintTimeSheetView::tkPrintTimeSheetView(tkReportSnapshot snapshot, QPaintDevice* device,
                                           bool onlyLastColumnWraps, const QFont* font,
                                           const std::string& title, const QDateTime& when)
    : _device(device),
      _header(device),
      _footer(device),
      _layout(std::move(snapshot), onlyLastColumnWraps, kIntercellSpacing, _header.layout(),
              _footer.layout(), title) {
    setFont(font);
    _header.setTimeStamp(when);
}

void tkPrintTimeSheetView::setFont(const QFont* font) {
    QFont plain =
        font != nullptr ? *font : tkPageAreaView::applicationFont(kDefaultFontSize, false);
    plain.setHintingPreference(QFont::PreferNoHinting);
    _cellFont = std::make_unique<tkTextMeasurerQt>(plain, _device);
    _layout.setCellMeasurer(*_cellFont);
    QFont bold = plain;
    bold.setBold(true);
    _header.setFont(bold);
    _footer.setFont(bold);
}

void tkPrintTimeSheetView::setFrame(const QRectF& pageRect) {
    _layout.setFrame({pageRect.x(), pageRect.y(), pageRect.width(), pageRect.height()});
}

bool tkPrintTimeSheetView::print(QPrinter& printer) {
    QPainter painter;
    if (!painter.begin(&printer)) {
        return false;
    }
    _layout.knowsPageRange();
    const bool ranged = printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0;
    const int32_t first = ranged ? printer.fromPage() : 1;
    const int32_t last =
        ranged ? std::max(printer.toPage(), first) : std::numeric_limits<int32_t>::max();
    for (int32_t page = first; page <= last; ++page) {
        if (_layout.rectForPage(page) == tkRect{}) {
            break;
        }
        if (page > first) {
            printer.newPage();
        }
        drawPage(painter, page);
    }
    return painter.end();
}

void tkPrintTimeSheetView::drawPage(QPainter& painter, int32_t page) {
    const tkRect rect = _layout.rectForPage(page);
    _layout.beginPageInRect(rect);
    _layout.drawPageBorder();
    painter.save();
    // Only what falls on this page prints here: the header of an empty report hangs just
    // above its only page, and the part of a tall row that runs past a page's bottom edge
    // prints at the top of the next one.
    painter.setClipRect(QRectF(0.0, 0.0, rect.width, rect.height));
    painter.setPen(Qt::black);
    drawRect(painter, rect);
    _header.draw(painter, rect);
    _footer.draw(painter, rect);
    painter.restore();
    _layout.endPage();
}

void tkPrintTimeSheetView::drawRect(QPainter& painter, const tkRect& page) {
    painter.fillRect(toPageCoordinates(page, page), Qt::white);
    // A row's height was measured with the last column's text in the drawing rectangle of its
    // drawing rectangle, insets taken off twice; the text breaks at that same width on paper,
    // so that it takes exactly the lines its row was given.
    const double measuredRoom =
        _layout.onlyLastColumnWraps() ? 2.0 * tkTextMeasurerQt::kHorizontalInset : 0.0;
    drawSubtotalBands(painter, page);
    _layout.forEachCellInRect(page, [&](int32_t column, int32_t row, const tkRect& frame) {
        const bool wraps = _layout.cellWraps(column);
        const QRectF cell =
            toPageCoordinates(frame, page).adjusted(0.0, 0.0, wraps ? -measuredRoom : 0.0, 0.0);
        _cellFont->drawCell(painter, _layout.cellText(column, row), cell, wraps);
    });
}

void tkPrintTimeSheetView::drawSubtotalBands(QPainter& painter, const tkRect& page) {
    const tkRange rows = _layout.rowsInRect(page);
    for (int32_t row = rows.location; row <= rows.location + rows.length && row < _layout.numRows();
         ++row) {
        if (row < 0 || !_layout.isSubtotalRow(row)) {
            continue;
        }
        // A light band, full width, with a hairline over it: the eye finds the end of each
        // group without the row's text changing its measured size.
        const QRectF band = toPageCoordinates(_layout.rectOfRow(row), page);
        painter.fillRect(band, QColor(kSubtotalBandGray, kSubtotalBandGray, kSubtotalBandGray));
        const QPen pen(Qt::black, kSubtotalRuleWidth);
        painter.save();
        painter.setPen(pen);
        painter.drawLine(band.topLeft(), band.topRight());
        painter.restore();
    }
}
