#include "ui/tkTSErrorWindowQt.h"

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

struct WindowText {
    const char* title;
    const char* heading;
};

WindowText textFor(tkTSErrorWindow which) {
    switch (which) {
        case tkTSErrorWindow::Read:
            return {"Time Sheet Can't Be Read", "Chronolet Plus can't read your time sheet file."};
        case tkTSErrorWindow::Write:
            return {"Time Sheet Can't Be Written",
                    "Chronolet Plus can't write to your time sheet file."};
        case tkTSErrorWindow::Locked:
            return {"Time Sheet In Use",
                    "Your time sheet file is in use, perhaps by another copy of Chronolet Plus."};
    }
    return {"", ""};
}

}  // namespace

tkTSErrorWindowQt::tkTSErrorWindowQt(tkTSErrorWindow which, QWidget* parent)
    : QDialog(parent), which_(which) {
    const WindowText text = textFor(which);
    setObjectName(QStringLiteral("timeSheetErrorWindow"));
    setWindowTitle(QString::fromUtf8(text.title));
    setAttribute(Qt::WA_QuitOnClose, false);

    auto* heading = new QLabel(QString::fromUtf8(text.heading), this);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    auto* body = new QLabel(this);
    body->setObjectName(QStringLiteral("errorBody"));
    body->setWordWrap(true);
    body->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* chooseAnother = new QPushButton(QStringLiteral("Open Another…"), this);
    chooseAnother->setObjectName(QStringLiteral("chooseAnotherButton"));
    auto* createNew = new QPushButton(QStringLiteral("Create New…"), this);
    createNew->setObjectName(QStringLiteral("createNewButton"));
    auto* quit = new QPushButton(QStringLiteral("Quit"), this);
    quit->setObjectName(QStringLiteral("quitButton"));
    chooseAnother->setDefault(true);
    connect(chooseAnother, &QPushButton::clicked, this,
            [this] { choose(tkTSErrorAnswer::Action::ChooseAnother); });
    connect(createNew, &QPushButton::clicked, this,
            [this] { choose(tkTSErrorAnswer::Action::CreateNew); });
    connect(quit, &QPushButton::clicked, this, [this] {
        answer_.action = tkTSErrorAnswer::Action::Quit;
        accept();
    });

    auto* buttons = new QHBoxLayout();
    buttons->addWidget(quit);
    buttons->addStretch();
    buttons->addWidget(createNew);
    buttons->addWidget(chooseAnother);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(body);
    layout->addSpacing(8);
    layout->addLayout(buttons);
    setMinimumWidth(460);
}

tkTSErrorAnswer tkTSErrorWindowQt::run(const std::string& directory, const std::string& name) {
    directory_ = QString::fromStdString(directory);
    name_ = QString::fromStdString(name);
    findChild<QLabel*>(QStringLiteral("errorBody"))
        ->setText(QStringLiteral("The file is %1.\n\nOpen another time sheet file, create a new "
                                 "one, or quit. Closing this window goes on without a time sheet: "
                                 "the timers work, and the file stays as it is.")
                      .arg(QDir(directory_).filePath(name_)));
    // Escape and the close button leave it without a choice.
    answer_ = tkTSErrorAnswer{tkTSErrorAnswer::Action::Closed, {}};
    exec();
    return answer_;
}

void tkTSErrorWindowQt::choose(tkTSErrorAnswer::Action action) {
    const bool open = action == tkTSErrorAnswer::Action::ChooseAnother;
    auto* panel = new QFileDialog(
        this, open ? QStringLiteral("Open Time Sheet") : QStringLiteral("New Time Sheet"));
    panel->setObjectName(QStringLiteral("timeSheetFilePanel"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setAcceptMode(open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    panel->setFileMode(open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    panel->setLabelText(QFileDialog::Accept,
                        open ? QStringLiteral("Open") : QStringLiteral("Create"));
    panel->setDirectory(directory_);
    panel->selectFile(name_);
    panel->setWindowModality(Qt::WindowModal);
    connect(panel, &QFileDialog::fileSelected, this, [this, action](const QString& path) {
        answer_ = tkTSErrorAnswer{action, path.toStdString()};
        accept();
    });
    // A cancelled panel just goes; this window stays up.
    panel->open();
}
