#pragma once

#include <QLocalServer>
#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "shell/tkCommandWire.h"

// Serves the local socket of the running application: each connection sends
// one request (the words of a command line) and gets one reply. A peer that
// sends something else, or more than the limits allow, is dropped.
class tkCommandServerQt : public QObject {
    Q_OBJECT

  public:
    using Handler = std::function<tkCommandReply(const std::vector<std::string>& words)>;

    explicit tkCommandServerQt(Handler handler, QObject* parent = nullptr);

    // Listens at `path`. A socket left there by a crashed copy is removed
    // first; one that another process serves is left alone and false is
    // returned. Call only while holding the data folder's lock, so that the
    // socket always belongs to the lock's owner.
    bool listen(const std::string& path);

    bool isListening() const { return server_.isListening(); }

  private:
    void accept();

    Handler handler_;
    QLocalServer server_;
};
