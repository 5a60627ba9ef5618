#include "core/httprequestworker.h"

#include <QBuffer>
#include <QDateTime>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <utility>

#include "core/onewaybody.h"
#include "core/threadends.h"

struct HttpRequestWorker::Proxy {
    _PROXY_MODE_ mode;
    QString host;  // host:port
    QString user;
    QString password;
};

namespace {

constexpr int kStatusNoContent = 204;
constexpr int kStatusNotModified = 304;
constexpr int kStatusTimeOut = 408;
constexpr int kStatusUnauthorized = 401;
constexpr int kProbeTimeOut = 10000;
constexpr int kStatusProxyAuthentication = 407;

bool HasBody(const QString& method) {
    return method != QLatin1String("GET") && method != QLatin1String("HEAD") &&
           method != QLatin1String("DELETE");
}

/// The parts of a form with the files' bytes in them.
QByteArray MultipartBody(const HttpRequestInput& input, const QByteArray& boundary) {
    QByteArray body;
    for (const auto& var : input.vars) {
        body += "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" + var.first.toUtf8() +
                "\"\r\n\r\n" + var.second.toUtf8() + "\r\n";
    }
    for (const HttpRequestInputFileElement& element : input.files) {
        if (element.local_filename.isEmpty() || element.variable_name.isEmpty()) continue;
        const QFileInfo info(element.local_filename);
        if (!info.exists() || !info.isFile() || !info.isReadable()) continue;
        QFile file(element.local_filename);
        if (!file.open(QIODevice::ReadOnly)) continue;

        body += "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" +
                element.variable_name.toUtf8() + "\"; filename=\"" +
                HttpRequestWorker::requestFilename(element).toUtf8() + "\"\r\n";
        if (!element.mime_type.isEmpty()) body += "Content-Type: " + element.mime_type.toUtf8() + "\r\n";
        body += "Content-Transfer-Encoding: binary\r\n\r\n";
        body += file.readAll();
        body += "\r\n";
    }
    body += "--" + boundary + "--";
    return body;
}

/// What Qt makes of an HTTP status.
QNetworkReply::NetworkError ErrorOfStatus(int status) {
    switch (status) {
        case 400:
        case 418:
            return QNetworkReply::ProtocolInvalidOperationError;
        case 401:
            return QNetworkReply::AuthenticationRequiredError;
        case 403:
            return QNetworkReply::ContentAccessDenied;
        case 404:
            return QNetworkReply::ContentNotFoundError;
        case 405:
            return QNetworkReply::ContentOperationNotPermittedError;
        case 407:
            return QNetworkReply::ProxyAuthenticationRequiredError;
        case 409:
            return QNetworkReply::ContentConflictError;
        case 410:
            return QNetworkReply::ContentGoneError;
        case 500:
            return QNetworkReply::InternalServerError;
        case 501:
            return QNetworkReply::OperationNotImplementedError;
        case 503:
            return QNetworkReply::ServiceUnavailableError;
        default:
            if (status > 500) return QNetworkReply::UnknownServerError;
            return status >= 400 ? QNetworkReply::UnknownContentError : QNetworkReply::NoError;
    }
}

/// After a proxy's challenge Qt would send the body again, which goes out only once. So a request with a body
/// brings the credentials at once. Inside a tunnel Qt has done with the proxy before the body.
void AddProxyAuthorization(QNetworkRequest& request, const QString& user, const QString& password) {
    if (user.isEmpty()) return;
    request.setRawHeader("Proxy-Authorization", "Basic " + (user + ':' + password).toUtf8().toBase64());
}

}  // namespace

HttpRequestWorker::HttpRequestWorker(QObject* parent)
    : QObject(parent), manager(new QNetworkAccessManager(this)) {
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    qsrand(static_cast<uint>(QDateTime::currentSecsSinceEpoch()));
    QT_WARNING_POP
}

HttpRequestWorker::~HttpRequestWorker() {
    response.clear();
}

void HttpRequestWorker::setProxy(_PROXY_MODE_ mode, QString host, QString user, QString password) {
    proxy = std::make_unique<Proxy>(Proxy{mode, std::move(host), std::move(user), std::move(password)});
}

int HttpRequestWorker::execute(HttpRequestInput* input) {
    clearOutcome();

    if (!input->files.isEmpty()) {
        input->var_layout = kVarsInMultipart;
    } else if (input->var_layout == kVarsNotSet) {
        const bool inUrl =
            input->http_method == QLatin1String("GET") || input->http_method == QLatin1String("HEAD");
        input->var_layout = inUrl ? kVarsInUrl : kVarsInForm;
    }

    QByteArray body;
    QByteArray contentType;
    if (input->var_layout == kVarsInUrl) {
        // The URL isn't looked at: one that has a query gets a second "?".
        if (!input->vars.isEmpty()) input->url_str += '?' + QString::fromLatin1(formText(*input));
    } else if (input->var_layout == kVarsInForm) {
        body = formText(*input);
        contentType = "application/x-www-form-urlencoded;charset=UTF-8";
    } else {
        const QByteArray boundary = makeBoundary();
        body = MultipartBody(*input, boundary);
        contentType = "multipart/form-data; boundary=" + boundary;
    }

    QBuffer buffer(&body);
    buffer.open(QIODevice::ReadOnly);
    OneWayBody oneWay(buffer);
    Exchange exchange(*this, send(*input, makeRequest(*input, contentType, kWithPragma), oneWay));
    finish(exchange, input->timeout_msec, oneWay);
    return error_type;
}

int HttpRequestWorker::wait_for_finished(QNetworkReply* reply, int msec) {
    QEventLoop loop;
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer timer;
    bool timedOut = false;
    // A reply that has ended already sends no signal any more.
    if (!reply->isFinished()) {
        if (msec >= 0) {
            timer.setSingleShot(true);
            connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
            timer.start(msec);
        }
        loop.exec();
        timedOut = msec >= 0 && !timer.isActive();
        timer.stop();
    }
    disconnect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);

    if (timedOut) {
        reply->abort();
        error_type = QNetworkReply::TimeoutError;
        http_status = kStatusTimeOut;
    } else {
        // The loop was ended from outside, as an application that quits does to every loop of its thread.
        if (!reply->isFinished()) reply->abort();
        error_type = reply->error();
        http_status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (reply->isOpen()) response = reply->readAll();  // an aborted one is closed
        error_str = reply->errorString();
        if (error_type == QNetworkReply::NoError && m_file == nullptr && isCutShort(*reply)) {
            error_type = QNetworkReply::RemoteHostClosedError;
            error_str = QStringLiteral("Connection closed");
        }
        // Inside a tunnel Qt keeps the proxy's 407 to itself.
        const bool refusedTunnel =
            error_type == QNetworkReply::ProxyAuthenticationRequiredError && http_status == 0;
        if (refusedTunnel || (http_status == kStatusUnauthorized && answeredByProxy(*reply)))
            setProxyRefusal();
        if (error_type == QNetworkReply::ContentReSendError) settleRefusedResend(*reply);
    }
    reply->deleteLater();
    return error_type;
}

/// The connection ended inside the reply, which Qt fails to notice now and then.
bool HttpRequestWorker::isCutShort(const QNetworkReply& reply) const {
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    const bool hasBody = reply.operation() != QNetworkAccessManager::HeadOperation &&
                         http_status != kStatusNoContent && http_status != kStatusNotModified;
    return hasBody && length.isValid() && !reply.hasRawHeader("Content-Encoding") &&
           response.size() < length.toLongLong();
}

int HttpRequestWorker::finish(Exchange& exchange, int msec, const OneWayBody& body) {
    const bool secure = reply->url().scheme() == QLatin1String("https");
    QElapsedTimer clock;
    clock.start();
    wait_for_finished(reply, msec);
    if (secure) Lattice::AwaitRequestThreadsAtExit();
    // Before any other event loop runs: the reply is up for deletion already.
    exchange.end();
    // A connection that breaks while Qt writes the body ends in an error without a name, depending on timing.
    const bool brokeUnderBody =
        error_type == QNetworkReply::UnknownNetworkError && body.pos() > 0 && !body.ranDry();
    if (brokeUnderBody) error_type = QNetworkReply::RemoteHostClosedError;
    settleLostConnection(secure, body, msec >= 0 ? msec - clock.elapsed() : kProbeTimeOut);
    return error_type;
}

/// A proxy's refusal may be behind a lost connection. Inside a tunnel Qt has one error for all that the proxy
/// says but 407; a proxy that refuses before a body is out breaks the connection, and its answer is lost.
void HttpRequestWorker::settleLostConnection(bool secure, const OneWayBody& body, qint64 msecLeft) {
    if (http_status != 0 || body.ranDry()) return;
    const bool refusedTunnel = secure && error_type == QNetworkReply::UnknownNetworkError && body.pos() == 0;
    const bool brokenBody = !secure && error_type == QNetworkReply::RemoteHostClosedError && body.pos() > 0;
    if (!refusedTunnel && !brokenBody) return;
    const auto msec = static_cast<int>(std::min<qint64>(msecLeft, kProbeTimeOut));
    if (msec > 0 && proxyRefuses(msec)) setProxyRefusal();
}

void HttpRequestWorker::setProxyRefusal() {
    error_type = QNetworkReply::ProxyAuthenticationRequiredError;
    error_str = QStringLiteral("Proxy requires authentication");
    http_status = kStatusProxyAuthentication;
}

/// Some proxies refuse wrong credentials with 401, as if they were the host. What they pass on has a "Via",
/// as the protocol wants it.
bool HttpRequestWorker::answeredByProxy(const QNetworkReply& reply) const {
    return proxy != nullptr && proxy->mode == kProxyManual && !proxy->user.isEmpty() &&
           reply.url().scheme() != QLatin1String("https") && reply.hasRawHeader("WWW-Authenticate") &&
           !reply.hasRawHeader("Via");
}

/// Asks the proxy for a host that can't be: it looks at the credentials first, and no server hears of it.
bool HttpRequestWorker::proxyRefuses(int msec) const {
    if (m_isProbe || proxy == nullptr || proxy->mode != kProxyManual) return false;
    HttpRequestInput input(QStringLiteral("http://proxy-check.invalid/"), QStringLiteral("OPTIONS"), false);
    input.set_timeout_msec(msec);
    HttpRequestWorker probe;
    probe.m_isProbe = true;
    probe.setProxy(proxy->mode, proxy->host, proxy->user, proxy->password);
    probe.execute(&input);
    return probe.http_status == kStatusProxyAuthentication;
}

/// Qt wanted to send the body again and couldn't.
void HttpRequestWorker::settleRefusedResend(const QNetworkReply& reply) {
    // It does so for a complete reply too: for a redirect that keeps the method, and now and then when the
    // end of the connection was the end of the reply.
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    const bool endsAtClose = !length.isValid() && !reply.hasRawHeader("Transfer-Encoding");
    const bool complete = http_status != 0 && (http_status == 307 || http_status == 308 || endsAtClose ||
                                               length.toLongLong() == response.size());
    if (complete) {
        error_type = ErrorOfStatus(http_status);
    } else {
        error_type = QNetworkReply::RemoteHostClosedError;
        error_str = QStringLiteral("Connection closed");
    }
}

HttpRequestWorker::Exchange::Exchange(HttpRequestWorker& worker, QNetworkReply* reply) : m_worker(worker) {
    m_worker.reply = reply;
}

HttpRequestWorker::Exchange::~Exchange() {
    end();
}

void HttpRequestWorker::Exchange::end() {
    QNetworkReply* const reply = std::exchange(m_worker.reply, nullptr);
    if (reply == nullptr) return;
    reply->disconnect(&m_worker);
    reply->abort();
    delete reply;
}

void HttpRequestWorker::clearOutcome() {
    response.clear();
    error_type = QNetworkReply::NoError;
    error_str.clear();
    http_status = 200;
}

QNetworkRequest HttpRequestWorker::makeRequest(const HttpRequestInput& input, const QByteArray& contentType,
                                               PragmaHeader pragma) {
    QUrl url(input.url_str, QUrl::TolerantMode);
    // Of a URL that it rejects, QUrl keeps scheme and host: the request would go to another port of that
    // host.
    if (!url.isValid()) url.clear();
    QNetworkRequest request(url);
    if (input.secure) request.setSslConfiguration(QSslConfiguration::defaultConfiguration());
    request.setHeader(QNetworkRequest::UserAgentHeader, input.agent_name);
    if (!contentType.isEmpty()) request.setHeader(QNetworkRequest::ContentTypeHeader, contentType);
    request.setRawHeader("Connection", "Keep-Alive");
    request.setRawHeader("Cache-Control", "no-cache");
    if (pragma == kWithPragma) request.setRawHeader("Pragma", "no-cache");
    for (const auto& header : input.raw_headers) {
        request.setRawHeader(header.first.toUtf8(), header.second.toUtf8());
    }
    return request;
}

void HttpRequestWorker::applyProxy(QNetworkRequest& request, bool hasBody) {
    const bool plainBody = hasBody && request.url().scheme() != QLatin1String("https");
    if (proxy == nullptr || proxy->mode != kProxyManual) {
        if (proxy != nullptr) manager->setProxy(QNetworkProxy(QNetworkProxy::DefaultProxy));
        if (!plainBody) return;
        // The proxy that the application has set up.
        const QList<QNetworkProxy> inUse =
            QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(request.url()));
        if (inUse.isEmpty()) return;
        const QNetworkProxy& first = inUse.first();
        if (first.type() == QNetworkProxy::HttpProxy || first.type() == QNetworkProxy::HttpCachingProxy) {
            AddProxyAuthorization(request, first.user(), first.password());
        }
        return;
    }
    const int colon = proxy->host.lastIndexOf(':');
    const QString host = colon < 0 ? proxy->host : proxy->host.left(colon);
    // Signed on purpose: a port above 32767 counts as none, and that must stay.
    const short port = colon < 0 ? short(0) : proxy->host.mid(colon + 1).toShort(nullptr, 10);
    QNetworkProxy networkProxy(QNetworkProxy::HttpProxy, host, static_cast<quint16>(port));
    if (plainBody) {
        // Not to Qt as well: it would answer a refusal by sending them, and the body, once more.
        AddProxyAuthorization(request, proxy->user, proxy->password);
    } else {
        networkProxy.setUser(proxy->user);
        networkProxy.setPassword(proxy->password);
    }
    manager->setProxy(networkProxy);
}

QNetworkReply* HttpRequestWorker::send(const HttpRequestInput& input, QNetworkRequest request,
                                       OneWayBody& body) {
    const QString& method = input.http_method;
    const bool withBody = HasBody(method);
    applyProxy(request, withBody);
    if (withBody) request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());

    QNetworkReply* sent;
    if (method == QLatin1String("GET")) {
        sent = manager->get(request);
    } else if (method == QLatin1String("POST")) {
        sent = manager->post(request, &body);
    } else if (method == QLatin1String("PUT")) {
        sent = manager->put(request, &body);
    } else if (method == QLatin1String("HEAD")) {
        sent = manager->head(request);
    } else if (method == QLatin1String("DELETE")) {
        sent = manager->deleteResource(request);
    } else {
        sent = manager->sendCustomRequest(request, method.toLatin1(), &body);
    }
    // Certificates aren't verified: servers live on addresses that no certificate names.
    if (input.secure) sent->ignoreSslErrors();
    return sent;
}

QByteArray HttpRequestWorker::makeBoundary() {
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    const int random = qrand();
    QT_WARNING_POP
    return "__-----------------------" + QByteArray::number(QDateTime::currentMSecsSinceEpoch()) +
           QByteArray::number(random);
}

QByteArray HttpRequestWorker::formText(const HttpRequestInput& input) {
    QByteArray text;
    for (const auto& var : input.vars) {
        if (!text.isEmpty()) text += '&';
        text += QUrl::toPercentEncoding(var.first) + '=' + QUrl::toPercentEncoding(var.second);
    }
    return text;
}

QString HttpRequestWorker::requestFilename(const HttpRequestInputFileElement& element) {
    if (!element.request_filename.isEmpty()) return element.request_filename;
    const QString name = QFileInfo(element.local_filename).fileName();
    return name.isEmpty() ? QStringLiteral("file") : name;
}

quint32 HttpRequestWorker::report(quint32 streamNumber, quint32 reason) {
    return m_callback(llTotalFileSize, llTotalBytesTransferred, llStreamSize, llStreamBytesTransferred,
                      streamNumber, reason, nullptr, nullptr, m_lpData);
}
