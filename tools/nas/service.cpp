#include "service.h"

#include <arpa/inet.h>

#include <cstdlib>
#include <filesystem>

#include "auth_query.h"
#include "calls.h"
#include "control.h"
#include "json_text.h"
#include "log.h"
#include "outcome_text.h"
#include "require_header.h"
#include "sharing.h"
#include "versions.h"

namespace nas {

namespace {

constexpr size_t kLongestForm = 64 * 1024;

struct {
    const char* path;
    Endpoint endpoint;
} const kEndpoints[] = {
    {"cgi-bin/torvi/torvisrv.cgi", Endpoint::SyncCgi},
    {"cgi-bin/torvi/torvisrv.fcgi", Endpoint::SyncFcgi},
    {"cgi-bin/torvi/torvisrv_login.cgi", Endpoint::SyncLogin},
    {"cgi-bin/torvi/torvisrv_logout.cgi", Endpoint::SyncLogout},
    {"cgi-bin/torvi/upload.php", Endpoint::SyncBatch},
    {"cgi-bin/torvi/torvisrvPrepare.cgi", Endpoint::SyncPrepare},
    {"cgi-bin/filemanager/utilRequest.cgi", Endpoint::ManagerCgi},
    {"cgi-bin/filemanager/wfm2Login.cgi", Endpoint::ManagerLogin},
    {"cgi-bin/filemanager/wfm2Logout.cgi", Endpoint::ManagerLogout},
    {"cgi-bin/filemanager/upload.php", Endpoint::ManagerBatch},
    {"cgi-bin/filemanager/torviPrepare.cgi", Endpoint::ManagerPrepare},
    {"cgi-bin/authLogin.cgi", Endpoint::AuthLogin},
    {"share.cgi", Endpoint::SharePage},
};

bool isSync(Endpoint endpoint) {
    return on(endpoint) <= on(Endpoint::SyncPrepare);
}

// The name under which a request is counted and logged.
std::string callName(Endpoint endpoint, const Fields& query) {
    switch (endpoint) {
        case Endpoint::SyncLogin:
        case Endpoint::ManagerLogin:
            return "login";
        case Endpoint::SyncLogout:
        case Endpoint::ManagerLogout:
            return "logout";
        case Endpoint::SyncBatch:
        case Endpoint::ManagerBatch:
            return "upload.php";
        case Endpoint::SyncPrepare:
        case Endpoint::ManagerPrepare:
            return hasField(query, "func") ? field(query, "func") : "identity";
        case Endpoint::AuthLogin:
            return query.empty() ? "" : query[0].first;
        case Endpoint::SharePage:
            return hasField(query, "func") ? field(query, "func") : "share";
        default:
            return query.empty() ? "version" : hasField(query, "func") ? field(query, "func") : "";
    }
}

std::string onlyHeader(const httplib::Request& http, const char* name) {
    if (http.get_header_value_count(name) > 1) {
        throw Refusal(std::string("header ") + name + " came twice");
    }
    return http.get_header_value(name);
}

void requireHeader(const httplib::Request& http, const char* name, const std::string& value) {
    nas::requireHeader(name, onlyHeader(http, name), value);
}

bool isAddress(const std::string& text) {
    in6_addr address{};
    return ::inet_pton(AF_INET, text.c_str(), &address) == 1 ||
           ::inet_pton(AF_INET6, text.c_str(), &address) == 1;
}

// Only a client on this very machine speaks for another address.
void requireForwardedFor(const httplib::Request& http) {
    if (http.get_header_value("Host").rfind("127.0.0.1", 0) != 0) {
        throw Refusal("header X-Forwarded-For towards another host than 127.0.0.1");
    }
    if (!isAddress(onlyHeader(http, "X-Forwarded-For"))) {
        throw Refusal("header X-Forwarded-For is no address");
    }
}

void checkHeaders(const Request& request, const Call& call) {
    const httplib::Request& http = request.http;
    if (onlyHeader(http, "Host").empty()) {
        throw Refusal("header Host is missing");
    }
    if (onlyHeader(http, "User-Agent").empty()) {
        throw Refusal("header User-Agent is missing");
    }
    requireHeader(http, "Cache-Control", "no-cache");
    requireHeader(http, "Pragma", call.pragma ? "no-cache" : "");
    for (const char* name : {"Range", "Content-Encoding", "Transfer-Encoding", "Cookie", "Authorization"}) {
        if (http.has_header(name)) {
            throw Refusal(std::string("header ") + name + " is not in the protocol");
        }
    }
    if (http.has_header("X-Forwarded-For")) {
        requireForwardedFor(http);
    }
    switch (call.body) {
        case BodyKind::None:
            if (!request.contentType.empty()) {
                throw Refusal("header Content-Type on a request without a body");
            }
            if (http.has_header("Content-Length") && http.get_header_value("Content-Length") != "0") {
                throw Refusal("a body on a " + http.method + " request");
            }
            break;
        case BodyKind::Form:
            if (request.contentType != "application/x-www-form-urlencoded;charset=UTF-8") {
                throw Refusal("header Content-Type is \"" + request.contentType + "\" on a form");
            }
            break;
        case BodyKind::Multipart:
            break;  // the reader of the body checks it
    }
    if (call.body != BodyKind::None && !http.has_header("Content-Length")) {
        throw Refusal("header Content-Length is missing", 411);
    }
}

const Call& findCall(const Request& request) {
    const std::string name = callName(request.endpoint, request.query);
    const Call* other = nullptr;
    for (const Call& call : allCalls()) {
        if (call.name == name && call.endpoints & on(request.endpoint)) {
            if (call.method == request.http.method) {
                return call;
            }
            other = &call;
        }
    }
    if (other) {
        throw Refusal("method is " + request.http.method + ", not " + other->method, 405);
    }
    if (name.empty()) {
        throw Refusal("query key \"func\" is missing");
    }
    throw Refusal("no call \"" + name.substr(0, 60) + "\" at this address");
}

bool wantsBody(const httplib::Request& http) {
    return http.has_header("Content-Length") || http.has_header("Transfer-Encoding");
}

// The keys of the call whose values stand in its query as they are.
const Shape& typedKeys(Endpoint endpoint, const std::string& query) {
    static const Shape none;
    for (const Call& call : allCalls()) {
        if (call.endpoints & on(endpoint) && query.rfind("func=" + call.name + "&", 0) == 0) {
            return call.typed;
        }
    }
    return none;
}

Fields decodeQuery(Endpoint endpoint, const std::string& query) {
    switch (endpoint) {
        case Endpoint::AuthLogin:
            return decodeAuthQuery(query);
        case Endpoint::SharePage:
            return decodeLoosely(query, "query");
        default:
            return decodeTyped(query, "query", typedKeys(endpoint, query));
    }
}

}  // namespace

void drain(const httplib::ContentReader* body) {
    if (body) {
        (*body)([](const char*, size_t) { return true; });
    }
}

Fields readForm(Request& request, const std::string& repeating) {
    std::string text;
    bool whole = request.body && (*request.body)([&](const char* data, size_t length) {
                     if (text.size() <= kLongestForm) {
                         text.append(data, length);
                     }
                     return true;
                 });
    if (!whole) {
        throw Refusal("the form's body didn't arrive");
    }
    if (text.size() > kLongestForm) {
        throw Refusal("form body too long", 413);
    }
    return decodeFields(text, "form", repeating);
}

Service::Service(const Options& options, Faults& faults)
    : options_(options),
      managerUsers_(options.users.asSeenByManager()),
      faults_(faults),
      shares_(options.root, options.sessionFolder, options.slaveId),
      devices_(keptAt(options.root, options.sessionFolder, options.slaveId, "devices")),
      tree_(options.root, options.users, shares_),
      sessions_(options.sessionTtl, options.sessionFolder),
      secondSteps_(options.tryLimit),
      mailbox_(options.mailFolder),
      booting_(options.booting),
      partials_(options.root, options.partialMaxAge),
      changeLog_(options.root, static_cast<size_t>(options.changesKept)),
      nodes_(options.sessionFolder, {options.slaveId, options.serverName,
                                     std::filesystem::absolute(options.root).lexically_normal().string()}),
      locks_(options.lockTtl),
      jobs_(options.jobDelay) {
    Version::dropOld(*this, options.partialMaxAge);
    addTeams(*this, options.teams);
    const ConfigRules& rules = options.configRules;
    if (!rules.acl.empty() || rules.password) {
        devices_.change([&](DeviceBook& book) { book.follow(rules); });
    }
}

void Service::setPorts(int http, int tls) {
    httpPort_ = http;
    tlsPort_ = tls;
}

const User* Service::findUser(Endpoint endpoint, const std::string& name) const {
    return (isSync(endpoint) ? options_.users : managerUsers_).find(name);
}

const User& Service::authenticate(Request& request, const std::string& sid) {
    const User* user = findUser(request.endpoint, sessions_.use(sid));
    if (!user) {
        throw StatusError(Status::NotAuthenticated, "no such session");
    }
    request.userName = user->name;
    request.device = sessions_.device(sid);
    return *user;
}

std::optional<Fault> Service::fault(FaultKind kind, const Request& request) {
    const std::string func = callName(request.endpoint, request.query);
    std::optional<Fault> fault = faults_.matchServed(kind, func, request.http.path);
    if (fault) {
        faults_.hit(fault->id);
        logLine(std::string("fault ") + faultName(kind) + " hit func=" + func);
    }
    return fault;
}

Endpoint Service::findEndpoint(const std::string& path) const {
    if (path.empty() || path[0] != '/') {
        throw Refusal("request target is no path");
    }
    std::string rest = path.substr(1);
    bool prefixed = false;
    if (rest.rfind("cgi-bin/", 0) != 0 && rest != "share.cgi") {
        size_t slash = rest.find('/');
        std::string prefix = rest.substr(0, slash);
        if (slash == std::string::npos || options_.slaveId.empty() || prefix != options_.slaveId) {
            throw Refusal("nothing is served here", 404);
        }
        prefixed = true;
        rest.erase(0, slash + 1);
    }
    for (const auto& known : kEndpoints) {
        if (rest != known.path) {
            continue;
        }
        bool offered = ((options_.sync && !booting_) || !isSync(known.endpoint)) &&
                       (options_.fcgi || known.endpoint != Endpoint::SyncFcgi);
        bool mayBePrefixed = known.endpoint == Endpoint::SyncCgi || known.endpoint == Endpoint::SyncFcgi ||
                             known.endpoint == Endpoint::SyncBatch ||
                             known.endpoint == Endpoint::SyncPrepare ||
                             known.endpoint == Endpoint::ManagerCgi || known.endpoint == Endpoint::SharePage;
        if (!offered) {
            throw Refusal("this server doesn't have " + rest, 404);
        }
        if (prefixed && !mayBePrefixed) {
            throw Refusal("this address takes no slave prefix", 404);
        }
        return known.endpoint;
    }
    throw Refusal("nothing is served here", 404);
}

bool Service::sendToTls(const Request& request, const Call& call, httplib::Response& response) const {
    const bool first =
        call.name == "login" || call.name == "identity" || request.endpoint == Endpoint::AuthLogin;
    if (!first || overTls(request.http)) {
        return false;
    }
    const std::string host = request.http.get_header_value("Host");
    response.status = 302;
    response.set_header("Location", "https://" + host.substr(0, host.find(':')) + ":" +
                                        std::to_string(tlsPort_) + request.http.target);
    response.set_content("<html><body>This server wants TLS.</body></html>\n", "text/html");
    return true;
}

void Service::serveCall(Request& request, httplib::Response& response, LedgerEntry& entry) {
    entry.func = callName(request.endpoint, request.query);
    const Call& call = findCall(request);
    entry.known = true;
    if (request.endpoint == Endpoint::ManagerCgi && !call.prefix) {
        requireNoPrefix(request);
    }
    if (!call.anybody) {
        checkHeaders(request, call);
    }
    requireShape(request.query, call.shapes, "query");
    if (options_.redirectTls && sendToTls(request, call, response)) {
        entry.http = response.status;
        return;
    }
    Answer answer;
    try {
        answer = call.serve(*this, request, response);
    } catch (const StatusError& error) {
        answer.json = {{"status", number(error.status())}};
        answer.note = error.what();
        if (call.refusal) {
            call.refusal(answer.json);
        }
    }
    entry.user = request.userName;
    entry.reason = answer.note;
    if (answer.json.is_object() && answer.json.contains("status")) {
        entry.status = answer.json["status"].get<int>();
    }
    if (!answer.direct) {
        std::string text = answer.json.dump();
        if (call.name == "download") {
            // Without a length: no client may take the text for the file's bytes.
            response.set_chunked_content_provider("application/json",
                                                  [text](size_t, httplib::DataSink& sink) {
                                                      sink.write(text.data(), text.size());
                                                      sink.done();
                                                      return true;
                                                  });
        } else {
            response.set_content(text, "application/json");
        }
    }
}

void Service::serve(const httplib::Request& http, httplib::Response& response,
                    const httplib::ContentReader* body) {
    const std::string path = http.target.substr(0, http.target.find('?'));
    if (options_.control && path.rfind("/control/", 0) == 0) {
        serveControl(*this, path, http, response, body);
        return;
    }
    LedgerEntry entry;
    entry.method = http.method;
    entry.path = path;
    bool drained = body == nullptr;
    httplib::ContentReader once(
        [&](httplib::ContentReceiver receiver) {
            drained = true;
            return (*body)(std::move(receiver));
        },
        nullptr);
    try {
        Request request{
            http, body ? &once : nullptr, findEndpoint(path), http.get_header_value("X-Body-Type"), {}, {}};
        size_t question = http.target.find('?');
        if (question != std::string::npos) {
            const std::string query = http.target.substr(question + 1);
            request.query = decodeQuery(request.endpoint, query);
            if (request.query.empty()) {
                throw Refusal("empty query");
            }
        }
        serveCall(request, response, entry);
    } catch (const Refusal& refusal) {
        entry.http = refusal.http();
        entry.reason = refusal.what();
    } catch (const std::exception& error) {
        entry.http = 500;
        entry.reason = error.what();
    }
    if (!drained && wantsBody(http)) {
        drain(body);
    }
    if (entry.http >= 400) {
        response.status = entry.http;
        response.set_content(dumped({{"error", entry.reason}}), "application/json");
    }
    ledger_.add(entry);
    logLine(entry.method + " " + path + " func=" + orDash(entry.func) + outcomeText(entry, "status"));
}

}  // namespace nas
