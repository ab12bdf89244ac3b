#include "ui/tkCommandServerQt.h"

#include <QLocalSocket>

#include "platform/tkLocalSocketPosix.h"

tkCommandServerQt::tkCommandServerQt(Handler handler, QObject* parent)
    : QObject(parent), handler_(std::move(handler)) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, &tkCommandServerQt::accept);
}

bool tkCommandServerQt::listen(const std::string& path) {
    switch (probeLocalSocket(path)) {
        case tkLocalSocketState::Absent:
            break;
        case tkLocalSocketState::Stale:
            // Nobody answers there: a crashed copy left it. Only the holder of
            // the lock gets here, so it is ours to clear.
            QLocalServer::removeServer(QString::fromStdString(path));
            break;
        case tkLocalSocketState::Live:
        case tkLocalSocketState::Other:
            return false;
    }
    return server_.listen(QString::fromStdString(path));
}

void tkCommandServerQt::accept() {
    while (QLocalSocket* peer = server_.nextPendingConnection()) {
        connect(peer, &QLocalSocket::disconnected, peer, &QObject::deleteLater);
        auto received = std::make_shared<std::string>();
        connect(peer, &QLocalSocket::readyRead, this, [this, peer, received] {
            const QByteArray bytes = peer->readAll();
            received->append(bytes.constData(), static_cast<size_t>(bytes.size()));
            const tkDecodedRequest request = decodeRequest(*received);
            if (request.status == tkWireStatus::Incomplete) {
                return;
            }
            if (request.status == tkWireStatus::Complete) {
                const std::string reply = encodeReply(handler_(request.words));
                peer->write(reply.data(), static_cast<qint64>(reply.size()));
                peer->flush();
            }
            received->clear();
            peer->disconnectFromServer();
        });
    }
}
