#pragma once

#include <QDialog>

// The About window ("about"): the application's name and icon, and its
// version and build number from the version file the build wrote.
class tkAboutWindow : public QDialog {
    Q_OBJECT

  public:
    // Registers itself with tkNibLoader.
    explicit tkAboutWindow(QWidget* parent = nullptr);

    // Raises the window and gives it the keyboard.
    void show();
};
