#pragma once

#include <QDateTime>
#include <QFont>
#include <QRectF>
#include <memory>
#include <string>

#include "report/tkPrintTimeSheetLayout.h"
#include "report/tkReportSnapshot.h"
#include "ui/tkPageFooterView.h"
#include "ui/tkPageHeaderView.h"
#include "ui/tkTextMeasurerQt.h"

class QPaintDevice;
class QPainter;
class QPrinter;

// The "Time Sheet Report" on paper: a snapshot of the time sheet's cells, measured and cut into
// pages by the core's layout, and drawn page by page with the header hung from each page's top
// and the footer standing on its bottom. The grid prints in the plain font, the page furniture
// in its bold form.
//
// One view per print job; it prints its snapshot, whatever the sheet does meanwhile.
class tkPrintTimeSheetView {
  public:
    // The grid's font when none is given: the application's font at this size.
    static constexpr double kDefaultFontSize = 11.0;
    // Width pads the columns, height the rows.
    static constexpr tkSize kIntercellSpacing{3.0, 2.0};

    // Texts are measured for device (at 72 dots per inch, so in points), which must outlive
    // the view. A null font means the application's font at kDefaultFontSize. The time stamp
    // of every page is when.
    tkPrintTimeSheetView(tkReportSnapshot snapshot, QPaintDevice* device, bool onlyLastColumnWraps,
                         const QFont* font, const std::string& title, const QDateTime& when);
    tkPrintTimeSheetView(const tkPrintTimeSheetView&) = delete;
    tkPrintTimeSheetView& operator=(const tkPrintTimeSheetView&) = delete;

    // The grid in font, the header's column titles and the footer in its bold form.
    void setFont(const QFont* font);
    // The page rectangle (in points): figures columns, rows and pages.
    void setFrame(const QRectF& pageRect);

    // Prints every page, or the range the printer was given, each on a page of its own.
    // False when the printer can't be opened.
    bool print(QPrinter& printer);
    // Draws page (from 1) onto a painter whose origin is the page's top left.
    void drawPage(QPainter& painter, int32_t page);

    tkPrintTimeSheetLayout& layout() { return _layout; }

  private:
    // The grid of the page whose rectangle is page, over a white ground.
    void drawRect(QPainter& painter, const tkRect& page);
    // The ground of the subtotal rows on that page.
    void drawSubtotalBands(QPainter& painter, const tkRect& page);

    static constexpr int kSubtotalBandGray = 232;
    static constexpr double kSubtotalRuleWidth = 0.5;

    QPaintDevice* _device;
    tkPageHeaderView _header;
    tkPageFooterView _footer;
    tkPrintTimeSheetLayout _layout;
    std::unique_ptr<tkTextMeasurerQt> _cellFont;
};
