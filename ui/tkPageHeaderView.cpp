#include "ui/tkPageHeaderView.h"

#include <QLocale>
#include <QPainter>

#include "records/tkRecordFields.h"
#include "report/tkReportSnapshot.h"

namespace {

constexpr double kTopFieldsY = 24.0;
constexpr double kTopFieldsHeight = 16.0;
constexpr double kColumnTitlesY = 6.0;
constexpr double kColumnTitlesHeight = 13.0;
// Where the design draws the rule: its upper hairline, just under the column titles.
constexpr double kRuleY = 3.0;

}  // namespace

tkPageHeaderView::tkPageHeaderView(QPaintDevice* device)
    : tkPageAreaView(device),
      _titleFont(applicationFont(12.0, true), device),
      _detailFont(applicationFont(9.0, false), device) {
    const double width = kDesignWidth;
    _layout.setFrame({0.0, 0.0, width, kDesignHeight});
    _layout.titleField() = {"", {10.0, kTopFieldsY, 200.0, kTopFieldsHeight}, &_titleFont};
    _layout.timestampField() = {"",
                                {width / 2.0 - 100.0, kTopFieldsY, 200.0, kTopFieldsHeight},
                                &_detailFont,
                                tkPageField::Anchor::kCentre};
    _layout.pageNumberField() = {"",
                                 {width - 110.0, kTopFieldsY, 100.0, kTopFieldsHeight},
                                 &_detailFont,
                                 tkPageField::Anchor::kRight};
    double x = tkPageHeaderLayout::kGutter;
    for (size_t i = 0; i < kReportColumns.size(); ++i) {
        _layout.columnHeaders()[i] = {fieldTitle(kReportColumns[i]),
                                      {x, kColumnTitlesY, 70.0, kColumnTitlesHeight},
                                      &_detailFont};
        x += 73.0;
    }
    _layout.awakeFromNib(kRuleY);
}

void tkPageHeaderView::setTimeStamp(const QDateTime& when) {
    const QString stamp =
        QLocale::system().toString(when, QStringLiteral("dddd, MMMM d, yyyy HH:mm:ss"));
    _layout.setTimeStamp(stamp.toStdString());
}

void tkPageHeaderView::draw(QPainter& painter, const tkRect& page) {
    _layout.prepareToDraw();
    const tkRect& frame = _layout.frame();
    drawField(painter, _layout.titleField(), frame, page);
    drawField(painter, _layout.timestampField(), frame, page, Qt::AlignHCenter);
    drawField(painter, _layout.pageNumberField(), frame, page, Qt::AlignRight);
    for (const tkPageField& column : _layout.columnHeaders()) {
        drawField(painter, column, frame, page);
    }
    drawRule(painter, _layout.straightLine(), frame, page);
}
