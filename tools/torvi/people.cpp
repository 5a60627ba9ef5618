#include "people.h"

#include <WebFileManShareAPI.h>

#include <QStringList>

#include "failure.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

constexpr uint32_t kOwnUsers = 1;
constexpr uint32_t kDirectoryUsers = 2;
constexpr uint32_t kListTooSmall = 122;

QString textOrNone(const wchar_t* text) {
    return text == nullptr ? QString() : QString::fromWCharArray(text);
}

/// How a call is told whose users are meant.
struct Wanted {
    explicit Wanted(const PeopleQuery& query)
        : type(query.domain ? kDirectoryUsers : kOwnUsers),
          domain(query.domain ? wide(query.domain->name) : std::wstring()),
          netbios(query.domain ? wide(query.domain->netbios) : std::wstring()),
          filter(wide(query.filter)) {}
    uint32_t type;
    std::wstring domain;
    std::wstring netbios;
    std::wstring filter;
};

bool isCalled(const Domain& domain, const QString& name) {
    return domain.name.compare(name, Qt::CaseInsensitive) == 0 ||
           domain.netbios.compare(name, Qt::CaseInsensitive) == 0;
}

}  // namespace

std::vector<Domain> directoryDomains(const Session& session, const QString& what) {
    for (uint32_t capacity = 16;;) {
        RecordPage<_WFM_TORVI_AD_INFORMATION> page(capacity);
        uint32_t word = 0;
        const uint32_t dwStatus =
            WebFileManGetAdInfo(session.context(), session.server(), session.port(),
                                static_cast<int32_t>(capacity), nullptr, &word, page.list(), page.count());
        // It tells how many there are.
        const bool retry = dwStatus == 0 && word == kListTooSmall && *page.count() > capacity;
        if (!retry) check(what, dwStatus, word);
        if (retry) {
            capacity = *page.count();
            continue;
        }
        std::vector<Domain> domains;
        for (const auto& record : page) domains.push_back({text(record.szDomain), text(record.szNetbios)});
        return domains;
    }
}

Domain findDomain(const Session& session, const QString& what, const QString& name) {
    QStringList known;
    for (const Domain& domain : directoryDomains(session, what)) {
        if (isCalled(domain, name)) return domain;
        known << domain.netbios;
    }
    throw Failure(
        Exit::NotFound,
        QStringLiteral("%1: the server knows no directory %2%3")
            .arg(what, name,
                 known.isEmpty() ? QString()
                                 : QStringLiteral(", but %1").arg(known.join(QStringLiteral(", ")))));
}

People userList(const Session& session, const QString& what, const PeopleQuery& query) {
    const Wanted wanted(query);
    People people;
    const auto ask = [&](uint32_t lower, uint32_t upper, RecordPage<_WFM_USER_INFORMATION>& page) {
        uint32_t total = 0;
        uint32_t word = 0;
        const uint32_t dwStatus = WebFileManGetUserList(
            session.context(), session.server(), session.port(), wanted.type, wanted.domain.c_str(),
            wanted.netbios.c_str(), wanted.filter.c_str(), lower, upper, query.all, query.refresh, nullptr,
            &word, &total, page.count(), page.list());
        if (interrupted()) throwCancelled(what);
        check(what, dwStatus, word);
        return total;
    };
    people.total =
        eachRecord<_WFM_USER_INFORMATION>(query.window, ask, [&](const _WFM_USER_INFORMATION& user) {
            people.people.push_back(
                {text(user.szName), textOrNone(user.pszDescription), text(user.szPolicy), user.nTorviUser});
        });
    return people;
}

std::vector<SharePerson> sharePeople(const Session& session, const QString& what, const QString& nasId,
                                     const QString& shareId, const PeopleQuery& query, bool onlyMembers) {
    const Wanted wanted(query);
    std::vector<SharePerson> people;
    const auto ask = [&](uint32_t lower, uint32_t upper, RecordPage<_WFM_SHARE_MEMBER_INFORMATION>& page) {
        uint32_t total = 0;
        uint32_t word = 0;
        const uint32_t dwStatus = WebFileManGetShareMember(
            session.context(), session.server(), session.port(), wide(nasId).c_str(), wide(shareId).c_str(),
            lower, upper, wanted.type, wanted.domain.c_str(), wanted.netbios.c_str(), wanted.filter.c_str(),
            query.all, query.refresh, onlyMembers, nullptr, &total, page.count(), page.list(), &word);
        if (interrupted()) throwCancelled(what);
        check(what, dwStatus, word);
        return total;
    };
    eachRecord<_WFM_SHARE_MEMBER_INFORMATION>(
        query.window, ask, [&](const _WFM_SHARE_MEMBER_INFORMATION& member) {
            people.push_back({{text(member.szName), textOrNone(member.pszDescription), {}, member.nTorviUser},
                              member.nShareMember != 0,
                              member.nEventStatus,
                              static_cast<uint32_t>(member.nEventID)});
        });
    return people;
}

QString syncText(int32_t sync) {
    switch (sync) {
        case 0:
            return QStringLiteral("no");
        case 1:
            return QStringLiteral("yes");
        default:
            return QString::number(sync);
    }
}

QString policyText(const QString& policy) {
    if (policy == QLatin1String("0")) return QStringLiteral("asks");
    if (policy == QLatin1String("1")) return QStringLiteral("accepts");
    if (policy == QLatin1String("2")) return QStringLiteral("refuses");
    return policy.isEmpty() ? QStringLiteral("-") : policy;
}

}  // namespace torvi
