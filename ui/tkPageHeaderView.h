#pragma once

#include <QDateTime>
#include <QFont>
#include <memory>

#include "report/tkPageHeaderLayout.h"
#include "ui/tkPageAreaView.h"
#include "ui/tkTextMeasurerQt.h"

class QPaintDevice;
class QPainter;

// The page header on paper: the title in bold at the left, the time stamp centred, the page
// number at the right, the column titles over their columns and the double rule under them.
// The constructor lays the fields out as the design has them; the report then fills, sizes and
// moves them through layout().
class tkPageHeaderView : public tkPageAreaView {
  public:
    // The width the design is drawn for; a page of another width moves the centred and the
    // right-hand fields along.
    static constexpr double kDesignWidth = 540.0;
    static constexpr double kDesignHeight = 42.0;

    // Fonts are measured for device, which must outlive the view.
    explicit tkPageHeaderView(QPaintDevice* device);
    tkPageHeaderView(const tkPageHeaderView&) = delete;
    tkPageHeaderView& operator=(const tkPageHeaderView&) = delete;

    tkPageHeaderLayout& layout() { return _layout; }
    const tkPageHeaderLayout& layout() const { return _layout; }

    // The column titles take font; the other fields keep their design-time fonts.
    void setFont(const QFont& font);
    // Weekday, month name, day without a leading zero, four-digit year and the 24-hour time,
    // with the names of the user's language.
    void setTimeStamp(const QDateTime& when);

    // Draws the header where the report has moved it, onto the page whose rectangle is page.
    void draw(QPainter& painter, const tkRect& page);

  private:
    QPaintDevice* _device;
    tkTextMeasurerQt _titleFont;
    tkTextMeasurerQt _detailFont;
    std::unique_ptr<tkTextMeasurerQt> _columnFont;
    tkPageHeaderLayout _layout;
};
