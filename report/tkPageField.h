#pragma once

#include <string>

#include "report/ItkTextMeasurer.h"
#include "report/tkReportGeometry.h"

// One text field of the page header or footer: its text, its frame in the area's own
// coordinates, and the measurer of the font it shows its text in.
struct tkPageField {
    // How a field follows a change of its area's width, as laid out at design time.
    enum class Anchor {
        kLeft,    // keeps its distance from the left edge
        kCentre,  // keeps its centre at the same share of the width
        kRight,   // keeps its distance from the right edge
    };

    std::string text;
    tkRect frame;
    // Not owned; the area's owner keeps it alive. Set before anything is measured.
    const ItkTextMeasurer* measurer = nullptr;
    Anchor anchor = Anchor::kLeft;
};
