#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QRectF>
#include <QString>
#include <QTextOption>
#include <string>
#include <unordered_map>

#include "report/ItkTextMeasurer.h"

class QPainter;
class QPaintDevice;

// A text cell of one font on one paint device: measures a value the way the report's layout
// asks, and draws it exactly as measured, so that a wrapped description takes on paper the
// lines it was given room for. Sizes are in the device's units; the report prints at 72 dots
// per inch, so they are points.
class tkTextMeasurerQt : public ItkTextMeasurer {
  public:
    // Room a cell keeps free at each side of its text, and above and below it: rows of
    // several lines stand as far apart as rows of one.
    static constexpr double kHorizontalInset = 2.0;
    static constexpr double kVerticalInset = 1.5;

    // The device must outlive the measurer; it decides the resolution the font is measured at.
    tkTextMeasurerQt(const QFont& font, QPaintDevice* device);

    tkSize cellSizeForBounds(const std::string& text, const tkRect& bounds,
                             bool wraps) const override;
    tkRect drawingRectForBounds(const tkRect& bounds) const override;

    const QFont& font() const { return _font; }
    // The height of a cell of one line, insets included.
    double singleLineHeight() const { return _metrics.height() + 2.0 * kVerticalInset; }

    // Draws text inside the drawing rectangle of frame (painter coordinates, y downward), from
    // its top, aligned left, right or centred by alignment. A wrapping cell breaks the
    // text as cellSizeForBounds() did; a single line too long for the cell ends in an
    // ellipsis instead of running into its neighbour.
    void drawCell(QPainter& painter, const std::string& text, const QRectF& frame, bool wraps,
                  Qt::Alignment alignment = Qt::AlignLeft) const;

  private:
    // The width of text on one line, shaped once per distinct text: a report repeats its
    // dates, codes and durations on thousands of rows.
    double naturalWidth(const std::string& text, const QString& value) const;

    QFont _font;
    QPaintDevice* _device;
    QFontMetricsF _metrics;
    QTextOption _wrapping;
    mutable std::unordered_map<std::string, double> _widths;
};
