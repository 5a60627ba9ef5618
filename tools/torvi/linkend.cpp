#include "linkend.h"

#include <QDateTime>
#include <QRegularExpression>

#include "failure.h"
#include "output.h"

namespace torvi {
namespace {

enum DurationType : uint32_t { kForever = 1, kUntil = 2, kPeriod = 3 };

/// The server's way of writing it, or the user's.
QString endText(QString date) {
    return date.replace(QLatin1Char('/'), QLatin1Char('-')).replace(QLatin1Char('T'), QLatin1Char(' '));
}

QString dateText(const QString& given) {
    QString text = endText(given);
    // A day alone is meant to its end.
    if (text.size() == 10) text += QStringLiteral(" 23:59");
    for (const char* format : {"yyyy-MM-dd HH:mm", "yyyy-MM-dd HH:mm:ss"}) {
        const QDateTime time = QDateTime::fromString(text, QLatin1String(format));
        if (time.isValid()) return time.toString(QStringLiteral("yyyy/MM/dd HH:mm"));
    }
    return {};
}

}  // namespace

QString LinkEnd::text() const {
    switch (durationType) {
        case kUntil:
            return endText(QString::fromStdWString(date));
        case kPeriod:
            return QString::fromStdWString(hours) + QLatin1Char('h');
        default:
            return {};
    }
}

bool LinkEnd::isPeriod() const {
    return durationType == kPeriod;
}

LinkEnd parseLinkEnd(const QString& what, const QString& text) {
    if (text.isEmpty() || text == QLatin1String("never")) return {};
    static const QRegularExpression period(QStringLiteral("^([1-9][0-9]{0,5})([hdw])$"));
    if (const auto match = period.match(text); match.hasMatch()) {
        const int hours = match.captured(2) == QLatin1String("h")   ? 1
                          : match.captured(2) == QLatin1String("d") ? 24
                                                                    : 7 * 24;
        return {kPeriod, L"", std::to_wstring(match.captured(1).toInt() * hours)};
    }
    const QString date = dateText(text);
    if (date.isEmpty()) {
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: --expires wants never, a period as in 12h, 7d or 2w, or "
                                     "a date as in \"2031-12-31 18:00\"")
                          .arg(what));
    }
    return {kUntil, wide(date)};
}

}  // namespace torvi
