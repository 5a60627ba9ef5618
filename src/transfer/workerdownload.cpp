// HttpRequestWorker: the download of one file into a handle of the caller's.

#include <QBuffer>
#include <QFile>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <algorithm>

#include "core/httprequestworker.h"
#include "core/onewaybody.h"
#include "core/qclogger.h"

namespace {

constexpr int kErrorCannotStart = 299;
constexpr quint32 kStopSizeMismatch = 2;
/// What Qt holds of a reply that the disk is too slow for. Without a bound it holds the whole file.
constexpr qint64 kReadBuffer = 1 << 20;

/// Closed again whatever happens.
class OpenTarget {
public:
    OpenTarget(QFile& file, qint64 offset) : m_file(file) {
        m_file.close();
        m_ready = m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) && m_file.isWritable() &&
                  (offset == 0 || m_file.seek(offset));
    }
    ~OpenTarget() { m_file.close(); }
    OpenTarget(const OpenTarget&) = delete;
    OpenTarget& operator=(const OpenTarget&) = delete;
    bool ready() const { return m_ready; }

private:
    QFile& m_file;
    bool m_ready = false;
};

}  // namespace

int HttpRequestWorker::download(HttpRequestInput* input, qint64 total, qint64 offset,
                                WFMProgressCallback callback, void* lpData, QFile* file) {
    clearOutcome();
    if (!input->files.isEmpty() || file == nullptr) return error_type = kErrorCannotStart;

    if (input->var_layout == kVarsNotSet) {
        const bool inUrl =
            input->http_method == QLatin1String("GET") || input->http_method == QLatin1String("HEAD");
        input->var_layout = inUrl ? kVarsInUrl : kVarsInForm;
    }
    if (input->var_layout != kVarsInUrl && input->var_layout != kVarsInForm) {
        return error_type = kErrorCannotStart;
    }
    QByteArray body = formText(*input);
    QByteArray contentType;
    if (input->var_layout == kVarsInUrl) {
        input->url_str += '?' + QString::fromLatin1(body);
        body.clear();
    } else {
        contentType = "application/x-www-form-urlencoded;charset=UTF-8";
    }
    const QNetworkRequest request = makeRequest(*input, contentType, kWithoutPragma);

    m_callback = callback;
    m_lpData = lpData;
    offset = std::max<qint64>(offset, 0);
    const OpenTarget target(*file, offset);
    if (!target.ready()) return error_type = kErrorCannotStart;

    QBuffer buffer(&body);
    buffer.open(QIODevice::ReadOnly);
    OneWayBody oneWay(buffer);
    Exchange exchange(*this, send(*input, request, oneWay));
    // Twice: a GET starts at once. A POST starts in the event loop, and of a bound set before that Qt's
    // network thread never hears, so that it would hold the file.
    reply->setReadBufferSize(kReadBuffer);
    QMetaObject::invokeMethod(
        reply, [started = reply] { started->setReadBufferSize(kReadBuffer); }, Qt::QueuedConnection);

    llTotalFileSize = total;
    llStreamSize = total;
    // The opening verdict stops nothing; it stands until the first progress.
    if (m_callback != nullptr) dwProgress = report(1, 1);
    llStartOffset = offset;
    llTotalBytesTransferred += offset;
    llStreamBytesTransferred += offset;
    llBodyFileBytes = total - offset;

    m_file = file;
    connect(reply, &QNetworkReply::downloadProgress, this, &HttpRequestWorker::downloadProgress);
    connect(reply, &QNetworkReply::readyRead, this, &HttpRequestWorker::downloadReadyRead);
    // What is left at the end goes to the file, not to `response`.
    connect(reply, &QNetworkReply::finished, this, &HttpRequestWorker::downloadReadyRead);
    // An opening call that ran the event loop has kept these signals from the slots.
    if (reply->bytesAvailable() > 0 || reply->isFinished()) {
        const qint64 received = reply->bytesAvailable();
        const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
        downloadReadyRead();
        downloadProgress(received, length.isValid()      ? length.toLongLong()
                                   : reply->isFinished() ? received
                                                         : -1);
    }
    finish(exchange, input->timeout_msec, oneWay);
    m_file = nullptr;
    return 0;
}

void HttpRequestWorker::downloadReadyRead() {
    // An aborted reply is closed already.
    if (m_file != nullptr && reply->isOpen()) m_file->write(reply->readAll());
}

void HttpRequestWorker::downloadProgress(qint64 bytesReceived, qint64 bytesTotal) {
    if (bytesTotal != llTotalFileSize) {
        Lattice::LogLine(Lattice::Logger::Error,
                         "[WFM] HttpRequestWorker::downloadProgress size not match(%lld)(%lld)", bytesTotal,
                         llTotalBytesTransferred - llStartOffset);
        dwProgress = kStopSizeMismatch;
        m_sizeMismatch = true;
        reply->abort();
    }
    if (bytesReceived <= 0) return;
    if (bytesTotal > bytesReceived && bytesReceived == llLastSent) return;
    if (llTotalBytesTransferred - llStartOffset >= llBodyFileBytes) {
        llLastSent = bytesReceived;
        return;
    }
    const qint64 increment = bytesReceived - llLastSent;
    llLastSent = bytesReceived;
    llTotalBytesTransferred += increment;
    llStreamBytesTransferred += increment;

    if (m_callback == nullptr) return;
    const quint32 verdict = report(1, 0);
    // A size that doesn't match stays decisive.
    if (verdict != 0 || !m_sizeMismatch) dwProgress = verdict;
    if (verdict != 0 && llTotalBytesTransferred != bytesTotal) reply->abort();
}
