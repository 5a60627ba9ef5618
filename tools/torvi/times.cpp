#include "times.h"

#include <QDateTime>

#include "failure.h"

namespace torvi {

int64_t parseTime(const QString& what, const QString& text) {
    if (text == QLatin1String("now")) return QDateTime::currentSecsSinceEpoch();
    bool number = false;
    const int64_t seconds = text.mid(text.startsWith(QLatin1Char('@')) ? 1 : 0).toLongLong(&number);
    if (number) return seconds;
    QString iso = text;
    if (iso.size() > 10 && iso[10] == QLatin1Char(' ')) iso[10] = QLatin1Char('T');
    const QDateTime time = QDateTime::fromString(iso, Qt::ISODate);
    if (!time.isValid()) {
        throw Failure(Exit::Usage, QStringLiteral("%1: --time wants seconds since 1970, a time as in "
                                                  "2024-02-29T12:34:56Z, or now")
                                       .arg(what));
    }
    return time.toSecsSinceEpoch();
}

}  // namespace torvi
