#include "core/onewaybody.h"

OneWayBody::OneWayBody(QIODevice& source) : m_source(source), m_total(source.size()) {
    // Unbuffered: Qt shall see the source's end and size as they are.
    QIODevice::open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 OneWayBody::size() const {
    return m_source.size();
}

bool OneWayBody::reset() {
    return false;
}

// QIODevice may seek to where it stands before it reads.
bool OneWayBody::seek(qint64 position) {
    return position == pos() && QIODevice::seek(position);
}

qint64 OneWayBody::readData(char* data, qint64 maxSize) {
    const qint64 count = m_source.read(data, maxSize);
    if (count > 0 || maxSize == 0) return count;
    // Told 0, Qt would wait for bytes that never come.
    if (pos() < m_total) m_ranDry = true;
    return -1;
}

qint64 OneWayBody::writeData(const char*, qint64) {
    return -1;
}
