#include "ui/tkTextMeasurerQt.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>

namespace {

// Lays text out in lines no wider than width; answers the height of all lines and the widest.
QSizeF layOut(QTextLayout& layout, double width) {
    double height = 0.0;
    double widest = 0.0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(width, 0.0));
        line.setPosition(QPointF(0.0, height));
        height += line.height();
        widest = std::max(widest, line.naturalTextWidth());
    }
    layout.endLayout();
    return {widest, height};
}

}  // namespace

tkTextMeasurerQt::tkTextMeasurerQt(const QFont& font, QPaintDevice* device)
    : _font(font), _device(device), _metrics(font, device) {
    // A description breaks between words, and a word longer than the column anywhere.
    _wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
}

tkSize tkTextMeasurerQt::cellSizeForBounds(const std::string& text, const tkRect& bounds,
                                           bool wraps) const {
    const QString value = QString::fromStdString(text);
    const double natural = naturalWidth(text, value);
    const double room = bounds.width - 2.0 * kHorizontalInset;
    // Most values fit on one line; only those that don't need a full text layout.
    if (!wraps || natural <= room) {
        return {natural + 2.0 * kHorizontalInset, singleLineHeight()};
    }
    QTextLayout layout(value, _font, _device);
    layout.setTextOption(_wrapping);
    const QSizeF size = layOut(layout, room);
    return {size.width() + 2.0 * kHorizontalInset, size.height() + 2.0 * kVerticalInset};
}

double tkTextMeasurerQt::naturalWidth(const std::string& text, const QString& value) const {
    auto known = _widths.find(text);
    if (known == _widths.end()) {
        known = _widths.emplace(text, _metrics.horizontalAdvance(value)).first;
    }
    return known->second;
}

tkRect tkTextMeasurerQt::drawingRectForBounds(const tkRect& bounds) const {
    return {bounds.x + kHorizontalInset, bounds.y + kVerticalInset,
            bounds.width - 2.0 * kHorizontalInset, bounds.height - 2.0 * kVerticalInset};
}

void tkTextMeasurerQt::drawCell(QPainter& painter, const std::string& text, const QRectF& frame,
                                bool wraps, Qt::Alignment alignment) const {
    const QRectF room =
        frame.adjusted(kHorizontalInset, kVerticalInset, -kHorizontalInset, -kVerticalInset);
    QString value = QString::fromStdString(text);
    const double natural = naturalWidth(text, value);
    painter.setFont(_font);
    if (!wraps || natural <= room.width()) {
        double width = natural;
        if (natural > room.width()) {
            value = _metrics.elidedText(value, Qt::ElideRight, room.width());
            width = _metrics.horizontalAdvance(value);
        }
        double x = room.left();
        if (alignment & Qt::AlignRight) {
            x = room.right() - width;
        } else if (alignment & Qt::AlignHCenter) {
            x = room.left() + (room.width() - width) / 2.0;
        }
        painter.drawText(QPointF(x, room.top() + _metrics.ascent()), value);
        return;
    }
    QTextLayout layout(value, _font, _device);
    layout.setTextOption(_wrapping);
    layOut(layout, room.width());
    layout.draw(&painter, room.topLeft());
}
