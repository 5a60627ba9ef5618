#include "transfer/upfile.h"

#include <algorithm>
#include <cstring>

QUpFile::QUpFile(QString const& fileName, QByteArray const& head, QByteArray const& tail, bool noFile,
                 QObject* parent)
    : QIODevice(parent),
      m_file(noFile ? nullptr : new QFile(fileName, this)),
      m_head(std::make_unique<QByteArray>(head)),
      m_tail(std::make_unique<QByteArray>(tail)) {}

QUpFile::~QUpFile() = default;

bool QUpFile::openFile() {
    return m_file != nullptr && m_file->open(QIODevice::ReadOnly) && open(QIODevice::ReadOnly);
}

qint64 QUpFile::headerSize() const {
    return m_head->size();
}

qint64 QUpFile::tailSize() const {
    return m_tail->size();
}

qint64 QUpFile::filesize() const {
    if (m_file == nullptr) return 0;
    const qint64 fileSize = m_file->size();
    if (m_fileStart >= fileSize) return 0;
    const qint64 remaining = fileSize - m_fileStart;
    return m_chunkContinue ? std::min(remaining, WFM_UPLOAD_SLICE_LIMIT) : remaining;
}

qint64 QUpFile::sizepart() const {
    return headerSize() + filesize();
}

qint64 QUpFile::sizefull() const {
    return sizepart() + tailSize();
}

qint64 QUpFile::size() const {
    return sizefull();
}

bool QUpFile::seekFileStartPosition(qint64 position) {
    if (m_file == nullptr || !m_file->isOpen() || position < 1) return false;
    if (!m_file->seek(position)) return false;
    m_fileStart = position;
    return true;
}

void QUpFile::setEnabledChunkUploadContinue(bool enabled) {
    m_chunkContinue = enabled;
}

qint64 QUpFile::readData(char* buffer, qint64 maxlen) {
    if (m_file != nullptr && !m_file->isOpen()) return -1;
    qint64 delivered = 0;

    if (m_position < headerSize()) {
        const qint64 count = std::min(headerSize() - m_position, maxlen);
        std::memcpy(buffer, m_head->constData() + m_position, static_cast<size_t>(count));
        m_position += count;
        delivered += count;
    }

    // The file may change under the upload: its bounds hold for this call only.
    const qint64 tailStart = sizepart();
    if (m_file != nullptr && delivered < maxlen && m_position >= headerSize() && m_position < tailStart) {
        qint64 wanted = std::min(m_file->bytesAvailable(), maxlen - delivered);
        if (m_chunkContinue) wanted = std::min(wanted, tailStart - m_position);
        const qint64 count = m_file->read(buffer + delivered, wanted);
        if (count > 0) {
            m_position += count;
            delivered += count;
        }
    }

    if (delivered < maxlen && m_position >= tailStart && m_position < tailStart + tailSize()) {
        const qint64 from = m_position - tailStart;
        const qint64 count = std::min(tailSize() - from, maxlen - delivered);
        std::memcpy(buffer + delivered, m_tail->constData() + from, static_cast<size_t>(count));
        m_position += count;
        delivered += count;
    }
    return delivered;
}

qint64 QUpFile::writeData(char const*, qint64) {
    return -1;
}
