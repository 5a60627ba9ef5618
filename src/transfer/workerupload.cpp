// HttpRequestWorker: the upload of one file as a multipart form that is never whole in memory.

#include <QFile>
#include <QFileInfo>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <algorithm>
#include <optional>

#include "core/httprequestworker.h"
#include "core/onewaybody.h"
#include "core/qclogger.h"
#include "transfer/upfile.h"

namespace {

constexpr int kVarsInUpload = 3;  // behaves as multipart
constexpr int kErrorNoFileElement = 299;
constexpr quint32 kStopBodyShort = 2;

bool IsUsable(const HttpRequestInputFileElement& element, bool noFileData) {
    if (element.variable_name.isEmpty()) return false;
    if (noFileData) return true;
    if (element.local_filename.isEmpty()) return false;
    const QFileInfo info(element.local_filename);
    if (!info.exists() || !info.isFile() || !info.isReadable()) return false;
    if (!QFile(element.local_filename).open(QIODevice::ReadOnly)) return false;
    return element.start_offset <= element.total_size;
}

/// The one element that a body carries: the first that can be used.
std::optional<HttpRequestInputFileElement> TakeElement(const HttpRequestInput& input, bool noFileData) {
    const auto found = std::find_if(
        input.files.begin(), input.files.end(),
        [&](const HttpRequestInputFileElement& element) { return IsUsable(element, noFileData); });
    if (found == input.files.end()) return std::nullopt;
    return *found;
}

// The texts are put together without QString::arg, which would expand a "%1" in a file's name.
QByteArray Parameter(const char* key, const QString& value) {
    return key + QByteArrayLiteral("=\"") + value.toUtf8() + '"';
}

QByteArray HeadOf(const HttpRequestInput& input, const HttpRequestInputFileElement* element,
                  const QString& requestFilename, const QByteArray& boundary) {
    QByteArray head;
    // Only the first variable goes out, and that must stay.
    if (!input.vars.isEmpty()) {
        head += "--" + boundary + "\r\n";
        head += "Content-Disposition: form-data; " + Parameter("name", input.vars.first().first) + "\r\n\r\n";
        head += input.vars.first().second.toUtf8() + "\r\n";
    }
    if (element != nullptr) {
        head += "--" + boundary + "\r\n";
        head += "Content-Disposition: form-data; " + Parameter("name", element->variable_name) + "; " +
                Parameter("filename", requestFilename) + "\r\n";
        if (!element->mime_type.isEmpty()) head += "Content-Type: " + element->mime_type.toUtf8() + "\r\n";
        head += "\r\n";
    }
    return head;
}

QByteArray TailOf(bool withFile, const QString& submitName, const QByteArray& boundary) {
    QByteArray tail;
    if (withFile) tail += "\r\n";
    tail += "--" + boundary + "\r\n";
    tail += "Content-Disposition: form-data; " + Parameter("name", submitName) + "\r\n\r\n";
    tail += "Submit Query\r\n";
    tail += "--" + boundary + "--";
    return tail;
}

/// A difference that wraps: callers may name any offset.
qint64 Minus(qint64 a, qint64 b) {
    return static_cast<qint64>(static_cast<quint64>(a) - static_cast<quint64>(b));
}

}  // namespace

int HttpRequestWorker::upload(HttpRequestInput* input, QString submitName, bool bNoFileData,
                              WFMProgressCallback callback, void* lpData) {
    clearOutcome();
    if (input->files.isEmpty()) return error_type = kErrorNoFileElement;
    input->var_layout = kVarsInUpload;

    const std::optional<HttpRequestInputFileElement> element = TakeElement(*input, bNoFileData);
    if (!element && !bNoFileData) return QNetworkReply::ContentOperationNotPermittedError;
    if (element) llTotalFileSize += element->total_size;
    const QString path = element ? element->local_filename : QString();
    const qint64 startOffset = element ? element->start_offset : 0;

    const QByteArray boundary = makeBoundary();
    const QByteArray head = HeadOf(*input, element ? &*element : nullptr,
                                   element ? requestFilename(*element) : QString(), boundary);
    QUpFile body(path, head, TailOf(element.has_value(), submitName, boundary), bNoFileData);
    if (bNoFileData) {
        body.open(QIODevice::ReadOnly);
    } else if (!body.openFile() || (startOffset > 0 && !body.seekFileStartPosition(startOffset))) {
        return QNetworkReply::ContentOperationNotPermittedError;
    }
    if (element && element->bChunkContinue) body.setEnabledChunkUploadContinue(true);
    llHeadSize = body.headerSize();
    llTailSize = body.tailSize();

    m_callback = callback;
    m_lpData = lpData;
    OneWayBody oneWay(body);
    Exchange exchange(
        *this, send(*input, makeRequest(*input, "multipart/form-data; boundary=" + boundary, kWithoutPragma),
                    oneWay));

    if (!bNoFileData) {
        llStreamSize = llTotalFileSize;
        llStartOffset = startOffset;
        if (m_callback != nullptr) {
            dwProgress = report(1, 1);
            if (dwProgress != 0) return QNetworkReply::OperationCanceledError;
        }
        llTotalBytesTransferred += startOffset;
        llStreamBytesTransferred += startOffset;
        llBodyFileBytes = body.filesize();
        connect(reply, &QNetworkReply::uploadProgress, this, &HttpRequestWorker::uploadProgress);
    }
    finish(exchange, input->timeout_msec, oneWay);
    const int error = error_type;

    if (dwProgress != 0 || bNoFileData) return error;
    const bool allSent = llBodyFileBytes == Minus(llTotalBytesTransferred, llStartOffset);
    if ((error != 0 || allSent) && m_callback != nullptr && !element->bChunkContinue) {
        dwProgress = report(0, 0);
        return error;
    }
    // The offset weighs twice, since the transferred bytes count from the start of the file. That must stay:
    // a chunked upload decides by the result whether its upload id is still good.
    if (Minus(Minus(llBodyFileBytes, llTotalBytesTransferred), llStartOffset) > 0) {
        const quint32 before = dwProgress;
        dwProgress = kStopBodyShort;
        Lattice::LogLine(
            Lattice::Logger::Error,
            "[WFM]  HttpRequestWorker(%s)::upload  PROGRESS_STOP dwProgress(%d) llNumberOfBytesAvailable(%d)",
            path.toUtf8().constData(), static_cast<int>(before),
            static_cast<int>(Minus(llBodyFileBytes, llTotalBytesTransferred)));
    }
    return error;
}

void HttpRequestWorker::uploadProgress(qint64 bytesSent, qint64 bytesTotal) {
    if (bytesSent <= 0) return;
    // The total comes from the file's size of the moment.
    if (llBodyFileBytes + llHeadSize + llTailSize != bytesTotal) {
        Lattice::LogLine(Lattice::Logger::Error,
                         "[WFM] HttpRequestWorker::uploadProgress file size is changed");
        reply->abort();
    }
    if (bytesSent < bytesTotal && bytesSent == llLastSent) return;
    if (bytesSent - llHeadSize < 0) {
        llLastSent = bytesSent;
        return;
    }
    const qint64 increment = bytesSent - (llLastSent < llHeadSize ? llHeadSize : llLastSent);
    llLastSent = bytesSent;
    if (llTotalBytesTransferred - llStartOffset >= llBodyFileBytes) return;

    const qint64 end = llStartOffset + llBodyFileBytes;
    llTotalBytesTransferred = std::min(llTotalBytesTransferred + increment, end);
    llStreamBytesTransferred = std::min(llStreamBytesTransferred + increment, end);

    if (m_callback == nullptr) return;
    dwProgress = report(1, 0);
    if (dwProgress == 0) return;
    Lattice::LogLine(Lattice::Logger::Error, "[WFM] HttpRequestWorker::uploadProgress abort(%d)",
                     static_cast<int>(dwProgress));
    if (llTotalBytesTransferred != bytesTotal) reply->abort();
}
