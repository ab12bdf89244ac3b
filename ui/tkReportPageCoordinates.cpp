#include "ui/tkReportPageCoordinates.h"

QPointF toPageCoordinates(const tkPoint& point, const tkRect& page) {
    return {point.x - page.x, page.maxY() - point.y};
}

QRectF toPageCoordinates(const tkRect& rect, const tkRect& page) {
    return {rect.x - page.x, page.maxY() - rect.maxY(), rect.width, rect.height};
}
