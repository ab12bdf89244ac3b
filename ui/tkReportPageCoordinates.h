#pragma once

#include <QPointF>
#include <QRectF>

#include "report/tkReportGeometry.h"

// The report lays its pages out one below the other with y growing upward; a painter draws one
// page at a time with y growing downward from the page's top left. These turn a place in the
// report into a place on the page whose rectangle in the report is `page`.

QPointF toPageCoordinates(const tkPoint& point, const tkRect& page);
QRectF toPageCoordinates(const tkRect& rect, const tkRect& page);
