#pragma once

#include <cstdint>

// Plain geometry of the printed report, in points. As on paper, y grows upward: a report is
// one tall column of pages with page 1 at the top, and a rectangle's origin is its lower left
// corner.

struct tkPoint {
    double x = 0.0;
    double y = 0.0;
    bool operator==(const tkPoint&) const = default;
};

struct tkSize {
    double width = 0.0;
    double height = 0.0;
};

struct tkRect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    bool operator==(const tkRect&) const = default;
};

// A run of indices. Where the report hands one out for hit-testing, location + length is the
// last index included, not the first one past the run.
struct tkRange {
    int32_t location = 0;
    int32_t length = 0;
    bool operator==(const tkRange&) const = default;
};

// One straight stroke of a rule.
struct tkLine {
    tkPoint from;
    tkPoint to;
    bool operator==(const tkLine&) const = default;
};

// True when both rectangles have an area and overlap; touching edges don't count.
bool rectsIntersect(const tkRect& a, const tkRect& b);

// The overlap of two rectangles, or the zero rectangle when they don't overlap.
tkRect rectIntersection(const tkRect& a, const tkRect& b);
