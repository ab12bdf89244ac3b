#pragma once

#include <string>

#include "report/tkReportGeometry.h"

// How the report learns the size of a text in one font: the questions a text cell answers
// about a value. The layout asks nothing else of the platform, so it runs headless with a
// measurer of fixed advances. One measurer stands for one font.
class ItkTextMeasurer {
  public:
    virtual ~ItkTextMeasurer() = default;

    // The size a cell showing text takes inside bounds, its insets included. A wrapping cell
    // breaks the text into lines to fit the width of bounds and answers the height of all
    // lines; a cell that doesn't wrap answers one line and the text's whole width.
    virtual tkSize cellSizeForBounds(const std::string& text, const tkRect& bounds,
                                     bool wraps) const = 0;

    // The part of bounds left for text once the cell's insets are taken off.
    virtual tkRect drawingRectForBounds(const tkRect& bounds) const = 0;
};
