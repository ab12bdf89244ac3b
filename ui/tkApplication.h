#pragma once

#include <QApplication>

// The application object. A failure that leaves an event handler (a save
// that failed inside a post, say) ends at the top of the event loop here and
// is shown to the user through the error window, instead of ending the
// program.
class tkApplication : public QApplication {
    Q_OBJECT

  public:
    tkApplication(int& argc, char** argv);

    bool notify(QObject* receiver, QEvent* event) override;
};
