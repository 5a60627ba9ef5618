#pragma once

#include "WebFileManShareAPI.h"
#include "lib_records.h"
#include "lib_support.h"

/// Public links.
namespace e2e {

/// The type numbers of the calls, by the words on the wire.
inline constexpr std::uint32_t kForMail = 1, kForDownload = 2;
inline constexpr std::uint32_t kForever = 1, kUntil = 2, kFor = 3;
inline constexpr std::uint32_t kInternet = 1, kLocal = 2;

/// What a link is to be like.
struct LinkWish {
    std::wstring path = L"/home/a.txt";
    std::wstring node = {};
    std::uint32_t download = kForDownload, duration = kForever, network = kLocal;
    std::wstring host = kServer, code = {}, datetime = {}, period = L"24";
    bool secure = false;
    std::uint32_t capacity = 2047;
};

/// Who is to hear of a link.
struct LinkMail {
    std::wstring addressee = L"dora@example.test", subject = L"Files", content = L"Look:";
    bool tellCode = false;
    std::wstring code = {};
};

/// What WFMGetShareLink says.
struct LinkText {
    std::string url, expires;
    std::uint32_t capacity = 0;
};
Numbers getLink(const Client& client, const LinkWish& wish, LinkText& link,
                const std::wstring& addressee = {});
Numbers createLink(const Client& client, const LinkWish& wish, const LinkMail& mail = {});

/// Several files under one link.
struct Selection {
    std::wstring files = {};  ///< each with ";" behind it
    LinkWish wish = {};
    bool isNew = false;
    std::wstring name = {};
};
Numbers selectLink(const Client& client, const Selection& selection, _WFM_SHARE_LINK_RESULT& link);

struct LinkChange {
    std::wstring ssids = {};
    LinkWish wish = {};
    std::wstring name = {};
    std::uint32_t hostPort = 0;
    bool hostForm = false, nameOnly = false;
};
Numbers changeLink(const Client& client, const LinkChange& change, LinkText& link);
/// By ids, or without them by path and URL.
Numbers deleteLink(const Client& client, const std::wstring& path, const std::wstring& url,
                   const std::wstring& ssids = {}, const std::wstring& node = {});

/// A link of the list, without its 28 KB.
struct LinkRow {
    std::wstring ssid;
    std::string file, url, creator, name;
    bool isFolder = false, isMultiple = false;
};
struct Links {
    std::wstring node = {};
    std::int32_t limit = 100, start = 0;  ///< afterwards the total
    std::uint32_t capacity = 10;
    std::vector<LinkRow> rows = {};
};
/// It has no result word.
std::uint32_t ask(const Client& client, Links& question);
/// The id of the only link that a user has.
std::wstring onlyLink(const Client& client, const std::wstring& node = {});

struct LinkItems {
    std::wstring ssid, path = {}, node = {};
    std::uint32_t capacity = 10;
    std::uint32_t total = 0xABCD, count = 0xABCD;
    std::vector<std::string> names = {};  ///< folders with "/" at their end
};
std::uint32_t ask(const Client& client, LinkItems& question);

Numbers mailLink(const Client& client, const std::wstring& ssid, const LinkMail& mail,
                 const std::wstring& node = {});
Numbers mailLinks(const Client& client, const std::wstring& ssids, const LinkMail& mail,
                  std::uint32_t download = kForMail, std::uint32_t network = kInternet);

/// What a visitor's browser gets.
struct Visit {
    int status = 0;
    std::string body;
};
/// The query begins with "&".
Visit visit(const std::string& url, const std::string& query = {});

}  // namespace e2e
