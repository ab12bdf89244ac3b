#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "report/tkPageAreaLayout.h"

// The page header: the report's title at the left, the time stamp kept centred on its
// design-time centre, the page number, the six column titles and a double rule. The owner lays
// the fields out (frames, anchors, measurers) as a design and then calls awakeFromNib(); the
// report fills them and tells them their column widths.
class tkPageHeaderLayout : public tkPageAreaLayout {
  public:
    // Left margin of the first column title, the same as the table's margin.
    static constexpr double kGutter = 10.0;
    // Indices into columnHeaders(), which follow the printed columns.
    enum Column { kDate, kDuration, kEmployee, kFeeCode, kJobNumber, kDescription };

    tkPageField& titleField() { return _titleField; }
    tkPageField& pageNumberField() { return _pageNumberField; }
    tkPageField& timestampField() { return _timestampField; }
    // Date, duration, employee, fee code, job number, description: the printed order.
    std::array<tkPageField, 6>& columnHeaders() { return _columnHeaders; }
    const std::array<tkPageField, 6>& columnHeaders() const { return _columnHeaders; }
    const tkPageField& titleField() const { return _titleField; }
    const tkPageField& pageNumberField() const { return _pageNumberField; }
    const tkPageField& timestampField() const { return _timestampField; }

    // The load, once the design is in place: the rule keeps the distance that the design puts
    // between the time stamp and horizontalRuleY, and is built across the present frame.
    void awakeFromNib(double horizontalRuleY);

    tkRect descriptionFrame() const { return _columnHeaders[kDescription].frame; }
    tkRect feeCodeFrame() const { return _columnHeaders[kFeeCode].frame; }

    // A shift of the first column's start; 0 in use.
    void setDateOffset(double offset) { _dateOffset = offset; }
    void setTitle(const std::string& title);
    // The time stamp is formatted by the caller (the clock and the locale are the platform's);
    // it is set once per report, so all pages carry the same time.
    void setTimeStamp(const std::string& timestamp);
    // "Page <page> of <total>".
    void setPageNumber(int32_t page, int32_t total);

    // The width of each column title's frame, in printed order: the floor of each column.
    std::array<double, 6> getColumnWidths() const;
    // Lays the column titles out from the gutter, each widths[i] wide and padding apart. The
    // first starts dateOffset further right and is that much narrower. Titles beyond the
    // widths given stay as they are.
    void setColumnWidths(const std::vector<double>& widths, double padding);

    // Gives the column titles the font of measurer and sizes each to its natural width and
    // height; the header grows by the growth of the tallest. The title, time stamp and page
    // number keep their design-time fonts.
    void setFont(const ItkTextMeasurer& measurer);

    // Keeps the time stamp centred at its natural width, and cuts the title where the time
    // stamp begins.
    void refreshHeaderValues();

    // Before each drawing: the description title takes the fee code title's height, so that
    // the longest title never stands taller than its neighbours.
    void prepareToDraw();

  protected:
    double ruleReferenceY() const override { return _timestampField.frame.y; }
    double ruleDistance() const override { return _hrDistanceFromTopFields; }
    std::vector<tkPageField*> fields() override;

  private:
    tkPageField _titleField;
    tkPageField _pageNumberField;
    tkPageField _timestampField;
    std::array<tkPageField, 6> _columnHeaders;
    double _hrDistanceFromTopFields = 0.0;
    double _gutter = kGutter;
    double _dateOffset = 0.0;
};
