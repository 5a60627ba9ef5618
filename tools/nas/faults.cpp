#include "faults.h"

#include <algorithm>
#include <stdexcept>

namespace nas {

namespace {

const struct {
    FaultKind kind;
    const char* name;
} kNames[] = {
    {FaultKind::CloseBeforeReply, "close-before-reply"},
    {FaultKind::CloseInReply, "close-in-reply"},
    {FaultKind::Reset, "reset"},
    {FaultKind::Stall, "stall"},
    {FaultKind::Trickle, "trickle"},
    {FaultKind::WrongLength, "wrong-length"},
    {FaultKind::Garbage, "garbage"},
    {FaultKind::HttpStatus, "http-status"},
    {FaultKind::Reply, "reply"},
    {FaultKind::CutUpload, "cut-upload"},
    {FaultKind::ResetUpload, "reset-upload"},
    {FaultKind::StallUpload, "stall-upload"},
    {FaultKind::ShortSlice, "short-slice"},
    {FaultKind::LateJob, "late-job"},
};

bool isServed(FaultKind kind) {
    return kind == FaultKind::LateJob || kind == FaultKind::ShortSlice;
}

FaultKind kindOf(const std::string& name) {
    for (const auto& entry : kNames) {
        if (name == entry.name) {
            return entry.kind;
        }
    }
    throw std::invalid_argument("no fault is named \"" + name + "\"");
}

int64_t toNumber(const std::string& key, const nlohmann::json& value) {
    if (value.is_number_integer()) {
        return value.get<int64_t>();
    }
    size_t used = 0;
    std::string text = value.is_string() ? value.get<std::string>() : "";
    int64_t number = 0;
    try {
        number = std::stoll(text, &used);
    } catch (const std::exception&) {
        used = 0;
    }
    if (text.empty() || used != text.size()) {
        throw std::invalid_argument("fault key \"" + key + "\" wants a number");
    }
    return number;
}

std::string toText(const std::string& key, const nlohmann::json& value) {
    if (!value.is_string()) {
        throw std::invalid_argument("fault key \"" + key + "\" wants a text");
    }
    return value.get<std::string>();
}

}  // namespace

const char* faultName(FaultKind kind) {
    for (const auto& entry : kNames) {
        if (kind == entry.kind) {
            return entry.name;
        }
    }
    return "";
}

Fault parseFault(const nlohmann::json& json) {
    if (!json.is_object() || !json.contains("name")) {
        throw std::invalid_argument("a fault is an object with a \"name\"");
    }
    Fault fault;
    fault.kind = kindOf(toText("name", json.at("name")));
    if (fault.kind == FaultKind::Garbage || fault.kind == FaultKind::Reply) {
        fault.status = 200;
    }
    if (fault.kind == FaultKind::Garbage) {
        fault.content = "<html>\x01 this is no JSON {[";
    }
    if (fault.kind == FaultKind::Trickle) {
        fault.bytes = 1;
        fault.ms = 20;
    }
    for (const auto& [key, value] : json.items()) {
        if (key == "name") continue;
        if (key == "match")
            fault.match = toText(key, value);
        else if (key == "count")
            fault.count = toNumber(key, value);
        else if (key == "skip")
            fault.skip = toNumber(key, value);
        else if (key == "bytes")
            fault.bytes = toNumber(key, value);
        else if (key == "ms")
            fault.ms = toNumber(key, value);
        else if (key == "status")
            fault.status = static_cast<int>(toNumber(key, value));
        else if (key == "body")
            fault.body = value.is_boolean() ? value.get<bool>() : toNumber(key, value) != 0;
        else if (key == "content")
            fault.content = toText(key, value);
        else if (key == "content_type")
            fault.contentType = toText(key, value);
        else if (key == "location")
            fault.location = toText(key, value);
        else
            throw std::invalid_argument("a fault has no key \"" + key + "\"");
    }
    if (fault.bytes < 0 && fault.kind != FaultKind::WrongLength) {
        throw std::invalid_argument("\"bytes\" can't be negative here");
    }
    if (fault.kind == FaultKind::Trickle && (fault.bytes < 1 || fault.ms < 1)) {
        throw std::invalid_argument("trickle wants \"bytes\" and \"ms\" above 0");
    }
    if (fault.kind == FaultKind::WrongLength && fault.bytes == 0) {
        throw std::invalid_argument("wrong-length wants \"bytes\" other than 0");
    }
    if (fault.status < 100 || fault.status > 999) {
        throw std::invalid_argument("\"status\" is no HTTP status");
    }
    for (const std::string* text : {&fault.contentType, &fault.location}) {
        if (text->find_first_of("\r\n") != std::string::npos) {
            throw std::invalid_argument("a header value holds no line end");
        }
    }
    return fault;
}

Fault parseFaultRule(const std::string& rule) {
    nlohmann::json json = nlohmann::json::object();
    for (size_t from = 0; from <= rule.size();) {
        size_t to = std::min(rule.find(',', from), rule.size());
        std::string piece = rule.substr(from, to - from);
        size_t equals = piece.find('=');
        if (from == 0) {
            json["name"] = piece;
        } else if (equals == std::string::npos) {
            throw std::invalid_argument("--fail wants key=value, not \"" + piece + "\"");
        } else {
            json[piece.substr(0, equals)] = piece.substr(equals + 1);
        }
        from = to + 1;
    }
    return parseFault(json);
}

int Faults::arm(Fault fault) {
    std::lock_guard<std::mutex> lock(mutex_);
    fault.id = ++lastId_;
    faults_.push_back(std::move(fault));
    return lastId_;
}

std::optional<Fault> Faults::matchRelayed(const std::string& func, const std::string& path) {
    return match(func, path, [](FaultKind kind) { return !isServed(kind); });
}

std::optional<Fault> Faults::matchServed(FaultKind kind, const std::string& func, const std::string& path) {
    return match(func, path, [kind](FaultKind other) { return other == kind; });
}

std::optional<Fault> Faults::match(const std::string& func, const std::string& path,
                                   const std::function<bool(FaultKind)>& wanted) {
    std::lock_guard<std::mutex> lock(mutex_);
    for (Fault& fault : faults_) {
        if (!wanted(fault.kind)) {
            continue;
        }
        bool here = fault.match.empty() || fault.match == func ||
                    (fault.match[0] == '/' && path.find(fault.match) != std::string::npos);
        bool spent = fault.count >= 0 && fault.matched >= fault.count + fault.skip;
        if (!here || spent) {
            continue;
        }
        if (++fault.matched > fault.skip) {
            return fault;
        }
    }
    return std::nullopt;
}

void Faults::hit(int id) {
    std::lock_guard<std::mutex> lock(mutex_);
    for (Fault& fault : faults_) {
        fault.hits += fault.id == id;
    }
}

void Faults::clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    faults_.clear();
}

nlohmann::json Faults::toJson() {
    std::lock_guard<std::mutex> lock(mutex_);
    nlohmann::json list = nlohmann::json::array();
    for (const Fault& fault : faults_) {
        int64_t left = fault.count < 0 ? -1 : std::max<int64_t>(0, fault.count + fault.skip - fault.matched);
        list.push_back({{"id", fault.id},
                        {"name", faultName(fault.kind)},
                        {"match", fault.match},
                        {"count", fault.count},
                        {"skip", fault.skip},
                        {"bytes", fault.bytes},
                        {"body", fault.body},
                        {"ms", fault.ms},
                        {"status", fault.status},
                        {"left", left},
                        {"hits", fault.hits}});
    }
    return list;
}

}  // namespace nas
