#include "report/tkPageAreaLayout.h"

void tkPageAreaLayout::setFrame(const tkRect& frame) {
    const double widthChange = frame.width - _frame.width;
    _frame = frame;
    if (widthChange != 0.0) {
        for (tkPageField* field : fields()) {
            if (field->anchor == tkPageField::Anchor::kCentre) {
                field->frame.x += widthChange / 2.0;
            } else if (field->anchor == tkPageField::Anchor::kRight) {
                field->frame.x += widthChange;
            }
        }
    }
    straightLineInit(frame);
}

void tkPageAreaLayout::setFrameOrigin(const tkPoint& origin) {
    _frame.x = origin.x;
    _frame.y = origin.y;
}

double tkPageAreaLayout::cellSizeForWidth(double width, double height, const tkPageField& field) {
    if (width != 0.0) {
        return field.measurer
            ->cellSizeForBounds(field.text, {0.0, 0.0, width, kMeasureExtent}, false)
            .height;
    }
    const tkRect inner = field.measurer->drawingRectForBounds({0.0, 0.0, kMeasureExtent, height});
    return field.measurer->cellSizeForBounds(field.text, inner, false).width;
}

void tkPageAreaLayout::setFieldFrame(tkPageField& field, double x, double width) {
    field.frame.x = x;
    field.frame.width = width;
}

void tkPageAreaLayout::straightLineInit(const tkRect& rect) {
    // The rule's height is cut to single precision, as the stored geometry of a view is.
    const double y0 = static_cast<float>(ruleReferenceY() - ruleDistance() - kRuleGap);
    _straightLine = {
        {{rect.x, y0}, {rect.x + rect.width, y0}},
        {{rect.x, y0 + kRuleGap}, {rect.x + rect.width, y0 + kRuleGap}},
    };
}

void tkPageAreaLayout::growHeight(double delta) {
    tkRect grown = _frame;
    grown.height += delta;
    setFrame(grown);
}
