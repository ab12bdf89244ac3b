#include "report/tkPageFooterLayout.h"

#include <algorithm>

void tkPageFooterLayout::awakeFromNib(double horizontalRuleY) {
    _hrDistanceFromTextFields = _entryCountField.frame.y - horizontalRuleY;
}

void tkPageFooterLayout::setEntryCount(int32_t count) {
    setEntryCountString(std::to_string(count));
}

void tkPageFooterLayout::setEntryCountString(const std::string& count) {
    _entryCountField.text = "Entry Count: " + count;
}

void tkPageFooterLayout::setDurationString(const std::string& duration) {
    _durationField.text = "Duration: " + duration;
}

void tkPageFooterLayout::setEntryCountColumn(double column) {
    _entryCountField.frame.x = column + _gutter;
}

void tkPageFooterLayout::setFont(const ItkTextMeasurer& measurer) {
    double maxOld = 0.0;
    double maxNew = 0.0;
    for (tkPageField* field : {&_durationField, &_entryCountField}) {
        field->measurer = &measurer;
        const double newHeight = cellSizeForWidth(field->frame.width, 0.0, *field);
        maxOld = std::max(maxOld, field->frame.height);
        maxNew = std::max(maxNew, newHeight);
        field->frame.height = newHeight;
    }
    growHeight(maxNew - maxOld);
}
