#include "ui/tkTimerBrowserDataSource.h"

#include "records/tkDuration.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "ui/tkImages.h"

namespace {

int timerCount() {
    return static_cast<int>(tkTimerArray::instance().numTimers());
}

}  // namespace

tkTimerBrowserDataSource::tkTimerBrowserDataSource(QObject* parent)
    : QAbstractTableModel(parent), reportedRows_(timerCount()) {}

// The count the view was told, so that rows come and go only through
// noteNumberOfRowsChanged's signals.
int tkTimerBrowserDataSource::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : reportedRows_;
}

int tkTimerBrowserDataSource::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 2;
}

QVariant tkTimerBrowserDataSource::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= timerCount()) {
        return {};
    }
    const tkTimer* timer = tkTimerArray::instance().timerAt(index.row());
    if (index.column() == RunIcons && role == Qt::DecorationRole) {
        return iconForTimer(*timer);
    }
    if (index.column() == Timers && (role == Qt::DisplayRole || role == Qt::EditRole)) {
        return QString::fromStdString(timer->getTitle());
    }
    return {};
}

bool tkTimerBrowserDataSource::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::EditRole || index.row() >= timerCount()) {
        return false;
    }
    // An empty title is accepted; the timer posts and the list redraws.
    tkTimerArray::instance().timerAt(index.row())->setTitle(value.toString().toStdString());
    return true;
}

Qt::ItemFlags tkTimerBrowserDataSource::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.isValid() && index.column() == Timers) {
        flags |= Qt::ItemIsEditable;
    }
    return flags;
}

void tkTimerBrowserDataSource::noteNumberOfRowsChanged() {
    const int rows = timerCount();
    if (rows > reportedRows_) {
        beginInsertRows(QModelIndex(), reportedRows_, rows - 1);
        reportedRows_ = rows;
        endInsertRows();
    } else if (rows < reportedRows_) {
        beginRemoveRows(QModelIndex(), rows, reportedRows_ - 1);
        reportedRows_ = rows;
        endRemoveRows();
    }
    if (rows > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rows - 1, columnCount() - 1));
    }
}

QString tkTimerBrowserDataSource::iconNameForTimer(const tkTimer& timer) {
    if (timer.isRunning()) {
        return QStringLiteral("runningTimerIcon");
    }
    return timer.getDuration()->seconds() == 0 ? QStringLiteral("stoppedEmptyTimerIcon")
                                               : QStringLiteral("stoppedNonEmptyTimerIcon");
}

QIcon tkTimerBrowserDataSource::iconForTimer(const tkTimer& timer) {
    return imageNamed(iconNameForTimer(timer));
}
