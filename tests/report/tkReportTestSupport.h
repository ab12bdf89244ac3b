#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "report/ItkTextMeasurer.h"
#include "report/tkPageFooterLayout.h"
#include "report/tkPageHeaderLayout.h"
#include "report/tkReportSnapshot.h"

// A font of fixed advances: every character is `advance` wide, every line `line` high, and a
// cell keeps `inset` free on each side. A wrapping cell breaks anywhere, so a text of n
// characters in a cell of c characters' room takes ceil(n / c) lines.
class tkFixedMeasurer : public ItkTextMeasurer {
  public:
    explicit tkFixedMeasurer(double advance = 6.0, double line = 12.0, double inset = 2.0)
        : _advance(advance), _line(line), _inset(inset) {}

    tkSize cellSizeForBounds(const std::string& text, const tkRect& bounds,
                             bool wraps) const override {
        const double natural = static_cast<double>(text.size()) * _advance;
        const double room = bounds.width - 2.0 * _inset;
        if (!wraps || natural <= room) {
            return {natural + 2.0 * _inset, _line};
        }
        const double perLine = std::max(1.0, std::floor(room / _advance));
        const double lines = std::ceil(static_cast<double>(text.size()) / perLine);
        return {perLine * _advance + 2.0 * _inset, lines * _line};
    }
    tkRect drawingRectForBounds(const tkRect& bounds) const override {
        return {bounds.x + _inset, bounds.y, bounds.width - 2.0 * _inset, bounds.height};
    }

  private:
    double _advance;
    double _line;
    double _inset;
};

// A header 40 high and a footer 30 high, laid out as the application's are in miniature, with
// every field in the fixed font. Header: title, time stamp and page number on top, the column
// titles low, the rule between. Footer: the rule on top, the two totals below it.
struct tkTestPageAreas {
    tkFixedMeasurer font;
    tkPageHeaderLayout header;
    tkPageFooterLayout footer;

    explicit tkTestPageAreas(double width = 600.0) {
        header.setFrame({0, 0, width, 40});
        header.titleField() = {"", {10, 26, 60, 12}, &font};
        header.timestampField() = {"", {120, 26, 60, 12}, &font, tkPageField::Anchor::kCentre};
        header.pageNumberField() = {
            "", {width - 70, 26, 60, 12}, &font, tkPageField::Anchor::kRight};
        const char* titles[] = {"Date",     "Duration",   "Employee",
                                "Fee Code", "Job Number", "Description"};
        for (size_t i = 0; i < 6; ++i) {
            header.columnHeaders()[i] = {titles[i], {10 + 33.0 * i, 4, 30, 12}, &font};
        }
        header.awakeFromNib(20);
        footer.setFrame({0, 0, width, 30});
        footer.entryCountField() = {"", {10, 2, 100, 12}, &font};
        footer.durationField() = {"", {10, 2, 100, 12}, &font};
        footer.awakeFromNib(20);
        header.setFont(font);
        footer.setFont(font);
    }
};

// A snapshot of the six report columns whose descriptions are the given texts and whose other
// cells are short.
inline tkReportSnapshot snapshotOfDescriptions(const std::vector<std::string>& descriptions) {
    tkReportSnapshot snapshot;
    snapshot.columns.assign(kReportColumns.begin(), kReportColumns.end());
    snapshot.data.assign(5, std::vector<std::string>(descriptions.size(), "x"));
    snapshot.data.push_back(descriptions);
    snapshot.rowCount = static_cast<uint32_t>(descriptions.size());
    snapshot.durationString = "01:00:00";
    return snapshot;
}
