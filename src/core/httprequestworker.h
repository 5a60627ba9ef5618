#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <memory>

#include "WebFileManAPI.h"
#include "core/httprequestinput.h"

class QFile;
class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;
class OneWayBody;

/// Where a request's proxy comes from. Callers pass any number.
enum _PROXY_MODE_ : quint32 { kProxyNone = 0, kProxySystem = 1, kProxyManual = 2 };

/// Runs one request to its end on the calling thread. Serves one request only.
class TORVIAPI_EXPORT HttpRequestWorker : public QObject {
    Q_OBJECT

public:
    explicit HttpRequestWorker(QObject* parent = nullptr);
    ~HttpRequestWorker() override;

    void setProxy(_PROXY_MODE_ mode, QString host, QString user, QString password);

    int execute(HttpRequestInput* input);
    int upload(HttpRequestInput* input, QString submitName, bool bNoFileData, WFMProgressCallback callback,
               void* lpData);
    int download(HttpRequestInput* input, qint64 total, qint64 offset, WFMProgressCallback callback,
                 void* lpData, QFile* file);
    int wait_for_finished(QNetworkReply* reply, int msec);

    /// The name under which a file goes out.
    static QString requestFilename(const HttpRequestInputFileElement& element);

    QByteArray response;
    int error_type = 0;
    QString error_str;
    int http_status = 200;

    quint32 dwProgress = 0;
    qint64 llTotalFileSize = 0;
    qint64 llBodyFileBytes = 0;
    qint64 llTotalBytesTransferred = 0;
    qint64 llLastSent = 0;
    qint64 llStreamBytesTransferred = 0;
    qint64 llStartOffset = 0;
    qint64 llStreamSize = 0;
    qint64 llHeadSize = 0;
    qint64 llTailSize = 0;

public slots:
    void uploadProgress(qint64 bytesSent, qint64 bytesTotal);
    void downloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    void downloadReadyRead();

private:
    struct Proxy;  // complete in httprequestworker.cpp only

    /// A reply in flight, given up and gone at the end of its scope. Qt reads a request's body as long as the
    /// reply lives, so a body device is declared before the reply that it goes out with.
    class Exchange {
    public:
        Exchange(HttpRequestWorker& worker, QNetworkReply* reply);
        ~Exchange();
        Exchange(const Exchange&) = delete;
        Exchange& operator=(const Exchange&) = delete;
        void end();

    private:
        HttpRequestWorker& m_worker;
    };

    enum PragmaHeader { kWithoutPragma, kWithPragma };

    void clearOutcome();
    static QNetworkRequest makeRequest(const HttpRequestInput& input, const QByteArray& contentType,
                                       PragmaHeader pragma);
    void applyProxy(QNetworkRequest& request, bool hasBody);
    /// Issues the request. `body` must outlive the reply; GET, HEAD and DELETE leave it alone.
    QNetworkReply* send(const HttpRequestInput& input, QNetworkRequest request, OneWayBody& body);
    /// Waits for the reply, ends the exchange, and calls what broke it by its name.
    int finish(Exchange& exchange, int msec, const OneWayBody& body);
    bool isCutShort(const QNetworkReply& reply) const;
    void settleRefusedResend(const QNetworkReply& reply);
    void setProxyRefusal();
    bool answeredByProxy(const QNetworkReply& reply) const;
    /// Calls a connection that was lost to a proxy's refusal by that name.
    void settleLostConnection(bool secure, const OneWayBody& body, qint64 msecLeft);
    bool proxyRefuses(int msec) const;
    static QByteArray makeBoundary();
    /// key=value pairs joined by "&".
    static QByteArray formText(const HttpRequestInput& input);
    quint32 report(quint32 streamNumber, quint32 reason);

    WFMProgressCallback m_callback = nullptr;
    void* m_lpData = nullptr;
    QNetworkAccessManager* manager;
    QNetworkReply* reply = nullptr;
    std::unique_ptr<Proxy> proxy;
    QFile* m_file = nullptr;
    bool m_sizeMismatch = false;
    bool m_isProbe = false;
};
