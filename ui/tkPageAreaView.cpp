#include "ui/tkPageAreaView.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPen>

#include "report/tkPageAreaLayout.h"
#include "ui/tkReportPageCoordinates.h"
#include "ui/tkTextMeasurerQt.h"

tkPageAreaView::tkPageAreaView(QPaintDevice* device) : _device(device) {}

tkPageAreaView::~tkPageAreaView() = default;

void tkPageAreaView::setFont(const QFont& font) {
    _font = std::make_unique<tkTextMeasurerQt>(font, _device);
    layOutFont(*_font);
}

QFont tkPageAreaView::applicationFont(double size, bool bold) {
    QFont font = QGuiApplication::font();
    font.setPointSizeF(size);
    font.setBold(bold);
    // Measured and drawn at the same unhinted advances, so text fits where it was measured to.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

void tkPageAreaView::drawField(QPainter& painter, const tkPageField& field, const tkRect& areaFrame,
                               const tkRect& page, Qt::Alignment alignment) {
    // The views give their fields Qt measurers only.
    const auto& measurer = static_cast<const tkTextMeasurerQt&>(*field.measurer);
    const tkRect inReport{areaFrame.x + field.frame.x, areaFrame.y + field.frame.y,
                          field.frame.width, field.frame.height};
    QRectF frame = toPageCoordinates(inReport, page);
    // One line at the bottom of the field, so that fields of different fonts side by side
    // share a base line.
    frame.setTop(frame.bottom() - measurer.singleLineHeight());
    measurer.drawCell(painter, field.text, frame, false, alignment);
}

void tkPageAreaView::drawRule(QPainter& painter, const std::vector<tkLine>& rule,
                              const tkRect& areaFrame, const tkRect& page) {
    QPen pen(Qt::black);
    pen.setWidthF(tkPageAreaLayout::kRuleLineWidth);
    painter.setPen(pen);
    for (const tkLine& line : rule) {
        const tkPoint from{areaFrame.x + line.from.x, areaFrame.y + line.from.y};
        const tkPoint to{areaFrame.x + line.to.x, areaFrame.y + line.to.y};
        painter.drawLine(toPageCoordinates(from, page), toPageCoordinates(to, page));
    }
}
