#pragma once

#include <QIODevice>

/// Stands between a request body and Qt, and refuses to be rewound.
///
/// When a connection is lost before the reply, Qt rewinds the body and sends the request again. For a POST
/// that would run the operation twice, and a body that only pretends to rewind would never end. A refused
/// rewind ends the exchange at once instead, with QNetworkReply::ContentReSendError.
///
/// It must not be sequential: Qt would collect the whole body in memory first. Nor may it be a QBuffer, whose
/// bytes Qt reads past the virtual functions.
class OneWayBody : public QIODevice {
public:
    /// `source` is open, stands at its start, and outlives this.
    explicit OneWayBody(QIODevice& source);

    qint64 size() const override;
    bool reset() override;
    bool seek(qint64 position) override;

    /// Whether the source ended before the body did.
    bool ranDry() const { return m_ranDry; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 maxSize) override;

private:
    QIODevice& m_source;
    const qint64 m_total;  // as the request announces it
    bool m_ranDry = false;
};
