#include "report/tkReportGeometry.h"

#include <algorithm>

bool rectsIntersect(const tkRect& a, const tkRect& b) {
    if (a.width <= 0.0 || a.height <= 0.0 || b.width <= 0.0 || b.height <= 0.0) {
        return false;
    }
    return a.x < b.maxX() && b.x < a.maxX() && a.y < b.maxY() && b.y < a.maxY();
}

tkRect rectIntersection(const tkRect& a, const tkRect& b) {
    if (!rectsIntersect(a, b)) {
        return {};
    }
    const double x = std::max(a.x, b.x);
    const double y = std::max(a.y, b.y);
    return {x, y, std::min(a.maxX(), b.maxX()) - x, std::min(a.maxY(), b.maxY()) - y};
}
