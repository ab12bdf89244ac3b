#pragma once

#include <QByteArray>
#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>
#include <utility>

// Test helper: a real HTTP/1.1 server on 127.0.0.1 inside the test process.
// It answers GET requests for the paths it was given (404 for others), or,
// when silent, accepts connections and never answers, like a hung server.
// It runs on the event loop of the thread, so it answers while the code
// under test waits in a local event loop.
class tkTestHttpServer : public QObject {
  public:
    tkTestHttpServer() {
        _server.listen(QHostAddress::LocalHost, 0);
        connect(&_server, &QTcpServer::newConnection, this, [this] { accept(); });
    }

    void serve(const QString& path, QByteArray body) { _pages.insert(path, std::move(body)); }
    void setSilent(bool silent) { _silent = silent; }
    QUrl url(const QString& path) const {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(_server.serverPort()).arg(path));
    }
    int connections() const { return _connections; }

  private:
    void accept() {
        while (QTcpSocket* socket = _server.nextPendingConnection()) {
            ++_connections;
            if (_silent) {
                continue;
            }
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                _requests[socket] += socket->readAll();
                if (_requests[socket].contains("\r\n\r\n")) {
                    respond(socket, _requests[socket].split(' ').value(1));
                }
            });
        }
    }

    void respond(QTcpSocket* socket, const QByteArray& path) {
        const auto page = _pages.constFind(QString::fromLatin1(path));
        const bool found = page != _pages.constEnd();
        const QByteArray body = found ? *page : QByteArray("<html>Not Found</html>");
        socket->write((found ? "HTTP/1.1 200 OK\r\n" : "HTTP/1.1 404 Not Found\r\n") +
                      QByteArray("Content-Type: application/xml\r\nContent-Length: ") +
                      QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer _server;
    QHash<QString, QByteArray> _pages;
    QHash<QTcpSocket*, QByteArray> _requests;
    bool _silent = false;
    int _connections = 0;
};
