#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <cstdint>

// A version of the application as a version file describes it: an XML
// document in which three elements count, whatever their case and depth
// ("versionString", "buildNumber", "url"; a later one overwrites an earlier
// one). The application's own file is compiled into its resources; the latest
// one is fetched from the feed address. Only the build number is compared.
//
// Reading has no error path, deliberately: a file that can't be fetched or
// parsed gives what was read up to the failure, usually build 0, which is
// never newer than anything.
class tkVersionInfo {
  public:
    // Settings (QSettings) that move the feed and bound the wait for it.
    static constexpr const char* kFeedUrlKey = "updates/feedUrl";
    static constexpr const char* kTimeoutKey = "updates/timeoutMilliseconds";
    static constexpr int kDefaultTimeoutMs = 10000;

    // Nothing read yet: build 0, no version text, the default download
    // address.
    tkVersionInfo();
    tkVersionInfo(int32_t buildNumber, QString versionString, QUrl url);

    // Reads the document at a file, resource ("qrc:") or web address. A web
    // fetch blocks the caller for at most the time-out setting, with user
    // input held back, and is then given up.
    static tkVersionInfo versionInfoForXML(const QUrl& url);
    // The application's own version file.
    static tkVersionInfo myVersionInfo();
    // The version file at the feed address.
    static tkVersionInfo latestVersionInfo();
    // Reads the elements of an XML text; a parse error ends the reading.
    static tkVersionInfo fromXml(const QByteArray& xml);

    // The feed address setting, by default the maker's server.
    static QUrl feedUrl();
    // The download address of a version file without a "url".
    static QUrl defaultDownloadUrl();

    // True only when this build number is greater; downgrades are never
    // offered, and the version texts don't count.
    bool isNewerThan(const tkVersionInfo& other) const { return _buildNumber > other._buildNumber; }

    int32_t buildNumber() const { return _buildNumber; }
    // Null until read.
    const QString& versionString() const { return _versionString; }
    // Empty when the file's "url" wasn't an absolute address.
    const QUrl& url() const { return _url; }

  private:
    void store(QStringView element, const QString& text);

    int32_t _buildNumber = 0;
    QString _versionString;
    QUrl _url;
};
