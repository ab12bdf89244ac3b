#pragma once

#include <QDateTime>

#include "report/tkPageHeaderLayout.h"
#include "ui/tkPageAreaView.h"
#include "ui/tkTextMeasurerQt.h"

// The page header on paper: the title in bold at the left, the time stamp centred, the page
// number at the right, the column titles over their columns and the double rule under them.
// The constructor lays the fields out as the design has them; the report then fills, sizes and
// moves them through layout().
class tkPageHeaderView : public tkPageAreaView {
  public:
    static constexpr double kDesignHeight = 42.0;

    explicit tkPageHeaderView(QPaintDevice* device);

    tkPageHeaderLayout& layout() { return _layout; }

    // Weekday, month name, day without a leading zero, four-digit year and the 24-hour time,
    // with the names of the user's language.
    void setTimeStamp(const QDateTime& when);
    void draw(QPainter& painter, const tkRect& page) override;

  protected:
    void layOutFont(const ItkTextMeasurer& font) override { _layout.setFont(font); }

  private:
    tkTextMeasurerQt _titleFont;
    tkTextMeasurerQt _detailFont;
    tkPageHeaderLayout _layout;
};
