#pragma once

#include <QAbstractTableModel>
#include <QIcon>

class tkTimer;

// The timer list in the drawer: one row per timer in list order (never the
// alphabetical order), a "run_icons" column and a "timers" column whose
// titles can be edited. It keeps no copy of the timers: every answer is read
// from tkTimerArray when asked.
class tkTimerBrowserDataSource : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { RunIcons = 0, Timers = 1 };

    explicit tkTimerBrowserDataSource(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    // Any column: the text becomes the row's timer's title.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The timer list may have grown or shrunk, and any row may read
    // differently: tells the view, keeping its selection and any edit open.
    void noteNumberOfRowsChanged();

    // "runningTimerIcon" while running; stopped, "stoppedEmptyTimerIcon" at
    // zero whole seconds (0.9 s counts as empty), else "stoppedNonEmptyTimerIcon".
    static QString iconNameForTimer(const tkTimer& timer);
    static QIcon iconForTimer(const tkTimer& timer);

  private:
    // What the view was last told; the list itself lives in the core.
    int reportedRows_ = 0;
};
