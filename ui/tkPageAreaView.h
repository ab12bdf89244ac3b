#pragma once

#include <QFont>
#include <vector>

#include "report/tkPageField.h"
#include "report/tkReportGeometry.h"

class QPainter;
class tkTextMeasurerQt;

// What the page header and footer share on paper: their fields drawn in the fonts they were
// measured in, and the double rule. The geometry lives in the core's page area layouts; these
// views only draw it on the page in hand.
class tkPageAreaView {
  public:
    virtual ~tkPageAreaView() = default;

    // The application's font at size points, bold when asked: the fonts of the page furniture.
    static QFont applicationFont(double size, bool bold);

  protected:
    // Draws a field of an area standing at areaFrame in the report onto page.
    static void drawField(QPainter& painter, const tkPageField& field, const tkRect& areaFrame,
                          const tkRect& page, Qt::Alignment alignment = Qt::AlignLeft);
    // Strokes the rule's hairlines, given in the area's own coordinates.
    static void drawRule(QPainter& painter, const std::vector<tkLine>& rule,
                         const tkRect& areaFrame, const tkRect& page);
};
