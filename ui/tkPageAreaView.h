#pragma once

#include <QFont>
#include <memory>
#include <vector>

#include "report/tkPageField.h"
#include "report/tkReportGeometry.h"

class ItkTextMeasurer;
class QPainter;
class QPaintDevice;
class tkTextMeasurerQt;

// What the page header and footer share on paper: fonts measured for the print device, their
// fields drawn in the fonts they were measured in, and the double rule. The geometry lives in
// the core's page area layouts; these views only measure for them and draw them on the page
// in hand.
class tkPageAreaView {
  public:
    // The page width the designs are drawn for; a page of another width moves the centred and
    // the right-hand fields along.
    static constexpr double kDesignWidth = 540.0;

    // Fonts are measured for device, which must outlive the view.
    explicit tkPageAreaView(QPaintDevice* device);
    virtual ~tkPageAreaView();
    tkPageAreaView(const tkPageAreaView&) = delete;
    tkPageAreaView& operator=(const tkPageAreaView&) = delete;

    // The application's font at size points, bold when asked: the fonts of the page furniture.
    static QFont applicationFont(double size, bool bold);

    // The fields that the report sizes take font: the column titles of the header, both totals
    // of the footer. The other fields keep their design-time fonts.
    void setFont(const QFont& font);
    // Draws the area where the report has moved it, onto the page whose rectangle is page.
    virtual void draw(QPainter& painter, const tkRect& page) = 0;

  protected:
    QPaintDevice* device() const { return _device; }
    // Hands the measurer of the font given to setFont() to the layout.
    virtual void layOutFont(const ItkTextMeasurer& font) = 0;

    // Draws a field of an area standing at areaFrame in the report onto page.
    static void drawField(QPainter& painter, const tkPageField& field, const tkRect& areaFrame,
                          const tkRect& page, Qt::Alignment alignment = Qt::AlignLeft);
    // Strokes the rule's hairlines, given in the area's own coordinates.
    static void drawRule(QPainter& painter, const std::vector<tkLine>& rule,
                         const tkRect& areaFrame, const tkRect& page);

  private:
    QPaintDevice* _device;
    std::unique_ptr<tkTextMeasurerQt> _font;
};
