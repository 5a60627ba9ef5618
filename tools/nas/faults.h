#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace nas {

enum class FaultKind {
    CloseBeforeReply,  // the request is served, the connection ends in place of the reply
    CloseInReply,      // after `bytes` of the reply
    Reset,             // the same, with RST
    Stall,             // after `bytes` of the reply nothing more comes, for `ms` or until the client leaves
    Trickle,           // `bytes` of the reply at a time, every `ms`
    WrongLength,       // the reply announces `bytes` more than it has, or fewer if negative
    Garbage,           // not served; the reply is no JSON
    HttpStatus,        // not served; the reply is the HTTP status `status`
    Reply,             // not served; the reply is `status` with `content`
    CutUpload,         // the connection ends after `bytes` of the request's body
    ResetUpload,       // the same, with RST
    StallUpload,       // after `bytes` of the request's body nothing more is read, for `ms` or for good
    ShortSlice,        // of a slice the first `bytes` are kept; the rest is read and the slice fails
    LateJob,           // the job isn't registered yet: its progress is -1
};

struct Fault {
    int id = 0;
    FaultKind kind = FaultKind::CloseBeforeReply;
    std::string match;  // a func name, or with a leading slash a part of the path; empty matches all
    int64_t count = 1;  // requests to hit; negative is without end
    int64_t skip = 0;   // matching requests to let pass first
    int64_t bytes = 0;
    bool body = false;  // `bytes` of a reply count from its body, not from its status line
    int64_t ms = 0;
    int status = 500;
    std::string content;
    std::string contentType = "text/plain";
    std::string location;
    int64_t matched = 0;
    int64_t hits = 0;  // requests on which the fault took effect
};

const char* faultName(FaultKind kind);

// "name,key=value,..." as on the command line. Both throw std::invalid_argument.
Fault parseFaultRule(const std::string& rule);
Fault parseFault(const nlohmann::json& json);

// The armed faults. The relay asks at each request and tells when one takes effect. A few kinds are no matter
// of bytes: those are the service's.
class Faults {
public:
    int arm(Fault fault);
    std::optional<Fault> matchRelayed(const std::string& func, const std::string& path);
    std::optional<Fault> matchServed(FaultKind kind, const std::string& func, const std::string& path);
    void hit(int id);
    void clear();
    nlohmann::json toJson();

private:
    std::optional<Fault> match(const std::string& func, const std::string& path,
                               const std::function<bool(FaultKind)>& wanted);

    std::mutex mutex_;
    std::vector<Fault> faults_;
    int lastId_ = 0;
};

}  // namespace nas
