#pragma once

#include <QByteArray>
#include <QFile>
#include <QIODevice>
#include <memory>

#include "WebFileManAPI.h"

/// The most file bytes that one body carries when `bChunkContinue` is set.
constexpr qint64 WFM_UPLOAD_SLICE_LIMIT = 0x40000000;

/// A request body of three pieces: head bytes, a stretch of a file, tail bytes. It serves one pass: its own
/// read position never goes back.
class TORVIAPI_EXPORT QUpFile : public QIODevice {
    Q_OBJECT

public:
    QUpFile(QString const& fileName, QByteArray const& head, QByteArray const& tail, bool noFile,
            QObject* parent = nullptr);
    ~QUpFile() override;

    /// Opens the file, then the device. Without a file there is nothing to open, and the device stays closed.
    bool openFile();

    qint64 headerSize() const;
    qint64 tailSize() const;
    /// The file bytes of this body, from the file's size of the moment.
    qint64 filesize() const;
    /// The read position at which the tail starts.
    qint64 sizepart() const;
    qint64 sizefull() const;
    qint64 size() const override;

    /// The file bytes start here. False, and nothing changed, for a position below 1.
    bool seekFileStartPosition(qint64 position);
    void setEnabledChunkUploadContinue(bool enabled);

    // Public for its callers that fill a buffer without QIODevice's own in between.
    qint64 readData(char* buffer, qint64 maxlen) override;
    qint64 writeData(char const* buffer, qint64 maxlen) override;

private:
    QFile* m_file = nullptr;
    std::unique_ptr<QByteArray> m_head;
    std::unique_ptr<QByteArray> m_tail;
    qint64 m_position = 0;
    qint64 m_fileStart = 0;
    bool m_chunkContinue = false;
};
