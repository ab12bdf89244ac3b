#include "report/tkPageHeaderLayout.h"

#include <algorithm>

void tkPageHeaderLayout::awakeFromNib(double horizontalRuleY) {
    _hrDistanceFromTopFields = _timestampField.frame.y - horizontalRuleY;
    straightLineInit(frame());
}

void tkPageHeaderLayout::setTitle(const std::string& title) {
    _titleField.text = title;
    refreshHeaderValues();
}

void tkPageHeaderLayout::setTimeStamp(const std::string& timestamp) {
    _timestampField.text = timestamp;
    refreshHeaderValues();
}

void tkPageHeaderLayout::setPageNumber(int32_t page, int32_t total) {
    _pageNumberField.text = "Page " + std::to_string(page) + " of " + std::to_string(total);
}

std::array<double, 6> tkPageHeaderLayout::getColumnWidths() const {
    std::array<double, 6> widths{};
    for (size_t i = 0; i < _columnHeaders.size(); ++i) {
        widths[i] = _columnHeaders[i].frame.width;
    }
    return widths;
}

void tkPageHeaderLayout::setColumnWidths(const std::vector<double>& widths, double padding) {
    double x = _gutter + _dateOffset;
    for (size_t i = 0; i < _columnHeaders.size() && i < widths.size(); ++i) {
        const double width = i == 0 ? widths[i] - _dateOffset : widths[i];
        setFieldFrame(_columnHeaders[i], x, width);
        x += width + padding;
    }
}

void tkPageHeaderLayout::setFont(const ItkTextMeasurer& measurer) {
    double maxOld = 0.0;
    double maxNew = 0.0;
    for (tkPageField& field : _columnHeaders) {
        field.measurer = &measurer;
        const tkRect old = field.frame;
        const double newHeight = cellSizeForWidth(old.width, 0.0, field);
        const double newWidth = cellSizeForWidth(0.0, old.height, field);
        maxOld = std::max(maxOld, old.height);
        maxNew = std::max(maxNew, newHeight);
        field.frame = {old.x, old.y, newWidth, newHeight};
    }
    refreshHeaderValues();
    growHeight(maxNew - maxOld);
}

void tkPageHeaderLayout::refreshHeaderValues() {
    tkRect& stamp = _timestampField.frame;
    const double height = stamp.height;
    const double stampWidth = cellSizeForWidth(0.0, height, _timestampField);
    stamp = {stamp.x - 0.5 * (stampWidth - stamp.width), stamp.y, stampWidth, height};

    tkRect& title = _titleField.frame;
    const double titleWidth = cellSizeForWidth(0.0, height, _titleField);
    const double width = title.x + titleWidth > stamp.x ? stamp.x - title.x : titleWidth;
    title = {title.x, title.y, width, height};
}

void tkPageHeaderLayout::prepareToDraw() {
    _columnHeaders[kDescription].frame.height = _columnHeaders[kFeeCode].frame.height;
}

std::vector<tkPageField*> tkPageHeaderLayout::fields() {
    std::vector<tkPageField*> all = {&_titleField, &_pageNumberField, &_timestampField};
    for (tkPageField& field : _columnHeaders) {
        all.push_back(&field);
    }
    return all;
}
