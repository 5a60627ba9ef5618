// What both activations do alike.

#include <gtest/gtest.h>

#include "activations.h"
#include "replies.h"
#include "support/logcapture.h"

using namespace wire;

template <class Activation>
class ActivationWire : public testing::Test {
protected:
    static std::string line(const std::string& text) { return "[WFM] " + Activation::function() + text; }
};

struct ActivationNames {
    template <class Activation>
    static std::string GetName(int) {
        return Activation::function();
    }
};
using Activations = testing::Types<ActivateSession, ActivateToken>;
TYPED_TEST_SUITE(ActivationWire, Activations, ActivationNames);

TYPED_TEST(ActivationWire, AsksTheNodeThatIsNamed) {
    const std::pair<const wchar_t*, const char*> rows[] = {{nullptr, ""},        {L"", ""},
                                                           {L"Node7", ""},       {L"nODE7", ""},
                                                           {L"Node8", "Node8/"}, {L"Node70", "Node70/"}};
    for (const auto& [node, prefix] : rows) {
        SCOPED_TRACE(prefix);
        const RawServer server({Reply::json(kActivated)});
        TypeParam call(server);
        call.nameNode(node);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        expectGet(server.onlyRequest(), activationTarget(TypeParam::token(), prefix), baseHeaders(server));
        log.expectNoLines();
    }
}

TYPED_TEST(ActivationWire, RefusesABadAddressAndAMissingResultWordWith87) {
    const std::pair<const char*, void (*)(TypeParam&)> changes[] = {
        {"(:80)", [](TypeParam& a) { a.server = nullptr; }},
        {"(:80)", [](TypeParam& a) { a.server = L""; }},
        {"(127.0.0.1:0)", [](TypeParam& a) { a.port = 0; }},
        {"(127.0.0.1:80)", [](TypeParam& a) { a.resultWord = nullptr; }},
    };
    for (const auto& [address, change] : changes) {
        TypeParam call;
        change(call);
        LogCapture log;
        EXPECT_EQ(call.run(), 87u);
        EXPECT_EQ(call.result, 0xABCDu);
        log.expectLines({this->line(std::string(address) + ": WFM_PARSE_XML_INVALID_PARAMETER")});
    }
}

TYPED_TEST(ActivationWire, ARefusalIs0WithItsKindInTheResultWord) {
    std::vector<ReplyRow> rows;
    const struct {
        const char* status;
        int code, result;
    } codes[] = {
        {"7", -5, -38},        {"-101", -8, -39}, {"0", -2, -2},  {"3", -29, -2},
        {"4", -3, -2},         {"8", -24, -2},    {"34", -1, -2}, {"\"7\"", -5, -38},
        {"\"-101\"", -8, -39}, {"null", -1, -2},  {"[]", -1, -2}, {"\"no number\"", -2, -2},
    };
    for (const auto& row : codes)
        rows.push_back({std::string(R"({"admingroup":"1","servername":"nas","status":)") + row.status + "}",
                        0,
                        row.result,
                        {this->line(": Status failed(" + std::to_string(row.code) + ")(" +
                                    std::to_string(row.result) + ")")}});
    rows.push_back({"{}", 0, -2, {this->line(": Status failed(-1)(-2)")}});
    expectReplies<TypeParam>(rows);
}

TYPED_TEST(ActivationWire, AReplyThatIsNotUnderstoodIs14) {
    std::vector<ReplyRow> rows;
    for (const char* reply : {"", "[]", "null", "<a/>", R"({"status":1)", R"({"status":4294967296})"})
        rows.push_back(
            {reply,
             14,
             -1,
             {this->line(": WFM_PARSE_XML_FAIL"), this->line("(127.0.0.1:{port}) failed dwStatus(14)")}});
    expectReplies<TypeParam>(rows);
}
