#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <sstream>
#include <thread>

#include "nasnodes.h"
#include "nastest.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using FormFields = std::vector<std::pair<std::string, std::string>>;

/// What a save says of one setting.
struct Item {
    std::string section, key, value;
    bool atOnce = false;
};

FormFields saveForm(const std::vector<Item>& items) {
    FormFields form;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string index = std::to_string(i);
        form.emplace_back("section" + index, items[i].section);
        form.emplace_back("key" + index, items[i].key);
        form.emplace_back("value" + index, items[i].value);
        if (items[i].atOnce) form.emplace_back("action" + index, "1");
    }
    form.emplace_back("config_number", std::to_string(items.size()));
    return form;
}

FormFields withPassword(FormFields form, const std::string& password) {
    form.emplace_back("password", base64(password));
    return form;
}

FormFields asTemplate(FormFields form) {
    form.insert(form.begin(), {"template", "1"});
    return form;
}

FormFields replaced(FormFields form, const std::string& key, const std::string& value) {
    const auto at =
        std::find_if(form.begin(), form.end(), [&](const auto& pair) { return pair.first == key; });
    if (at == form.end()) throw std::logic_error("no " + key);
    at->second = value;
    return form;
}

const Item kConflict = {"Policy", "conflict Policy", "2"};
const Item kFilter = {"Policy", "black file filter", "*.tmp\\t~*"};
const Item kSender = {"Mails", "sender password", base64("Gr\xc3\xbc\xc3\x9f")};
const Item kVersion = {"Config", "official version", "4.2.0"};

std::vector<std::string> itemsOf(const Json::Value& reply) {
    std::vector<std::string> items;
    for (const Json::Value& item : reply["config"]) {
        items.push_back(item["section"].asString() + "/" + item["key"].asString() + "=" +
                        item["value"].asString());
    }
    return items;
}

std::vector<std::string> each(const Json::Value& list, const std::string& key) {
    std::vector<std::string> values;
    for (const Json::Value& entry : list) values.push_back(entry[key].asString());
    return values;
}

}  // namespace

class NasConfig : public NasTest {
protected:
    explicit NasConfig(std::vector<std::string> more = {}) : NasTest(std::move(more)) {}

    static std::string saveQuery(const std::string& session, const std::string& user,
                                 const std::string& uid) {
        return "func=nubo_save_device_config&sid=" + session + "&device_uid=" + uid + "&user=" + user +
               "&apply=1";
    }
    static std::string getQuery(const std::string& session, const std::string& uid,
                                const std::string& more = "&get_all=1") {
        return "func=nubo_get_device_config&sid=" + session + "&device_uid=" + uid + more;
    }
    static std::string resetQuery(const std::string& session, const std::string& user,
                                  const std::string& uid) {
        return "func=nubo_reset_device_config&sid=" + session + "&user=" + encoded(user) +
               "&device_uid=" + uid + "&mode=1";
    }
    static std::string listQuery(const std::string& session, const std::string& user,
                                 const std::string& window = "&lower=0&upper=100") {
        return "func=nubo_get_device_config_list&sid=" + session + "&user=" + encoded(user) + window;
    }
    static std::string notifyQuery(const std::string& session, const std::string& more = "",
                                   const std::string& window = "&lower=0&upper=-1") {
        return "func=nubo_query_notify&sid=" + session + window + more;
    }
    static std::string aclQuery(const std::string& session) {
        return "func=nubo_get_config_acl&sid=" + session;
    }
    static std::string passwordQuery(const std::string& session, const std::string& password) {
        return "func=nubo_auth_config_password&sid=" + session + "&password=" + base64(password);
    }

    NasReply save(const std::string& session, const std::string& user, const std::string& uid,
                  const FormFields& form) {
        return post(cgi(saveQuery(session, user, uid)), form);
    }
    /// Ben's own device, by ben.
    int change(const FormFields& form) { return save(benSid, "ben", "u-1", form).status(); }
    Json::Value ask(const std::string& query) { return get(cgi(query)).json(); }
    std::vector<std::string> items(const std::string& session, const std::string& uid,
                                   const std::string& more = "&get_all=1") {
        const Json::Value reply = ask(getQuery(session, uid, more));
        EXPECT_FALSE(reply.isMember("status")) << reply.toStyledString();
        EXPECT_EQ(reply["config"].size(), reply["total"].asUInt());
        return itemsOf(reply);
    }
    Json::Value events(const std::string& session, const std::string& more = "",
                       const std::string& window = "&lower=0&upper=-1") {
        const Json::Value reply = ask(notifyQuery(session, more, window));
        EXPECT_FALSE(reply.isMember("status")) << reply.toStyledString();
        return reply["event"];
    }
    int authResult(const std::string& password) {
        const Json::Value reply = ask(passwordQuery(benSid, password));
        EXPECT_FALSE(reply.isMember("status")) << reply.toStyledString();
        return reply.get("auth_result", -1000).asInt();
    }
    /// Sets a rule while the server runs.
    void rule(const std::string& section, const std::string& key, const std::string& value) {
        EXPECT_EQ("{}", nas.control("POST", "config/acl",
                                    R"({"section":")" + section + R"(","key":")" + key + R"(","value":")" +
                                        value + "\"}"));
    }
    std::string restarted(const std::string& user, const std::string& password) {
        nas.kill();
        nas.startAgain();
        return loginSid(nas.port(), user, password);
    }
    /// Changes what the server keeps while it is down.
    void editKept(const std::function<void(Json::Value&)>& edit) {
        nas.kill();
        Json::Value book;
        std::istringstream(nas.folder().read(".torvi-nas.devices")) >> book;
        edit(book);
        nas.folder().write(".torvi-nas.devices", book.toStyledString());
        nas.startAgain();
        sid = loginSid(nas.port(), "anna", "secret");
        benSid = loginSid(nas.port(), "ben", "hidden");
    }
};

TEST_F(NasConfig, WhatIsSavedComesBackAtBothServices) {
    const NasReply reply = save(benSid, "ben", "u-1", saveForm({kConflict, kFilter, kSender, kVersion}));
    EXPECT_EQ(0, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    const auto all = ElementsAre("Policy/conflict Policy=2", "Policy/black file filter=*.tmp\\t~*",
                                 "Mails/sender password=" + kSender.value, "Config/official version=4.2.0");
    EXPECT_THAT(items(benSid, "u-1"), all);
    const Json::Value other = get(manager(getQuery(benSid, "u-1"))).json();
    EXPECT_FALSE(other.isMember("status"));
    EXPECT_THAT(itemsOf(other), all);
    EXPECT_EQ("desk", other["device"].asString());
    EXPECT_EQ("u-1", other["duid"].asString());
    ASSERT_EQ(0, post(manager(saveQuery(benSid, "ben", "u-1")), saveForm({{"Policy", "conflict Policy", ""}}))
                     .status());
    EXPECT_THAT(items(benSid, "u-1"), testing::Contains("Policy/conflict Policy="));
    EXPECT_EQ(4u, items(benSid, "u-1").size());
}

TEST_F(NasConfig, ADeviceBelongsToItsUser) {
    ASSERT_EQ(0, change(saveForm({kConflict})));
    EXPECT_THAT(items(sid, "u-1"), IsEmpty());
    EXPECT_THAT(items(benSid, "u-2"), IsEmpty());
    EXPECT_EQ(4, save(benSid, "anna", "u-1", saveForm({kConflict})).status());
    EXPECT_EQ("false", save(benSid, "anna", "u-1", saveForm({kConflict})).json()["success"].asString());
    EXPECT_EQ(4, get(cgi(resetQuery(benSid, "anna", "u-1"))).status());
    EXPECT_EQ(4, get(cgi(listQuery(benSid, "anna"))).status());
    EXPECT_EQ(4, get(cgi(notifyQuery(benSid, "&user=anna"))).status());
    EXPECT_THAT(items(sid, "u-1"), IsEmpty());
    ASSERT_EQ(0, save(sid, "ben", "u-1", saveForm({{"Policy", "conflict Policy", "5"}})).status());
    EXPECT_THAT(items(benSid, "u-1"), ElementsAre("Policy/conflict Policy=5"));
    for (const std::string& query :
         {listQuery(sid, "nobody"), resetQuery(sid, "nobody", "u-1"), notifyQuery(sid, "&user=nobody")}) {
        EXPECT_EQ(5, get(cgi(query)).status()) << query;
    }
    EXPECT_EQ(5, save(sid, "nobody", "u-1", saveForm({kConflict})).status());
    EXPECT_EQ(4, get(cgi(listQuery(benSid, "nobody"))).status());
}

TEST_F(NasConfig, AnUnknownConfigurationIsToldOnlyWhenAsked) {
    EXPECT_THAT(items(benSid, "u-1"), IsEmpty());
    const NasReply reply = get(cgi(getQuery(benSid, "u-1", "&get_all=1&check_exist=1")));
    EXPECT_EQ(-3, reply.status());
    EXPECT_FALSE(reply.json().isMember("config"));
    EXPECT_EQ(-3, get(cgi(getQuery(benSid, "new", "&get_all=2&check_exist=1"))).status());
    ASSERT_EQ(0, change(saveForm({kConflict})));
    EXPECT_THAT(items(benSid, "u-1", "&get_all=1&check_exist=1"), ElementsAre("Policy/conflict Policy=2"));
    const std::string ofTemplate = "&get_all=1&get_template=1&check_exist=1";
    EXPECT_EQ(-3, get(cgi(getQuery(benSid, "u-1", ofTemplate))).status());
    ASSERT_EQ(0, change(asTemplate(saveForm({kFilter}))));
    EXPECT_THAT(items(benSid, "u-1", ofTemplate), ElementsAre("Policy/black file filter=*.tmp\\t~*"));
}

TEST_F(NasConfig, TheTemplateFillsWhatADeviceDoesNotHave) {
    ASSERT_EQ(0, change(asTemplate(saveForm({kConflict, kFilter}))));
    ASSERT_EQ(0,
              save(benSid, "ben", "u-2", saveForm({{"Policy", "conflict Policy", "9"}, kVersion})).status());
    EXPECT_THAT(items(benSid, "u-1", "&get_all=2"),
                ElementsAre("Policy/conflict Policy=2", "Policy/black file filter=*.tmp\\t~*"));
    EXPECT_THAT(items(benSid, "u-2", "&get_all=2"),
                ElementsAre("Policy/conflict Policy=9", "Config/official version=4.2.0"));
    EXPECT_THAT(items(benSid, "u-2"),
                ElementsAre("Policy/conflict Policy=9", "Policy/black file filter=*.tmp\\t~*",
                            "Config/official version=4.2.0"));
    EXPECT_THAT(items(benSid, "u-2", "&get_all=1&get_template=1"),
                ElementsAre("Policy/conflict Policy=2", "Policy/black file filter=*.tmp\\t~*"));
    EXPECT_THAT(items(benSid, "u-3"), testing::SizeIs(2));
    EXPECT_THAT(items(sid, "u-3"), IsEmpty());
}

TEST_F(NasConfig, AResetTakesTheDevicesOwnAway) {
    ASSERT_EQ(0, change(asTemplate(saveForm({kConflict}))));
    ASSERT_EQ(0, change(saveForm({{"Policy", "conflict Policy", "7"}, kFilter})));
    const NasReply reply = get(manager(resetQuery(benSid, "ben", "u-1")));
    EXPECT_EQ(0, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_THAT(items(benSid, "u-1", "&get_all=2"), IsEmpty());
    EXPECT_THAT(items(benSid, "u-1"), ElementsAre("Policy/conflict Policy=2"));
    EXPECT_EQ(-3, get(cgi(getQuery(benSid, "u-1", "&get_all=1&check_exist=1"))).status());
    const NasReply unknown = get(cgi(resetQuery(benSid, "ben", "new")));
    EXPECT_EQ(5, unknown.status());
    EXPECT_EQ("false", unknown.json()["success"].asString());
}

TEST_F(NasConfig, DevicesAreListedInPages) {
    for (const char* uid : {"u-4", "u-3", "u-2"}) {
        ASSERT_EQ(0, save(sid, "ben", uid, saveForm({kConflict})).status());
    }
    const Json::Value all = ask(listQuery(benSid, "ben"));
    EXPECT_FALSE(all.isMember("status"));
    EXPECT_EQ(4, all["total"].asInt());
    EXPECT_THAT(each(all["device"], "device_uid"), ElementsAre("u-1", "u-2", "u-3", "u-4"));
    EXPECT_THAT(each(all["device"], "device_name"), ElementsAre("desk", "", "", ""));
    EXPECT_THAT(each(all["device"], "ip"), ElementsAre("127.0.0.1", "", "", ""));
    EXPECT_EQ("0", all["device"][0]["modify_time"].asString());
    EXPECT_GT(std::stoll(all["device"][1]["modify_time"].asString()), 1700000000);
    EXPECT_EQ(all, get(manager(listQuery(sid, "ben"))).json());
    const Json::Value page = ask(listQuery(sid, "ben", "&lower=1&upper=3"));
    EXPECT_EQ(4, page["total"].asInt());
    EXPECT_THAT(each(page["device"], "device_uid"), ElementsAre("u-2", "u-3"));
    EXPECT_THAT(each(ask(listQuery(sid, "ben", "&lower=3&upper=-1"))["device"], "device_uid"),
                ElementsAre("u-4"));
    EXPECT_THAT(each(ask(listQuery(sid, "ben", "&lower=4&upper=9"))["device"], "device_uid"), IsEmpty());
    EXPECT_THAT(each(ask(listQuery(sid, "anna"))["device"], "device_uid"), ElementsAre("u-1"));
}

TEST_F(NasConfig, ALoginNamesItsDevice) {
    NasRequest login = loginRequest("ben", "hidden", "/cgi-bin/filemanager/wfm2Login.cgi");
    const auto at = login.body.find("desk");
    login.body.replace(at, 4, "lap1");
    login.headers.emplace_back("X-Forwarded-For", "192.0.2.7");
    ASSERT_NE("", run(login).json()["sid"].asString());
    const Json::Value device = ask(listQuery(benSid, "ben"))["device"][0];
    EXPECT_EQ("lap1", device["device_name"].asString());
    EXPECT_EQ("192.0.2.7", device["ip"].asString());
    login.body.replace(at, 4, "lap2");
    login.body.replace(login.body.find("pwd="), 5, "pwd=A");
    ASSERT_EQ(3, run(login).status());
    EXPECT_EQ("lap1", ask(listQuery(benSid, "ben"))["device"][0]["device_name"].asString());
}

/// Ben has a thousand devices, as many as the server knows of one user: u-1 with something of its own, d-2 to
/// d-1000 without. The higher the number, the older the device.
class NasConfigManyDevices : public NasConfig {
protected:
    NasConfigManyDevices() {
        EXPECT_EQ(0, change(saveForm({kConflict})));
        editDevices([](Json::Value& devices) {
            Json::Value device = devices["u-1"];
            device["items"] = Json::Value(Json::arrayValue);
            for (int i = 2; i <= 1000; ++i) {
                device["order"] = 2000 - i;
                devices["d-" + std::to_string(i)] = device;
            }
            devices["u-1"]["order"] = 1;
        });
    }

    void editDevices(const std::function<void(Json::Value&)>& edit) {
        editKept([&](Json::Value& book) {
            edit(book["users"]["ben"]["devices"]);
            book["last_device"] = 2000;
        });
    }
    std::vector<std::string> uids() {
        return each(ask(listQuery(benSid, "ben", "&lower=0&upper=-1"))["device"], "device_uid");
    }
    /// Logs ben in from another device.
    std::string loginFrom(const std::string& uid) {
        NasRequest login = loginRequest("ben", "hidden");
        login.body.replace(login.body.find("uid=u-1"), 7, "uid=" + uid);
        login.set("Content-Length", std::to_string(login.body.size()));
        return run(login).json()["sid"].asString();
    }
};

TEST_F(NasConfigManyDevices, ANewOneTakesTheRoomOfTheOldestThatHasNothing) {
    ASSERT_THAT(uids(), testing::SizeIs(1000));
    ASSERT_EQ(0, save(sid, "ben", "new", saveForm({kVersion})).status());
    EXPECT_NE("", loginFrom("lap"));
    const std::vector<std::string> now = uids();
    EXPECT_EQ(1000u, now.size());
    EXPECT_THAT(now, testing::IsSupersetOf({"new", "lap", "u-1", "d-998", "d-2"}));
    EXPECT_THAT(now, testing::Not(testing::Contains("d-1000")));
    EXPECT_THAT(now, testing::Not(testing::Contains("d-999")));
    EXPECT_NE("", loginFrom("d-500"));
    EXPECT_EQ(now, uids());
}

TEST_F(NasConfigManyDevices, AConfigurationMakesNoRoom) {
    editDevices([](Json::Value& devices) {
        const Json::Value items = devices["u-1"]["items"];
        for (Json::Value& device : devices) device["items"] = items;
    });
    const std::vector<std::string> before = uids();
    EXPECT_EQ(4, save(sid, "ben", "new", saveForm({kVersion})).status());
    EXPECT_NE("", loginFrom("lap"));
    EXPECT_EQ(before, uids());
    EXPECT_EQ(0, save(sid, "ben", "d-500", saveForm({kVersion})).status());
    EXPECT_EQ(0, get(cgi(resetQuery(sid, "ben", "d-7"))).status());
    EXPECT_EQ(0, save(sid, "ben", "new", saveForm({kVersion})).status());
    EXPECT_THAT(uids(), testing::Not(testing::Contains("d-7")));
}

class NasConfigNotices : public NasConfig {
protected:
    NasConfigNotices() : NasConfig({"--user", "carl:third"}) {
        EXPECT_EQ(0, save(sid, "ben", "u-1", saveForm({kConflict, {"Mails", "server port", "25"}})).status());
        EXPECT_EQ(0,
                  save(sid, "carl", "u-1", asTemplate(saveForm({{"Synchronize", "smart sync", "1", true}})))
                      .status());
        EXPECT_EQ(0, get(cgi(resetQuery(sid, "ben", "u-1"))).status());
        EXPECT_EQ(0, save(sid, "ben", "u-2", saveForm({kVersion})).status());
        // No news: each does it to a device of their own.
        EXPECT_EQ(0, save(sid, "anna", "u-1", saveForm({kVersion})).status());
        EXPECT_EQ(0, change(saveForm({kVersion})));
    }
};

TEST_F(NasConfigNotices, TellWhatAdministratorsDid) {
    const Json::Value all = events(sid);
    EXPECT_THAT(each(all, "event_id"), ElementsAre("1", "2", "3", "4"));
    EXPECT_THAT(each(all, "event_user"), ElementsAre("ben", "carl", "ben", "ben"));
    EXPECT_THAT(each(all, "event_duid"), ElementsAre("u-1", "u-1", "u-1", "u-2"));
    EXPECT_THAT(each(all, "event_action"), ElementsAre("0", "1", "1", "0"));
    EXPECT_THAT(each(all, "event_type"), ElementsAre("1", "2", "3", "1"));
    EXPECT_THAT(each(all, "event_modifier"), ElementsAre("anna", "anna", "anna", "anna"));
    EXPECT_THAT(each(all, "event_value"),
                ElementsAre("Policy/conflict Policy;Mails/server port", "Synchronize/smart sync", "",
                            "Config/official version"));
    EXPECT_GT(std::stoll(all[0]["event_time"].asString()), 1700000000);
    EXPECT_EQ(all, get(manager(notifyQuery(sid))).json()["event"]);
}

TEST_F(NasConfigNotices, AreFilteredByUserAndDevice) {
    EXPECT_THAT(each(events(benSid), "event_id"), ElementsAre("1", "3", "4"));
    EXPECT_THAT(each(events(benSid, "&user=ben"), "event_id"), ElementsAre("1", "3", "4"));
    EXPECT_THAT(each(events(sid, "&user=ben"), "event_id"), ElementsAre("1", "3", "4"));
    EXPECT_THAT(each(events(sid, "&device_uid=u-1"), "event_id"), ElementsAre("1", "2", "3"));
    EXPECT_THAT(each(events(benSid, "&device_uid=u-1"), "event_id"), ElementsAre("1", "3"));
    EXPECT_THAT(each(events(sid, "&user=carl&device_uid=u-1"), "event_id"), ElementsAre("2"));
    EXPECT_THAT(each(events(sid, "&user=anna"), "event_id"), IsEmpty());
}

TEST_F(NasConfigNotices, ComeInPages) {
    const Json::Value reply = ask(notifyQuery(sid, "&user=ben", "&lower=1&upper=2"));
    EXPECT_EQ(3, reply["count"].asInt());
    EXPECT_THAT(each(reply["event"], "event_id"), ElementsAre("3"));
    EXPECT_THAT(each(events(sid, "", "&lower=2&upper=-1"), "event_id"), ElementsAre("3", "4"));
    EXPECT_THAT(each(events(sid, "", "&lower=2&upper=2"), "event_id"), IsEmpty());
    EXPECT_EQ(400, get(cgi(notifyQuery(sid, "", "&lower=3&upper=2"))).http);
    EXPECT_EQ(400, get(cgi(notifyQuery(sid, "", "&lower=-1&upper=2"))).http);
}

TEST_F(NasConfigNotices, WaitUntilTheDeviceAsks) {
    EXPECT_THAT(each(events(benSid), "event_status"), ElementsAre("1", "1", "1"));
    items(benSid, "u-1", "&get_all=1&get_template=1");
    EXPECT_EQ(-3, get(cgi(getQuery(benSid, "new", "&get_all=1&check_exist=1"))).status());
    EXPECT_THAT(each(events(benSid), "event_status"), ElementsAre("1", "1", "1"));
    items(benSid, "u-1");
    EXPECT_THAT(each(events(benSid), "event_status"), ElementsAre("2", "2", "1"));
    EXPECT_THAT(each(events(sid, "&user=carl"), "event_status"), ElementsAre("1"));
}

TEST_F(NasConfigNotices, ThatThereIsNothingIsAnAnswer) {
    ASSERT_EQ(0, get(cgi(resetQuery(sid, "ben", "u-1"))).status());
    EXPECT_THAT(each(events(benSid, "&device_uid=u-1"), "event_status"), ElementsAre("1", "1", "1"));
    EXPECT_EQ(-3, get(cgi(getQuery(benSid, "u-1", "&get_all=1&get_template=1&check_exist=1"))).status());
    EXPECT_EQ(400, get(cgi(getQuery(benSid, "u-1", "&get_all=3"))).http);
    EXPECT_THAT(each(events(benSid, "&device_uid=u-1"), "event_status"), ElementsAre("1", "1", "1"));
    EXPECT_EQ(-3, get(cgi(getQuery(benSid, "u-1", "&get_all=1&check_exist=1"))).status());
    EXPECT_THAT(each(events(benSid, "&device_uid=u-1"), "event_status"), ElementsAre("2", "2", "2"));
}

TEST_F(NasConfigNotices, AreForgottenBeyondAThousand) {
    editKept([](Json::Value& book) {
        Json::Value& notices = book["notices"];
        while (notices.size() < 1000) {
            Json::Value more = notices[0];
            more["id"] = notices.size() + 1;
            notices.append(more);
        }
        book["last_notice"] = 1000;
    });
    EXPECT_EQ("1", events(sid)[0]["event_id"].asString());
    ASSERT_EQ(0, save(sid, "ben", "u-2", saveForm({kVersion})).status());
    const Json::Value reply = ask(notifyQuery(sid));
    EXPECT_EQ(1000, reply["count"].asInt());
    ASSERT_EQ(1000u, reply["event"].size());
    EXPECT_EQ("2", reply["event"][0]["event_id"].asString());
    EXPECT_EQ("1001", reply["event"][999]["event_id"].asString());
}

TEST_F(NasConfigNotices, AndAllTheRestSurviveARestart) {
    ASSERT_EQ(0, change(asTemplate(saveForm({kConflict}))));
    rule("Policy", "conflict Policy", "0");
    rule("Admin", "use manager password", "1");
    EXPECT_EQ("{}", nas.control("POST", "config/password", R"({"password":"key"})"));
    const Json::Value config = ask(getQuery(benSid, "u-2"));
    const Json::Value before = ask(notifyQuery(sid));
    const Json::Value acl = ask(aclQuery(sid));
    const Json::Value list = ask(listQuery(sid, "ben"));
    sid = restarted("anna", "secret");
    benSid = loginSid(nas.port(), "ben", "hidden");
    EXPECT_EQ(before, ask(notifyQuery(sid)));
    EXPECT_EQ(acl, ask(aclQuery(sid)));
    EXPECT_EQ(list, ask(listQuery(sid, "ben")));
    EXPECT_EQ(config["config"], ask(getQuery(benSid, "u-2"))["config"]);
    EXPECT_THAT(items(benSid, "u-2", "&get_all=1&get_template=1"), ElementsAre("Policy/conflict Policy=2"));
    EXPECT_EQ(1, authResult("key"));
    EXPECT_EQ(4, change(saveForm({kConflict})));
    ASSERT_EQ(0, save(sid, "ben", "u-1", saveForm({kConflict})).status());
    EXPECT_EQ("5", events(sid)[4]["event_id"].asString());
}

class NasConfigRules : public NasConfig {
protected:
    NasConfigRules()
        : NasConfig({"--config-acl", "Policy:black file filter:0", "--config-acl", "Mails:all:0",
                     "--config-password", "Schl\xc3\xbcssel"}) {}
};

TEST_F(NasConfigRules, AreToldAsTheyAre) {
    const Json::Value reply = ask(aclQuery(benSid));
    EXPECT_FALSE(reply.isMember("status"));
    EXPECT_EQ(7, reply["total"].asInt());
    EXPECT_THAT(itemsOf(reply),
                ElementsAre("Admin/manager mode=1", "Admin/use manager password=0",
                            "Admin/client set config=1", "Synchronize/smart sync=1",
                            "Policy/conflict Policy=1", "Policy/black file filter=0", "Mails/all=0"));
    EXPECT_EQ(reply, get(manager(aclQuery(sid))).json());
}

TEST_F(NasConfigRules, KeepUsersFromWhatIsNotTheirs) {
    EXPECT_EQ(0, change(saveForm({kConflict, kVersion})));
    EXPECT_EQ(4, change(saveForm({kVersion, kFilter})));
    EXPECT_EQ(4, change(saveForm({kSender})));
    EXPECT_EQ(4, change(asTemplate(saveForm({kSender}))));
    EXPECT_THAT(items(benSid, "u-1"),
                ElementsAre("Policy/conflict Policy=2", "Config/official version=4.2.0"));
    EXPECT_EQ(0, save(sid, "ben", "u-1", saveForm({kFilter, kSender})).status());
    EXPECT_EQ(0, save(sid, "anna", "u-1", saveForm({kFilter, kSender})).status());
    // A reset would take away what isn't ben's to change.
    EXPECT_EQ(4, get(cgi(resetQuery(benSid, "ben", "u-1"))).status());
    EXPECT_EQ(4u, items(benSid, "u-1").size());
    EXPECT_EQ(0, get(cgi(resetQuery(sid, "ben", "u-1"))).status());
    EXPECT_EQ(0, change(saveForm({kVersion})));
    EXPECT_EQ(0, get(cgi(resetQuery(benSid, "ben", "u-1"))).status());
}

TEST_F(NasConfigRules, CanBeSwitchedOffAsAWhole) {
    rule("Admin", "client set config", "0");
    EXPECT_EQ(4, change(saveForm({kConflict})));
    EXPECT_EQ(4, change(saveForm({kVersion})));
    EXPECT_EQ(0, save(sid, "anna", "u-1", saveForm({kConflict})).status());
    rule("Admin", "manager mode", "0");
    EXPECT_EQ(0, change(saveForm({kConflict, kFilter, kSender})));
    EXPECT_THAT(itemsOf(ask(aclQuery(sid))), testing::Contains("Admin/manager mode=0"));
}

TEST_F(NasConfigRules, APasswordOpensTheRestOnlyWhereItMay) {
    const FormFields form = saveForm({kFilter});
    EXPECT_EQ(4, change(withPassword(form, "Schl\xc3\xbcssel")));
    rule("Admin", "use manager password", "1");
    EXPECT_EQ(4, change(form));
    EXPECT_EQ(4, change(withPassword(form, "key")));
    EXPECT_THAT(items(benSid, "u-1"), IsEmpty());
    EXPECT_EQ(0, change(withPassword(form, "Schl\xc3\xbcssel")));
    EXPECT_THAT(items(benSid, "u-1"), testing::SizeIs(1));
    // A wrong one is wrong whoever sends it, and whatever is saved.
    EXPECT_EQ(4, change(withPassword(saveForm({kConflict}), "key")));
    EXPECT_EQ(4, save(sid, "ben", "u-1", withPassword(form, "key")).status());
    EXPECT_EQ(0, save(sid, "ben", "u-1", withPassword(form, "Schl\xc3\xbcssel")).status());
    EXPECT_EQ(0, authResult("key"));
}

TEST_F(NasConfigRules, ThePasswordIsChecked) {
    EXPECT_EQ(1, authResult("Schl\xc3\xbcssel"));
    EXPECT_EQ(0, authResult("schl\xc3\xbcssel"));
    EXPECT_EQ(1, get(manager(passwordQuery(sid, "Schl\xc3\xbcssel"))).json()["auth_result"].asInt());
    EXPECT_EQ(3, get(cgi(passwordQuery("x", "Schl\xc3\xbcssel"))).status());
    const std::string odd = "~~?>>>x";
    ASSERT_EQ("fn4/Pj4+eA==", base64(odd));
    nas.control("POST", "config/password", "{\"password\":\"" + odd + "\"}");
    EXPECT_EQ(1, authResult(odd));
    EXPECT_EQ(0, authResult("Schl\xc3\xbcssel"));
    nas.control("POST", "config/password", R"({"password":""})");
    EXPECT_EQ(0, authResult(odd));
    EXPECT_EQ(4, change(withPassword(saveForm({kConflict}), odd)));
}

TEST_F(NasConfigRules, OptionsCountAtEachStart) {
    rule("Mails", "all", "1");
    rule("Policy", "conflict Policy", "0");
    nas.control("POST", "config/password", R"({"password":"key"})");
    benSid = restarted("ben", "hidden");
    EXPECT_THAT(
        itemsOf(ask(aclQuery(benSid))),
        testing::AllOf(testing::Contains("Mails/all=0"), testing::Contains("Policy/conflict Policy=0")));
    EXPECT_EQ(1, authResult("Schl\xc3\xbcssel"));
}

TEST_F(NasConfigRules, OnlyRulesThatThereAreCanBeSet) {
    for (const char* body :
         {R"({"section":"Policy","key":"all","value":"0"})", R"({"section":"Mails","key":"all","value":"2"})",
          R"({"section":"mails","key":"all","value":"0"})", R"({"section":"Mails"})"}) {
        EXPECT_THROW(nas.control("POST", "config/acl", body), std::runtime_error) << body;
    }
    EXPECT_THROW(nas.control("POST", "config/password", "{}"), std::runtime_error);
    EXPECT_EQ(1, authResult("Schl\xc3\xbcssel"));
}

class NasConfigStrict : public NasConfig {
protected:
    void refused(const std::string& query, const std::string& reason) {
        for (const std::string& target : {cgi(query), manager(query)}) {
            const NasReply reply = get(target);
            EXPECT_EQ(400, reply.http) << target;
            EXPECT_THAT(reply.body, HasSubstr(reason)) << target;
        }
    }
    void refused(const FormFields& form, const std::string& reason) {
        for (const std::string& target :
             {cgi(saveQuery(benSid, "ben", "u-1")), manager(saveQuery(benSid, "ben", "u-1"))}) {
            const NasReply reply = post(target, form);
            EXPECT_EQ(400, reply.http) << reply.body;
            EXPECT_THAT(reply.body, HasSubstr(reason));
        }
    }
};

TEST_F(NasConfigStrict, QueriesAreExact) {
    refused(getQuery(sid, "u-1", ""), "get_all");
    refused(getQuery(sid, "u-1", "&get_all=3"), "get_all");
    refused(getQuery(sid, "u-1", "&get_all=2&get_template=1"), "get_all");
    refused(getQuery(sid, "u-1", "&get_all=1&get_template=0"), "get_template");
    refused(getQuery(sid, "u-1", "&get_all=1&check_exist=1&get_template=1"), "not in the protocol");
    refused(getQuery(sid, "u-1", "&get_all=1&user=ben"), "not in the protocol");
    refused(getQuery(sid, ""), "empty");
    refused(aclQuery(sid) + "&user=ben", "not in the protocol");
    refused(listQuery(sid, ""), "empty");
    refused(listQuery(sid, "ben", "&upper=1&lower=0"), "out of order");
    refused(listQuery(sid, "ben", "&lower=0&upper=-2"), "out of its range");
    refused(notifyQuery(sid, "&device_uid=u-1&user=ben"), "not in the protocol");
    refused(notifyQuery(sid, "&user="), "empty");
    refused(notifyQuery(sid, "&device_uid="), "empty");
    refused(resetQuery(sid, "ben", ""), "empty");
    refused(resetQuery(sid, "ben", "u-1") + "&apply=1", "not in the protocol");
    refused("func=nubo_reset_device_config&sid=" + sid + "&user=ben&device_uid=u-1&mode=2", "mode");
    refused(passwordQuery(sid, ""), "password");
    refused("func=nubo_auth_config_password&sid=" + sid + "&password=abc", "not base64");
    refused("func=nubo_auth_config_password&sid=" + sid + "&password=/w==", "no text");
    EXPECT_TRUE(
        nas.waitForLog("func=nubo_auth_config_password user=- http=400 refused: query key \"password\" "
                       "is not base64"));
}

TEST_F(NasConfigStrict, FormsAreExact) {
    const FormFields right = saveForm({kConflict, kSender});
    FormFields form = right;
    form.pop_back();
    refused(form, "config_number");
    refused(saveForm({}), "out of its range");
    refused(replaced(right, "config_number", "3"), "missing");
    refused(replaced(right, "config_number", "1"), "not in the protocol");
    form = right;
    std::swap(form[0], form[1]);
    refused(form, "out of order");
    form = right;
    form.emplace_back("template", "1");
    refused(form, "out of order");
    refused(replaced(asTemplate(right), "template", "0"), "template");
    form = saveForm({{"Policy", "conflict Policy", "1", true}});
    refused(replaced(form, "action0", "2"), "action0");
    form = right;
    form.emplace_back("password", "abc");
    refused(form, "base64");
    refused(withPassword(right, ""), "no text");
    refused(saveForm({{"Mails", "smart sync", "1"}}), "devices don't have");
    refused(saveForm({{"mails", "server port", "1"}}), "devices don't have");
    refused(saveForm({{"Policy", "black file filter", "a\tb"}}), "tab");
    refused(saveForm({{"Mails", "sender password", "plain"}}), "base64");
    refused(saveForm({{"Mails", "sender password", "/w=="}}), "UTF-8");
    EXPECT_THAT(items(benSid, "u-1"), IsEmpty());
    EXPECT_EQ(4, change(saveForm({kConflict, kConflict})));
    const FormFields longest = saveForm({{"Mails", "server name", std::string(70000, 'a')}});
    EXPECT_EQ(413, save(benSid, "ben", "u-1", longest).http);
    EXPECT_THAT(items(benSid, "u-1"), IsEmpty());
}

TEST_F(NasConfigStrict, MethodServiceAndSessionAreChecked) {
    const std::vector<std::string> queries = {getQuery("x", "u-1"),          aclQuery("x"),
                                              listQuery("x", "ben"),         notifyQuery("x"),
                                              resetQuery("x", "ben", "u-1"), passwordQuery("x", "key")};
    for (const std::string& query : queries) {
        EXPECT_EQ(3, get(cgi(query)).status()) << query;
        EXPECT_EQ(3, get(manager(query)).status()) << query;
        EXPECT_EQ(405, post(cgi(query), {{"a", "b"}}).http) << query;
        EXPECT_EQ(400, get("/cgi-bin/torvi/torvisrv.fcgi?" + query).http) << query;
    }
    EXPECT_EQ(3, save("x", "ben", "u-1", saveForm({kConflict})).status());
    EXPECT_EQ(405, get(cgi(saveQuery(benSid, "ben", "u-1"))).http);
    EXPECT_EQ(400,
              post(cgi("func=nubo_save_device_config&sid=" + benSid + "&device_uid=u-1&user=ben&apply=0"),
                   saveForm({kConflict}))
                  .http);
    EXPECT_EQ(400, post(cgi(saveQuery(benSid, "", "u-1")), saveForm({kConflict})).http);
}

TEST_F(NasConfigStrict, WhatClientsDoNotEncodeMayStandAsItIs) {
    const std::string uid = "a:b/c=d+e,f@g?h?";
    ASSERT_EQ(0, save(benSid, "ben", uid, saveForm({kConflict})).status());
    EXPECT_EQ(uid, ask(getQuery(benSid, uid))["duid"].asString());
    EXPECT_THAT(items(benSid, encoded(uid)), testing::SizeIs(1));
    EXPECT_FALSE(ask(notifyQuery(sid, "&user=ben&device_uid=" + uid)).isMember("status"));
    EXPECT_EQ(0, get(cgi(resetQuery(benSid, "ben", uid))).status());
    refused(getQuery(benSid, "a{b}"), "unencoded");
    refused(getQuery(benSid + "/", "a"), "unencoded");
    refused("func=nubo_get_device_config_list&sid=" + sid + "&user=a:b&lower=0&upper=1", "unencoded");
    refused("func=nubo_reset_device_config&sid=" + sid + "&user=a:b&device_uid=u&mode=1", "unencoded");
    refused("func=nubo_get_device_config_list&sid=" + sid + "&user=a?b&lower=0&upper=1", "unencoded");
    EXPECT_EQ(5, get(cgi(notifyQuery(sid, "&user=a:b?"))).status());
    EXPECT_EQ(5, save(sid, "a?b", "u-1", saveForm({kConflict})).status());
}

class NasConfigNode : public NasConfig {
protected:
    NasConfigNode() : NasConfig({"--slave-id", "node2"}) {}
};

TEST_F(NasConfigNode, NoCallTakesASlavePrefix) {
    for (const std::string& query :
         {getQuery(sid, "u-1"), aclQuery(sid), listQuery(sid, "ben"), notifyQuery(sid),
          resetQuery(sid, "ben", "u-1"), passwordQuery(sid, "key")}) {
        EXPECT_EQ(404, get("/node2" + cgi(query)).http) << query;
        EXPECT_EQ(404, get("/node2" + manager(query)).http) << query;
    }
    EXPECT_EQ(404, post("/node2" + cgi(saveQuery(sid, "ben", "u-1")), saveForm({kConflict})).http);
    EXPECT_EQ(0, save(sid, "ben", "u-1", saveForm({kConflict})).status());
}

struct SessionFolder {
    TempDir sessions;
};

/// The second of two nodes is there as well.
class NasConfigCluster : protected SessionFolder, public NasConfig {
protected:
    NasConfigCluster() : NasConfig({"--slave-id", "node1", "--session-dir", sessions.string()}) {}

    NasReply saveAt(const Nas& node, const std::string& uid, const FormFields& form) const {
        return exchange(node.port(), NasRequest::form(cgi(saveQuery(sid, "ben", uid)), form));
    }

    Nas second{nodeOptions("node2", sessions.string())};
};

TEST_F(NasConfigCluster, NodesKnowEachOthersDevices) {
    ASSERT_EQ(0, saveAt(nas, "u-9", saveForm({kConflict})).status());
    const NasReply list = exchange(second.port(), NasRequest::get(cgi(listQuery(sid, "ben"))));
    EXPECT_THAT(each(list.json()["device"], "device_uid"), ElementsAre("u-1", "u-9"));
}

TEST_F(NasConfigCluster, NothingIsLostWhenBothNodesSaveAtOnce) {
    constexpr int kSaves = 20;
    std::vector<std::thread> threads;
    for (const Nas* node : {&nas, &second}) {
        threads.emplace_back([this, node] {
            for (int i = 0; i < kSaves; ++i) {
                const std::string uid = std::to_string(node->port()) + "-" + std::to_string(i);
                EXPECT_EQ(0, saveAt(*node, uid, saveForm({kConflict})).status());
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(2 * kSaves + 1, ask(listQuery(sid, "ben"))["total"].asInt());
    EXPECT_EQ(2u * kSaves, events(sid).size());
}

TEST_F(NasConfigCluster, WhatIsSavedWhileTheDeviceAsksStillWaits) {
    constexpr int kSaves = 60;
    std::atomic<bool> done{false};
    // The n-th save has the value n and makes the n-th notice.
    std::thread saver([&] {
        for (int i = 1; i <= kSaves; ++i) {
            const Item item = {"Mails", "server port", std::to_string(i)};
            EXPECT_EQ(0, saveAt(second, "u-1", saveForm({item})).status());
        }
        done = true;
    });
    for (bool last = false; !last;) {
        last = done;
        const Json::Value told = ask(getQuery(benSid, "u-1"))["config"];
        const std::string value = told.empty() ? "0" : told[0]["value"].asString();
        std::string fetched = "0";
        for (const Json::Value& event : events(benSid)) {
            if (event["event_status"] == "2") fetched = event["event_id"].asString();
        }
        EXPECT_EQ(value, fetched);
    }
    saver.join();
}
