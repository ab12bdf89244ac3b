#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report/tkPageAreaLayout.h"

// The page footer: a double rule, the total duration and the entry count. The owner lays the
// fields out as a design and calls awakeFromNib(); the report fills them and moves the entry
// count over the last printed column.
class tkPageFooterLayout : public tkPageAreaLayout {
  public:
    static constexpr double kGutter = 10.0;

    tkPageField& entryCountField() { return _entryCountField; }
    tkPageField& durationField() { return _durationField; }
    const tkPageField& entryCountField() const { return _entryCountField; }
    const tkPageField& durationField() const { return _durationField; }

    // The load, once the design is in place: the rule keeps the distance that the design puts
    // between the entry count and horizontalRuleY. Unlike the header's, the footer's rule is
    // built by its first setFrame().
    void awakeFromNib(double horizontalRuleY);

    void setEntryCount(int32_t count);
    // "Entry Count: <count>".
    void setEntryCountString(const std::string& count);
    // "Duration: <duration>".
    void setDurationString(const std::string& duration);
    // Moves the entry count to stand over the column that starts at x = column + gutter; its
    // width stays.
    void setEntryCountColumn(double column);

    // Gives both fields the font of measurer and the height of one line in it; the footer
    // grows by the growth of the taller field. Widths stay as designed.
    void setFont(const ItkTextMeasurer& measurer);

  protected:
    double ruleReferenceY() const override { return _entryCountField.frame.y; }
    double ruleDistance() const override { return _hrDistanceFromTextFields; }
    std::vector<tkPageField*> fields() override { return {&_entryCountField, &_durationField}; }

  private:
    tkPageField _entryCountField;
    tkPageField _durationField;
    double _hrDistanceFromTextFields = 0.0;
    double _gutter = kGutter;
};
