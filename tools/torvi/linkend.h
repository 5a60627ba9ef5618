#pragma once

#include <QString>
#include <cstdint>
#include <string>

namespace torvi {

/// How long a link is good, as the calls take it.
struct LinkEnd {
    uint32_t durationType = 1;  ///< of gValidDurationTypes
    std::wstring date;          ///< for type 2, by the server's clock
    std::wstring hours = L"0";  ///< for type 3; some calls want it in any case

    /// As --expires takes it, a period in hours; "" for a link that stays.
    QString text() const;
    bool isPeriod() const;
};

/// never, a period such as 12h, 7d or 2w, or a date with or without a time. Throws the usage failure of
/// `what`.
LinkEnd parseLinkEnd(const QString& what, const QString& text);

}  // namespace torvi
