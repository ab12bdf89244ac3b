#pragma once

#include "report/tkPageFooterLayout.h"
#include "ui/tkPageAreaView.h"
#include "ui/tkTextMeasurerQt.h"

// The page footer on paper: the double rule, the total duration at the left and the entry
// count over the last column. The room above the rule takes the part of a row that the page
// breaks leave running into the footer: a row of up to two lines there stays clear of the rule.
class tkPageFooterView : public tkPageAreaView {
  public:
    static constexpr double kDesignHeight = 52.0;

    explicit tkPageFooterView(QPaintDevice* device);

    tkPageFooterLayout& layout() { return _layout; }

    void draw(QPainter& painter, const tkRect& page) override;

  protected:
    void layOutFont(const ItkTextMeasurer& font) override { _layout.setFont(font); }

  private:
    tkTextMeasurerQt _designFont;
    tkPageFooterLayout _layout;
};
