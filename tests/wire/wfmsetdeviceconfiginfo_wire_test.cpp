// WFMSetDeviceConfigInfo: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

#include "WebFileManShareAPI.h"
#include "configreplies.h"
#include "forms.h"
#include "sessioncall.h"

using namespace wire;

namespace {

const std::string kName = "[WFMShare] WFMSetDeviceConfigInfo";
const char* const kQuery = "func=nubo_save_device_config&sid=sid123&device_uid=d-1&user=ann&apply=1";

struct SetConfigCall : SessionCall<SetConfigCall> {
    const wchar_t* user = L"ann";
    const wchar_t* deviceUID = L"d-1";
    const wchar_t* password = nullptr;
    int32_t isTemplate = 0;
    uint32_t count = 0;  ///< 0: as many as there are
    bool withoutArray = false;
    bool withoutList = false;

    SetConfigCall() { clear().add(0x1, L"1"); }
    explicit SetConfigCall(const RawServer& at) : SessionCall(at) { clear().add(0x1, L"1"); }

    SetConfigCall& clear() {
        m_pointers.clear();
        return *this;
    }
    SetConfigCall& add(uint32_t flag, const wchar_t* value, int32_t action = 0) {
        m_items.push_back({flag, const_cast<wchar_t*>(value), action});
        m_pointers.push_back(&m_items.back());
        return *this;
    }
    SetConfigCall& addNull() {
        m_pointers.push_back(nullptr);
        return *this;
    }

    uint32_t call() {
        const WFM_TORVI_DEVICE_CONFIG_LIST list{count != 0 ? count : static_cast<uint32_t>(m_pointers.size()),
                                                withoutArray ? nullptr : m_pointers.data()};
        return WFMSetDeviceConfigInfo(session, kServer, port, nullptr, user, deviceUID, password, isTemplate,
                                      withoutList ? nullptr : &list, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }

private:
    std::list<WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO> m_items;
    std::vector<WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO*> m_pointers;
};

/// The fields that a call sends, as they stand on the wire.
HeaderList formOf(void (*change)(SetConfigCall&)) {
    RawServer server({Reply::json(R"({"status":0})")});
    SetConfigCall call(server);
    change(call);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    HeaderList fields;
    for (const Field& field : server.onlyRequest().form()) fields.emplace_back(field.rawKey, field.rawValue);
    return fields;
}

const HeaderList kPlainItem{{"section0", "Synchronize"}, {"key0", "smart%20sync"}, {"value0", "1"}};

}  // namespace

// ---- The request ----

TEST(WFMSetDeviceConfigInfoWire, PostsToTheSessionsServiceAndNamesNoNode) {
    expectPostOnEveryRoute(
        kQuery, joined(kPlainItem, {{"config_number", "1"}}),
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            SetConfigCall call;
            call.run(session, port);
        },
        {}, routesWithoutNode());
}

TEST(WFMSetDeviceConfigInfoWire, UserAndDeviceAreSentAsGiven) {
    RawServer server({Reply::json("{}")});
    SetConfigCall call(server);
    call.user = L"a&b=%2F\x6587";
    call.deviceUID = L"d/1:2%20";
    call.run();
    EXPECT_EQ(server.onlyRequest().queryText(),
              "func=nubo_save_device_config&sid=sid123&device_uid=d/1:2%20&user=a&b=%2F%E6%96%87&apply=1");
}

TEST(WFMSetDeviceConfigInfoWire, AllFieldsStandInTheirOrder) {
    EXPECT_EQ(formOf([](SetConfigCall& call) {
                  call.isTemplate = 1;
                  call.password = L"p\x00E4\x00DF\x6587";
                  call.clear()
                      .add(0x2, L"server wins", 1)
                      .addNull()
                      .add(0x4, L"*.tmp\t~*\t\x6587")
                      .add(0x80, L"se cret", 1)
                      .add(0x2000, nullptr, 2);
              }),
              (HeaderList{{"template", "1"},
                          {"section0", "Policy"},
                          {"key0", "conflict%20Policy"},
                          {"value0", "server%20wins"},
                          {"action0", "1"},
                          {"section1", "Policy"},
                          {"key1", "black%20file%20filter"},
                          {"value1", "%2A.tmp%5Ct~%2A%5Ct%E6%96%87"},
                          {"section2", "Mails"},
                          {"key2", "sender%20password"},
                          {"value2", "c2UgY3JldA%3D%3D"},
                          {"action2", "1"},
                          {"section3", "Config"},
                          {"key3", "manual%20version"},
                          {"value3", ""},
                          {"config_number", "4"},
                          {"password", "cMOkw5%2Fmloc%3D"}}));
}

TEST(WFMSetDeviceConfigInfoWire, EachItemGoesOutByItsNames) {
    const struct {
        uint32_t flag;
        const char* section;
        const char* key;
    } rows[] = {{0x1, "Synchronize", "smart sync"},     {0x2, "Policy", "conflict Policy"},
                {0x4, "Policy", "black file filter"},   {0x8, "Mails", "send method"},
                {0x10, "Mails", "sender address"},      {0x20, "Mails", "sender smtp auth"},
                {0x40, "Mails", "sender username"},     {0x80, "Mails", "sender password"},
                {0x100, "Mails", "server name"},        {0x200, "Mails", "server port"},
                {0x400, "Mails", "server secure"},      {0x800, "Mails", "server security protocol"},
                {0x1000, "Config", "official version"}, {0x2000, "Config", "manual version"}};
    RawServer server({Reply::json(R"({"status":0})")});
    SetConfigCall call(server);
    call.clear();
    for (const auto& row : rows) call.add(row.flag, L"");
    EXPECT_EQ(call.run(), 0u);
    const std::vector<Field> fields = server.onlyRequest().form();
    ASSERT_EQ(fields.size(), 3 * std::size(rows) + 1);
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(fields[3 * i].key, "section" + std::to_string(i));
        EXPECT_EQ(fields[3 * i].value, rows[i].section);
        EXPECT_EQ(fields[3 * i + 1].key, "key" + std::to_string(i));
        EXPECT_EQ(fields[3 * i + 1].value, rows[i].key);
        EXPECT_EQ(fields[3 * i + 2].key, "value" + std::to_string(i));
    }
}

TEST(WFMSetDeviceConfigInfoWire, OnlyTheNumber1IsATemplateOrAnAction) {
    for (const int32_t other : {0, 2, -1}) {
        RawServer server({Reply::json(R"({"status":0})")});
        SetConfigCall call(server);
        call.isTemplate = other;
        call.clear().add(0x1, L"1", other);
        EXPECT_EQ(call.run(), 0u);
        expectForm(server.onlyRequest(), joined(kPlainItem, {{"config_number", "1"}}));
    }
}

TEST(WFMSetDeviceConfigInfoWire, AnEmptyPasswordIsNotSent) {
    EXPECT_EQ(formOf([](SetConfigCall& call) { call.password = L""; }),
              joined(kPlainItem, {{"config_number", "1"}}));
}

TEST(WFMSetDeviceConfigInfoWire, AValueIsWholeWhateverItsLength) {
    const std::wstring value(100000, L'x');
    RawServer server({Reply::json(R"({"status":0})")});
    SetConfigCall call(server);
    call.clear().add(0x100, value.c_str());
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().form()[2].value, std::string(100000, 'x'));
}

TEST(WFMSetDeviceConfigInfoWire, AnUnknownItemIsLoggedAndLeftOut) {
    RawServer server({Reply::json(R"({"status":0})")});
    SetConfigCall call(server);
    call.clear()
        .add(0, L"v0")
        .add(0x1, L"1")
        .add(3, L"v\x6587", 1)
        .add(0x80000000, nullptr)
        .add(0x2000, L"2");
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectLines({kName + ": GetConfigItemContent failed(0)(v0)",
                     kName + ": GetConfigItemContent failed(3)(v\xE6\x96\x87)",
                     kName + ": GetConfigItemContent failed(-2147483648)()"});
    expectForm(server.onlyRequest(), joined(kPlainItem, {{"section1", "Config"},
                                                         {"key1", "manual%20version"},
                                                         {"value1", "2"},
                                                         {"config_number", "2"}}));
}

TEST(WFMSetDeviceConfigInfoWire, WithoutAnItemToSetNothingIsSent) {
    const std::string line = kName + ": WFM_PARSE_XML_INVALID_PARAMETER item number(0)";
    {
        RawServer server({Reply::json("{}")});
        SetConfigCall call(server);
        call.password = L"p";
        call.isTemplate = 1;
        call.clear().addNull().add(0x4000, L"v");
        LogCapture log;
        EXPECT_EQ(call.run(), 8u);
        EXPECT_EQ(call.signedResult(), -1);
        log.expectLines({kName + ": GetConfigItemContent failed(16384)(v)", line});
        EXPECT_EQ(server.connectionCount(), 0u);
    }
    RawServer server({Reply::json("{}")});
    SetConfigCall call(server);
    call.clear().addNull();
    LogCapture log;
    EXPECT_EQ(call.run(), 8u);
    EXPECT_EQ(call.signedResult(), -1);
    log.expectLines({line});
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST(WFMSetDeviceConfigInfoWire, OnlyTheFirstOfTheCountAreRead) {
    EXPECT_EQ(formOf([](SetConfigCall& call) {
                  call.add(0x2, L"not this one");
                  call.count = 1;
              }),
              joined(kPlainItem, {{"config_number", "1"}}));
}

// ---- The reply ----

TEST(WFMSetDeviceConfigInfoWire, TheServersOwnStatusIsTheResult) {
    const auto failed = [](int status) { return errorStatusLine("WFMSetDeviceConfigInfo", status); };
    expectReplies<SetConfigCall>({
        {R"({"status":0})", 0, 0, {}},
        {R"({"status":"0","success":"false"})", 0, 0, {}},
        {R"({"status":1,"success":"true"})", 0, 1, failed(1)},
        {R"({"status":-3})", 0, -3, failed(-3)},
        {R"({"status":4})", 0, 4, failed(4)},
        {R"({"success":"true"})", 0, -1, failed(-1)},
        {"[]", 0, -1, failed(-1)},
        {R"({"status":99999999999})",
         14,
         -1,
         {kName + ": WFM_PARSE_XML_FAIL", kName + "(127.0.0.1:{port}) failed dwStatus(14)"}},
    });
}

// ---- Refused ----

TEST(WFMSetDeviceConfigInfoWire, RefusesWhatMustBeGivenInTheNameOfAnotherCall) {
    void (*const spoilers[])(SetConfigCall&) = {
        [](SetConfigCall& call) { call.user = nullptr; },
        [](SetConfigCall& call) { call.user = L""; },
        [](SetConfigCall& call) { call.deviceUID = nullptr; },
        [](SetConfigCall& call) { call.deviceUID = L""; },
        [](SetConfigCall& call) { call.withoutList = true; },
        [](SetConfigCall& call) { call.withoutArray = true; },
        [](SetConfigCall& call) { call.clear(); },
        [](SetConfigCall& call) { call.resultWord = nullptr; },
    };
    RawServer server({Reply::json("{}")});
    for (const auto& spoil : spoilers) {
        SetConfigCall call(server);
        spoil(call);
        LogCapture log;
        EXPECT_EQ(call.run(), 8u);
        EXPECT_TRUE(call.isUntouched());
        log.expectLines({"[WFMShare] TorviActivateSid(127.0.0.1:" + std::to_string(server.port()) +
                         "): WFM_PARSE_XML_INVALID_PARAMETER"});
    }
    EXPECT_EQ(server.connectionCount(), 0u);
}
