#include "ui/tkVersionInfo.h"

#include <QEventLoop>
#include <QFile>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSettings>
#include <QTimer>
#include <QXmlStreamReader>
#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace {

// A version file is a few hundred bytes; anything far larger isn't one, and
// a hostile server must not make the application allocate without bound.
constexpr qint64 kMaxFeedBytes = 64 * 1024;

// The leading decimal integer: blanks, then an optional sign, then digits,
// clamped to the 32-bit range; anything else reads as 0.
int32_t leadingInteger(const QString& text) {
    qsizetype at = 0;
    while (at < text.size() && text[at].isSpace()) {
        ++at;
    }
    bool negative = false;
    if (at < text.size() && (text[at] == QLatin1Char('-') || text[at] == QLatin1Char('+'))) {
        negative = text[at] == QLatin1Char('-');
        ++at;
    }
    int64_t value = 0;
    for (; at < text.size() && text[at].isDigit() && text[at].unicode() < 128; ++at) {
        value = std::min<int64_t>(value * 10 + (text[at].unicode() - '0'),
                                  int64_t{std::numeric_limits<int32_t>::max()} + 1);
    }
    if (negative) {
        value = -value;
    }
    return static_cast<int32_t>(std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(),
                                                    std::numeric_limits<int32_t>::max()));
}

bool isLoopback(const QUrl& url) {
    const QString host = url.host();
    return host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
           QHostAddress(host).isLoopback();
}

// The body at a web address, or nothing when the fetch fails, answers with
// anything but success, grows too large or outlasts the time-out. The wait
// runs a local event loop that holds back user input, so the windows still
// paint but no command can start a second check meanwhile.
QByteArray fetchFromWeb(const QUrl& url, int timeoutMs) {
    QNetworkAccessManager manager;
    if (isLoopback(url)) {
        manager.setProxy(QNetworkProxy::NoProxy);
    }
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(url)));
    QObject::connect(reply.get(), &QNetworkReply::downloadProgress, reply.get(),
                     [&reply](qint64 received, qint64) {
                         if (received > kMaxFeedBytes) {
                             reply->abort();
                         }
                     });
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.setTimerType(Qt::PreciseTimer);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    deadline.start(timeoutMs);
    if (!reply->isFinished()) {
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    if (!reply->isFinished()) {
        reply->abort();
        return {};
    }
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() != QNetworkReply::NoError || status < 200 || status > 299) {
        return {};
    }
    return reply->read(kMaxFeedBytes);
}

QByteArray fetch(const QUrl& url) {
    if (url.isLocalFile() || url.scheme() == QLatin1String("qrc")) {
        QFile file(url.isLocalFile() ? url.toLocalFile() : QLatin1Char(':') + url.path());
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        return file.read(kMaxFeedBytes);
    }
    if (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https")) {
        return {};
    }
    const int timeoutMs =
        QSettings().value(tkVersionInfo::kTimeoutKey, tkVersionInfo::kDefaultTimeoutMs).toInt();
    return fetchFromWeb(url, timeoutMs > 0 ? timeoutMs : tkVersionInfo::kDefaultTimeoutMs);
}

}  // namespace

tkVersionInfo::tkVersionInfo() : _url(defaultDownloadUrl()) {}

tkVersionInfo::tkVersionInfo(int32_t buildNumber, QString versionString, QUrl url)
    : _buildNumber(buildNumber), _versionString(std::move(versionString)), _url(std::move(url)) {}

tkVersionInfo tkVersionInfo::versionInfoForXML(const QUrl& url) {
    return fromXml(fetch(url));
}

tkVersionInfo tkVersionInfo::myVersionInfo() {
    // The resource lives in this static library; nothing else would pull
    // its initialiser into the program.
    Q_INIT_RESOURCE(tkversion);
    return versionInfoForXML(QUrl(QStringLiteral("qrc:/cltmac.xml")));
}

tkVersionInfo tkVersionInfo::latestVersionInfo() {
    return versionInfoForXML(feedUrl());
}

QUrl tkVersionInfo::feedUrl() {
    const QString fallback = QStringLiteral(TK_UPDATE_SERVER "/updates/cltmac.xml");
    return QUrl(QSettings().value(kFeedUrlKey, fallback).toString());
}

QUrl tkVersionInfo::defaultDownloadUrl() {
    return QUrl(QStringLiteral(TK_UPDATE_SERVER "/downloads/ChronoletPlus.dmg"));
}

tkVersionInfo tkVersionInfo::fromXml(const QByteArray& xml) {
    tkVersionInfo info;
    QXmlStreamReader reader(xml);
    QString current;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                current.clear();
                break;
            case QXmlStreamReader::Characters:
                current += reader.text();
                break;
            case QXmlStreamReader::EndElement:
                info.store(reader.name(), current);
                current.clear();
                break;
            default:
                break;
        }
    }
    return info;
}

void tkVersionInfo::store(QStringView element, const QString& text) {
    if (element.compare(QLatin1String("versionString"), Qt::CaseInsensitive) == 0) {
        _versionString = text;
    } else if (element.compare(QLatin1String("buildNumber"), Qt::CaseInsensitive) == 0) {
        _buildNumber = leadingInteger(text);
    } else if (element.compare(QLatin1String("url"), Qt::CaseInsensitive) == 0) {
        const QUrl url(text, QUrl::StrictMode);
        _url = url.isValid() && !url.isRelative() ? url : QUrl();
    }
}
