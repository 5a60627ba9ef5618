#include <set>

#include "sharing.h"

namespace nas {

namespace {

// What is answered without a "status" is well; only failures have one.

const std::string& deviceUid(const Fields& query) {
    const std::string& uid = field(query, "device_uid");
    if (uid.empty()) {
        throw Refusal("query key \"device_uid\" is empty");
    }
    return uid;
}

// Whose devices a request is about. Only administrators act for others.
const std::string& ownerIn(Service& service, const User& user, const Fields& query) {
    const std::string& name = field(query, "user");
    if (name.empty()) {
        throw Refusal("query key \"user\" is empty");
    }
    if (name != user.name && !user.admin) {
        throw StatusError(Status::Denied, "the devices of " + name + " are not those of " + user.name);
    }
    if (!service.options().users.find(name)) {
        throw StatusError(Status::Missing, "no user " + name);
    }
    return name;
}

std::string passwordIn(const Fields& fields, const std::string& what) {
    const std::string password = decodeBase64(field(fields, "password"), what);
    if (password.empty() || !validUtf8(password)) {
        throw Refusal(what + " is no text");
    }
    return password;
}

bool isPassword(const DeviceBook& book, const std::string& password) {
    return !book.password.empty() && sameSecret(book.password, password);
}

// Users change what the rules leave to them, administrators anything.
void requireFree(const DeviceBook& book, const User& user, const ConfigItems& items, bool opened) {
    if (user.admin || !isManaged(book.acl) || (opened && passwordOpens(book.acl))) {
        return;
    }
    for (const ConfigItem& item : items) {
        if (!isFree(book.acl, item)) {
            throw StatusError(Status::Denied, item.name() + " is not left to users");
        }
    }
}

// Which items a query asks for: the template's or the device's own, or both as far as they are in effect.
enum class Wanted { Template, Own, InEffect };

Wanted wantedIn(const Fields& query) {
    const int64_t all = numberField(query, "get_all");
    const bool ofTemplate = hasField(query, "get_template");
    if (all != 1 && (all != 2 || ofTemplate)) {
        throw Refusal("query key \"get_all\" is neither 1 nor, for a device alone, 2");
    }
    return ofTemplate ? Wanted::Template : all == 2 ? Wanted::Own : Wanted::InEffect;
}

ConfigItems wantedItems(const DeviceBook& book, const std::string& user, const std::string& uid,
                        Wanted wanted, bool mustExist) {
    const bool ofTemplate = wanted == Wanted::Template;
    const Device* device = book.find(user, uid);
    const ConfigItems own = ofTemplate ? book.templateOf(user) : device ? device->items : ConfigItems();
    if (mustExist && own.empty()) {
        throw StatusError(Status::NotConfigured, ofTemplate ? "no template" : "nothing saved for " + uid);
    }
    return wanted == Wanted::InEffect ? book.inEffect(user, uid) : own;
}

Answer getConfig(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const std::string& uid = deviceUid(request.query);
    const Wanted wanted = wantedIn(request.query);
    const auto book = service.devices().read();
    // That there is nothing is an answer as well. What is saved meanwhile isn't in it.
    if (wanted != Wanted::Template && book->waiting(user.name, uid)) {
        service.devices().change([&](DeviceBook& later) { later.fetched(user.name, uid, book->lastNotice); });
    }
    const ConfigItems items =
        wantedItems(*book, user.name, uid, wanted, hasField(request.query, "check_exist"));
    const Device* device = book->find(user.name, uid);
    return {
        {{"device", device ? device->name : ""}, {"duid", uid}, {"total", items.size()}, {"config", items}},
        false,
        std::to_string(items.size()) + " items"};
}

// The form's fields in their order, which its own numbers tell.
Shape saveForm(const Fields& form, int64_t count) {
    Shape shape;
    if (hasField(form, "template")) {
        shape.emplace_back("template=1");
    }
    for (int64_t i = 0; i < count; ++i) {
        const std::string index = std::to_string(i);
        for (const char* key : {"section", "key", "value"}) {
            shape.push_back(key + index);
        }
        if (hasField(form, "action" + index)) {
            shape.push_back("action" + index + "=1");
        }
    }
    shape.emplace_back("config_number");
    if (hasField(form, "password")) {
        shape.emplace_back("password");
    }
    return shape;
}

ConfigSave saveIn(const Fields& form) {
    const int64_t count = numberField(form, "config_number");
    if (count < 1 || count > static_cast<int64_t>(form.size())) {
        throw Refusal("form key \"config_number\" is out of its range");
    }
    requireShape(form, {saveForm(form, count)}, "form");
    ConfigSave save;
    save.asTemplate = hasField(form, "template");
    for (int64_t i = 0; i < count; ++i) {
        const std::string index = std::to_string(i);
        const ConfigItem item = {field(form, "section" + index), field(form, "key" + index),
                                 field(form, "value" + index)};
        requireDeviceItem(item, "form key \"value" + index + "\"");
        save.items.push_back(item);
        save.atOnce = save.atOnce || hasField(form, "action" + index);
    }
    return save;
}

void requireOnce(const ConfigItems& items) {
    std::set<std::string> names;
    for (const ConfigItem& item : items) {
        if (!names.insert(item.name()).second) {
            throw StatusError(Status::Denied, item.name() + " twice");
        }
    }
}

Answer saveConfig(Service& service, Request& request, httplib::Response&) {
    const Fields form = readForm(request);
    const ConfigSave save = saveIn(form);
    const bool opening = hasField(form, "password");
    const std::string password = opening ? passwordIn(form, "form key \"password\"") : "";
    const User& user = userHere(service, request);
    const std::string& uid = deviceUid(request.query);
    const std::string& owner = ownerIn(service, user, request.query);
    requireOnce(save.items);
    service.devices().change([&](DeviceBook& book) {
        if (opening && !isPassword(book, password)) {
            throw StatusError(Status::Denied, "wrong configuration password");
        }
        requireFree(book, user, save.items, opening);
        book.save(owner, uid, save, user.name);
    });
    return doneWithZero(std::to_string(save.items.size()) + " items for " + owner);
}

Answer resetConfig(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const std::string& uid = deviceUid(request.query);
    const std::string& owner = ownerIn(service, user, request.query);
    service.devices().change([&](DeviceBook& book) {
        const Device* device = book.find(owner, uid);
        if (!device) {
            throw StatusError(Status::Missing, owner + " has no device " + uid);
        }
        requireFree(book, user, device->items, false);
        book.reset(owner, uid, user.name);
    });
    return doneWithZero("device of " + owner);
}

nlohmann::json noticeJson(const ConfigNotice& notice) {
    const auto text = [](int64_t value) { return std::to_string(value); };
    return {{"event_id", text(notice.id)},
            {"event_user", notice.user},
            {"event_duid", notice.device},
            {"event_action", text(notice.atOnce ? 1 : 0)},
            {"event_type", text(static_cast<int>(notice.event))},
            {"event_status", text(notice.fetched ? 2 : 1)},
            {"event_time", text(notice.time)},
            {"event_modifier", notice.modifier},
            {"event_value", notice.value}};
}

Answer notices(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const Fields& query = request.query;
    const int64_t upper = numberField(query, "upper");
    if (upper != -1 && numberField(query, "lower") > upper) {
        throw Refusal("lower is above upper");
    }
    // Without a name administrators ask for everybody's.
    const bool named = hasField(query, "user");
    const std::string owner = named ? ownerIn(service, user, query) : user.admin ? "" : user.name;
    const std::string uid = hasField(query, "device_uid") ? deviceUid(query) : "";
    std::vector<nlohmann::json> events;
    for (const ConfigNotice& notice : service.devices().read()->notices) {
        if ((owner.empty() || notice.user == owner) && (uid.empty() || notice.device == uid)) {
            events.push_back(noticeJson(notice));
        }
    }
    return {{{"count", events.size()}, {"event", page(events, query)}},
            false,
            std::to_string(events.size()) + " events"};
}

Answer configAcl(Service& service, Request& request, httplib::Response&) {
    userHere(service, request);
    const auto book = service.devices().read();
    return {{{"total", book->acl.size()}, {"config", book->acl}}};
}

Answer authConfigPassword(Service& service, Request& request, httplib::Response&) {
    const std::string password = passwordIn(request.query, "query key \"password\"");
    userHere(service, request);
    const bool right = isPassword(*service.devices().read(), password);
    return {{{"auth_result", right ? 1 : 0}}, false, right ? "right password" : "wrong password"};
}

Answer deviceList(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const std::string& owner = ownerIn(service, user, request.query);
    std::vector<nlohmann::json> devices;
    const auto book = service.devices().read();
    const auto known = book->users.find(owner);
    if (known != book->users.end()) {
        for (const auto& [uid, device] : known->second.devices) {
            devices.push_back({{"device_name", device.name},
                               {"device_uid", uid},
                               {"ip", device.ip},
                               {"modify_time", std::to_string(device.changed)}});
        }
    }
    return {{{"total", devices.size()}, {"device", page(devices, request.query)}},
            false,
            std::to_string(devices.size()) + " devices"};
}

// The shape, and with each of what may come behind it.
std::vector<Shape> withTails(const Shape& shape, const std::vector<Shape>& tails) {
    std::vector<Shape> shapes = {shape};
    for (const Shape& tail : tails) {
        shapes.push_back(shape);
        shapes.back().insert(shapes.back().end(), tail.begin(), tail.end());
    }
    return shapes;
}

}  // namespace

void addConfigCalls(std::vector<Call>& calls) {
    const Shape device = {"device_uid"};
    const Shape deviceOfUser = {"device_uid", "user"};
    addGet(calls, kBothCgis,
           withTails({"func=nubo_get_device_config", "sid", "device_uid", "get_all"},
                     {{"get_template=1"}, {"check_exist=1"}, {"get_template=1", "check_exist=1"}}),
           getConfig);
    calls.back().typed = device;
    addForm(calls, kBothCgis, {"func=nubo_save_device_config", "sid", "device_uid", "user", "apply=1"},
            saveConfig, notDone);
    calls.back().typed = deviceOfUser;
    addGet(calls, kBothCgis,
           withTails({"func=nubo_query_notify", "sid", "lower", "upper"},
                     {{"user"}, {"device_uid"}, {"user", "device_uid"}}),
           notices);
    calls.back().typed = deviceOfUser;
    addGet(calls, kBothCgis, {{"func=nubo_get_config_acl", "sid"}}, configAcl);
    addGet(calls, kBothCgis, {{"func=nubo_auth_config_password", "sid", "password"}}, authConfigPassword);
    calls.back().typed = {"password"};
    addGet(calls, kBothCgis, {{"func=nubo_get_device_config_list", "sid", "user", "lower", "upper"}},
           deviceList);
    addGet(calls, kBothCgis, {{"func=nubo_reset_device_config", "sid", "user", "device_uid", "mode=1"}},
           resetConfig, notDone);
    calls.back().typed = device;
}

}  // namespace nas
