#pragma once

#include <vector>

#include "report/tkPageField.h"
#include "report/tkReportGeometry.h"

// What the page header and footer share: a frame in the report's coordinates, text fields in
// the area's own coordinates (y upward, origin at the area's lower left), a double rule, and the
// two ways of asking a field how large its text is.
class tkPageAreaLayout {
  public:
    // The rule is two hairlines this far apart.
    static constexpr double kRuleGap = 2.0;
    static constexpr double kRuleLineWidth = 0.25;
    // Stands for "as much room as the text wants" when a field is measured in one direction.
    static constexpr double kMeasureExtent = 5000.0;

    virtual ~tkPageAreaLayout() = default;

    const tkRect& frame() const { return _frame; }
    // Sets the frame and builds the rule anew for it. A change of width moves the fields as
    // their anchors say.
    void setFrame(const tkRect& frame);
    // Moves the area. The rule is kept in the area's own coordinates, so it stays as it is.
    void setFrameOrigin(const tkPoint& origin);
    // The double rule in the area's own coordinates; empty until the first load or setFrame.
    const std::vector<tkLine>& straightLine() const { return _straightLine; }

    // With a width other than 0: the height of the field's text at that width. With a width of
    // 0: the width the text takes at the given height, insets included.
    static double cellSizeForWidth(double width, double height, const tkPageField& field);
    // Gives the field that x and width; y and height stay.
    static void setFieldFrame(tkPageField& field, double x, double width);

  protected:
    // Builds the rule across rect: the lower line kRuleGap below the design-time place of the
    // rule, which lies ruleDistance() below the reference field.
    void straightLineInit(const tkRect& rect);
    // Grows the frame's height by delta; x, y and width stay.
    void growHeight(double delta);

    virtual double ruleReferenceY() const = 0;
    virtual double ruleDistance() const = 0;
    virtual std::vector<tkPageField*> fields() = 0;

  private:
    tkRect _frame;
    std::vector<tkLine> _straightLine;
};
