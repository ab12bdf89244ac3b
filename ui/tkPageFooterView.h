#pragma once

#include <QFont>
#include <memory>

#include "report/tkPageFooterLayout.h"
#include "ui/tkPageAreaView.h"
#include "ui/tkTextMeasurerQt.h"

class QPaintDevice;
class QPainter;

// The page footer on paper: the double rule, the total duration at the left and the entry
// count over the last column. The room above the rule takes the part of a row that the page
// breaks leave running into the footer: a row of up to two lines there stays clear of the rule.
class tkPageFooterView : public tkPageAreaView {
  public:
    static constexpr double kDesignWidth = 540.0;
    static constexpr double kDesignHeight = 52.0;

    explicit tkPageFooterView(QPaintDevice* device);
    tkPageFooterView(const tkPageFooterView&) = delete;
    tkPageFooterView& operator=(const tkPageFooterView&) = delete;

    tkPageFooterLayout& layout() { return _layout; }
    const tkPageFooterLayout& layout() const { return _layout; }

    // Both totals take font.
    void setFont(const QFont& font);
    void draw(QPainter& painter, const tkRect& page);

  private:
    QPaintDevice* _device;
    tkTextMeasurerQt _designFont;
    std::unique_ptr<tkTextMeasurerQt> _font;
    tkPageFooterLayout _layout;
};
