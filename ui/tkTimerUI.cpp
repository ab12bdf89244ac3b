#include "ui/tkTimerUI.h"

#include <QAction>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerController.h"
#include "timers/tkTimerControllerTarget.h"
#include "timers/tkTimerUIBridge.h"
#include "tkTimerMenuForm.h"
#include "ui/tkDrawerPanel.h"
#include "ui/tkImages.h"
#include "ui/tkKRIComboBoxDataSource.h"
#include "ui/tkMainMenu.h"
#include "ui/tkNibLoader.h"
#include "ui/tkTimerBrowserDataSource.h"
#include "ui/tkTimerBrowserDelegate.h"
#include "ui_TimerDisplay.h"

namespace {

// The time is the window's headline: large, and in figures of one width so
// that it doesn't jitter as it counts.
void styleTimeDisplay(QLineEdit* display) {
    QFont font = display->font();
    font.setPointSizeF(font.pointSizeF() * 2.6);
    font.setBold(true);
    font.setStyleHint(QFont::TypeWriter);
    font.setFamilies({QStringLiteral("DejaVu Sans Mono"), QStringLiteral("monospace")});
    display->setFont(font);
    // Opaque: a tick then redraws this field alone, not the window behind it.
    display->setAutoFillBackground(true);
}

// A title is shown as it stands; "&" would otherwise mark a shortcut letter.
QString menuText(const std::string& title) {
    return QString::fromStdString(title).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

}  // namespace

tkTimerUI::tkTimerUI(QWidget* timerWindow, Ui::TimerDisplay& form)
    : QObject(timerWindow),
      timerWindow_(timerWindow),
      form_(form),
      menuForm_(std::make_unique<Ui::TimerMenu>()),
      browserDataSource_(new tkTimerBrowserDataSource(this)),
      employees_(std::make_unique<tkKRIComboBoxDataSource>("employee")),
      feeCodes_(std::make_unique<tkKRIComboBoxDataSource>("fee code")),
      jobNumbers_(std::make_unique<tkKRIComboBoxDataSource>("job number")),
      openTriangleImage_(imageNamed(QStringLiteral("opentriangle"))),
      closedTriangleImage_(imageNamed(QStringLiteral("triangle"))) {
    styleTimeDisplay(form_.timeDisplay);
    QFont bold = form_.titleTextField->font();
    bold.setBold(true);
    form_.titleTextField->setFont(bold);
    form_.employeeComboBox->setDataSource(employees_.get());
    form_.feeCodeComboBox->setDataSource(feeCodes_.get());
    form_.jobNumberComboBox->setDataSource(jobNumbers_.get());

    QTableView* table = form_.timerListTableView;
    table->setModel(browserDataSource_);
    table->horizontalHeader()->setSectionResizeMode(tkTimerBrowserDataSource::RunIcons,
                                                    QHeaderView::Fixed);
    table->horizontalHeader()->resizeSection(tkTimerBrowserDataSource::RunIcons, 24);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    browserDelegate_ = new tkTimerBrowserDelegate(table, this);

    // The details start hidden; the launch restores what the user had.
    form_.jobDetailsBox->setVisible(false);

    // The timer menu is this window's own, and takes the Timer place in the
    // menu bars.
    timerMenu_ = tkNibLoader::loadTimerMenu(*menuForm_);
    // Owned by the window, so that it goes with it.
    timerMenu_->setParent(timerWindow_, timerMenu_->windowFlags());
    numFixedItemsInTimerMenu_ = static_cast<int>(timerMenu_->actions().size());
    tkMainMenu::instance().setTimerMenu(timerMenu_);
    connectControls();
    rebuildTimerMenu();
}

tkTimerUI::~tkTimerUI() = default;

void tkTimerUI::connectControls() {
    // Each command has its button and its item in the Timer menu.
    struct Wiring {
        QAbstractButton* button;
        QAction* item;
        void (*command)(tkTimerUIBridge& core);
    };
    const Wiring wiring[] = {
        {form_.startStopButton, menuForm_->startStopMenuItem,
         [](tkTimerUIBridge& core) { core.startStopTimer(); }},
        {form_.clearButton, menuForm_->clearMenuItem,
         [](tkTimerUIBridge& core) { core.clearTimer(); }},
        {form_.addButton, menuForm_->addMenuItem,
         [](tkTimerUIBridge& core) { core.addToTimeSheet(); }},
        {form_.spawnButton, menuForm_->newTimerMenuItem,
         [](tkTimerUIBridge& core) { core.newTimer(); }},
        {form_.backArrowButton, menuForm_->previousTimerMenuItem,
         [](tkTimerUIBridge& core) { core.previousTimer(); }},
        {form_.forwardArrowButton, menuForm_->nextTimerMenuItem,
         [](tkTimerUIBridge& core) { core.nextTimer(); }},
        {form_.detailButton, menuForm_->detailsMenuItem,
         [](tkTimerUIBridge& core) { core.toggleDetailMode(); }},
        {form_.drawerButton, menuForm_->drawerMenuItem,
         [](tkTimerUIBridge& core) { core.toggleDrawer(); }},
    };
    for (const Wiring& each : wiring) {
        connect(each.button, &QAbstractButton::clicked, this,
                [this, command = each.command] { toCore(command); });
        connect(each.item, &QAction::triggered, this,
                [this, command = each.command] { toCore(command); });
    }
    // Every change of a job field replaces the timer's record at once, as
    // the user types: the timers file is never behind the window.
    const auto recordEdited = [this] {
        toCore([](tkTimerUIBridge& core) { core.recordEdited(); });
    };
    for (tkCompletingComboBox* box :
         {form_.employeeComboBox, form_.feeCodeComboBox, form_.jobNumberComboBox}) {
        connect(box, &tkCompletingComboBox::textEditedByUser, this, recordEdited);
    }
    connect(form_.descriptionTextField, &QLineEdit::textEdited, this, recordEdited);
    connect(form_.timeDisplay, &QLineEdit::editingFinished, this, &tkTimerUI::timeFieldDone);
}

void tkTimerUI::toCore(void (*command)(tkTimerUIBridge& core)) {
    if (bridge_ != nullptr) {
        command(*bridge_);
    }
}

void tkTimerUI::timeFieldDone() {
    QLineEdit* display = form_.timeDisplay;
    // Return in an untouched field must not stop a running timer.
    if (!display->isModified() || bridge_ == nullptr) {
        return;
    }
    display->setModified(false);
    bridge_->timeEdited(display->text().toStdString());
}

void tkTimerUI::startStopTimer() {
    if (bridge_ != nullptr) {
        bridge_->startStopTimer();
    }
}

void tkTimerUI::displayTime(const QString& text) {
    QLineEdit* display = form_.timeDisplay;
    // A time being typed is not overwritten by the ticker.
    if (display->hasFocus() && display->isModified()) {
        return;
    }
    // The ticker runs twice a second and the text changes once: an equal
    // text repaints nothing.
    if (display->text() != text) {
        display->setText(text);
    }
}

void tkTimerUI::setIsRunning(bool running) {
    form_.startStopButton->setIcon(
        imageNamed(running ? QStringLiteral("pause") : QStringLiteral("play")));
    menuForm_->startStopMenuItem->setText(running ? QStringLiteral("Stop Timer")
                                                  : QStringLiteral("Start Timer"));
}

QString tkTimerUI::displayedTitleString() const {
    return form_.titleTextField->text();
}

void tkTimerUI::setDisplayedTitle(const QString& title) {
    form_.titleTextField->setText(title);
}

QString tkTimerUI::description() const {
    return form_.descriptionTextField->text();
}

QString tkTimerUI::employee() const {
    return form_.employeeComboBox->text();
}

QString tkTimerUI::feeCode() const {
    return form_.feeCodeComboBox->text();
}

QString tkTimerUI::jobNumber() const {
    return form_.jobNumberComboBox->text();
}

void tkTimerUI::setDescription(const QString& text) {
    QLineEdit* field = form_.descriptionTextField;
    if (field->text() != text) {
        const int cursor = field->cursorPosition();
        field->setText(text);
        field->setCursorPosition(cursor);
    }
}

void tkTimerUI::setEmployee(const QString& text) {
    form_.employeeComboBox->setText(text);
}

void tkTimerUI::setFeeCode(const QString& text) {
    form_.feeCodeComboBox->setText(text);
}

void tkTimerUI::setJobNumber(const QString& text) {
    form_.jobNumberComboBox->setText(text);
}

void tkTimerUI::refreshDrawer() {
    browserDataSource_->noteNumberOfRowsChanged();
}

void tkTimerUI::showDrawer() {
    form_.drawer->open();
}

bool tkTimerUI::toggleDrawerShown() {
    form_.drawer->toggle();
    return form_.drawer->isOpenOrOpening();
}

void tkTimerUI::selectTimerRow(uint32_t number) {
    browserDataSource_->noteNumberOfRowsChanged();
    browserDelegate_->selectRowQuietly(static_cast<int>(number));
}

void tkTimerUI::beginTitleEdit(uint32_t number) {
    QTableView* table = form_.timerListTableView;
    // A window nobody sees has no list to type in.
    if (!table->isVisible()) {
        return;
    }
    const QModelIndex title =
        browserDataSource_->index(static_cast<int>(number), tkTimerBrowserDataSource::Timers);
    table->setFocus();
    table->scrollTo(title);
    table->edit(title);
}

uint32_t tkTimerUI::numberOfSelectedRows() const {
    return static_cast<uint32_t>(browserDelegate_->selectedRows().size());
}

std::vector<uint32_t> tkTimerUI::selectedRows() const {
    return browserDelegate_->selectedRows();
}

void tkTimerUI::showJobDetails(bool shown, bool adjustUpward) {
    QGroupBox* box = form_.jobDetailsBox;
    form_.detailButton->setIcon(shown ? openTriangleImage_ : closedTriangleImage_);
    form_.detailButton->setToolTip(shown ? QStringLiteral("Hide Job Details")
                                         : QStringLiteral("Show Job Details"));
    const QRect frame = timerWindow_->geometry();
    // The box's height and the new top are narrowed to single precision on
    // their way, as the window's frame arithmetic always was.
    const auto h = static_cast<float>(box->maximumHeight());
    const int height = frame.height() + static_cast<int>(shown ? h : -h);
    int top = frame.y();
    if (adjustUpward) {
        top = static_cast<int>(static_cast<float>(frame.y()) + (shown ? -h : h));
    }
    box->setVisible(shown);
    // The layouts fix the window's size; they must know the new one before
    // the frame is set, or they would put the old height back.
    for (QWidget* widget = box->parentWidget(); widget != nullptr;
         widget = widget->parentWidget()) {
        widget->layout()->invalidate();
        widget->layout()->activate();
        if (widget == timerWindow_) {
            break;
        }
    }
    timerWindow_->setGeometry(frame.x(), top, frame.width(), height);
}

void tkTimerUI::rebuildTimerMenu() {
    QMenu* menu = timerMenu_;
    if (menu == nullptr) {
        return;
    }
    const QList<QAction*> items = menu->actions();
    for (auto i = items.size() - 1; i >= numFixedItemsInTimerMenu_; --i) {
        menu->removeAction(items[i]);
        delete items[i];
    }
    tkTimerArray& timers = tkTimerArray::instance();
    for (uint32_t i = 0; i < timers.numTimers(); ++i) {
        QAction* item = menu->addAction(QString());
        item->setCheckable(true);
        // Ctrl+1 to Ctrl+9, then Ctrl+0 for the tenth; none after that.
        if (i < 10) {
            item->setShortcut(
                QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + (i + 1) % 10)));
        }
        tkTimerControllerTarget* target =
            timers.controllerAt(static_cast<int32_t>(i))->getTargetWrapper();
        connect(item, &QAction::triggered, this, [target] { target->bringToFront(); });
    }
    refreshTimerMenu();
}

void tkTimerUI::refreshTimerMenu() {
    if (timerMenu_ == nullptr) {
        return;
    }
    tkTimerArray& timers = tkTimerArray::instance();
    const QList<QAction*> items = timerMenu_->actions();
    if (items.size() < numFixedItemsInTimerMenu_ + static_cast<qsizetype>(timers.numTimers())) {
        rebuildTimerMenu();
        return;
    }
    const tkTimerController* shown = bridge_ != nullptr ? bridge_->getTimerController() : nullptr;
    for (uint32_t i = 0; i < timers.numTimers(); ++i) {
        const tkTimerController* controller = timers.controllerAt(static_cast<int32_t>(i));
        const tkTimer& timer = *controller->getTimer();
        QAction* item = items[numFixedItemsInTimerMenu_ + static_cast<qsizetype>(i)];
        item->setText(menuText(timer.getTitle()) +
                      (timer.isRunning() ? QStringLiteral(" (running)") : QString()));
        // Compared by controller, so two timers of one title are told apart.
        item->setChecked(controller == shown);
        item->setIcon(tkTimerBrowserDataSource::iconForTimer(timer));
    }
}

void tkTimerUI::buildSaveMultiTimerDialog() {
    auto* dialog = new QDialog(timerWindow_);
    dialog->setObjectName(QStringLiteral("saveMultiTimerDisplay"));
    dialog->setWindowTitle(QStringLiteral("Delete Timers"));
    dialog->setWindowModality(Qt::WindowModal);
    smtList_ = new QPlainTextEdit(dialog);
    smtList_->setReadOnly(true);
    smtList_->setMinimumSize(320, 120);
    auto* buttons = new QDialogButtonBox(dialog);
    QPushButton* adding = buttons->addButton(QStringLiteral("Add to Time Sheet and Delete"),
                                             QDialogButtonBox::AcceptRole);
    adding->setObjectName(QStringLiteral("deleteAddingButton"));
    QPushButton* without =
        buttons->addButton(QStringLiteral("Delete"), QDialogButtonBox::DestructiveRole);
    without->setObjectName(QStringLiteral("deleteWithoutAddingButton"));
    QPushButton* keep =
        buttons->addButton(QStringLiteral("Don't Delete"), QDialogButtonBox::RejectRole);
    keep->setObjectName(QStringLiteral("dontDeleteButton"));
    keep->setDefault(true);
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(smtList_);
    layout->addWidget(buttons);
    // The selection at the moment of the click decides (tkTimerUIBridge).
    connect(adding, &QPushButton::clicked, this, [this] {
        if (bridge_ != nullptr) {
            bridge_->deleteAdding();
        }
    });
    connect(without, &QPushButton::clicked, this, [this] {
        if (bridge_ != nullptr) {
            bridge_->deleteWithoutAdding();
        }
    });
    connect(keep, &QPushButton::clicked, this, [this] {
        if (bridge_ != nullptr) {
            bridge_->dontDelete();
        }
    });
    // Escape keeps the timers too.
    connect(dialog, &QDialog::rejected, this, [this] {
        if (bridge_ != nullptr) {
            bridge_->dontDelete();
        }
    });
    saveMultiTimerDisplay_ = dialog;
}

void tkTimerUI::displaySaveMultiTimerDialog(const QString& text) {
    if (saveMultiTimerDisplay_ == nullptr) {
        buildSaveMultiTimerDialog();
    }
    smtList_->setPlainText(text);
    saveMultiTimerDisplay_->open();
}

void tkTimerUI::closeSaveMultiTimerDialog() {
    if (saveMultiTimerDisplay_ != nullptr) {
        saveMultiTimerDisplay_->hide();
    }
}
