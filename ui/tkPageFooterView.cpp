#include "ui/tkPageFooterView.h"

#include <QPainter>

namespace {

constexpr double kTextY = 2.0;
constexpr double kTextHeight = 13.0;
constexpr double kTextWidth = 200.0;
// The rule's upper hairline, above the totals.
constexpr double kRuleY = 22.0;

}  // namespace

tkPageFooterView::tkPageFooterView(QPaintDevice* device)
    : tkPageAreaView(device), _designFont(applicationFont(11.0, true), device) {
    _layout.entryCountField() = {"", {300.0, kTextY, kTextWidth, kTextHeight}, &_designFont};
    _layout.durationField() = {
        "", {tkPageFooterLayout::kGutter, kTextY, kTextWidth, kTextHeight}, &_designFont};
    _layout.awakeFromNib(kRuleY);
    _layout.setFrame({0.0, 0.0, kDesignWidth, kDesignHeight});
}

void tkPageFooterView::draw(QPainter& painter, const tkRect& page) {
    const tkRect& frame = _layout.frame();
    drawField(painter, _layout.durationField(), frame, page);
    drawField(painter, _layout.entryCountField(), frame, page);
    drawRule(painter, _layout.straightLine(), frame, page);
}
