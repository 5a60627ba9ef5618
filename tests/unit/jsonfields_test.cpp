#include "core/jsonfields.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <vector>

#include "core/Utils.h"

using namespace Lattice;

namespace {

Json::Value Read(const char* text) {
    Json::Value root;
    EXPECT_TRUE(ReadJson(text, root)) << text;
    return root;
}

std::wstring String(const Json::Value& value, const char* key) {
    std::vector<wchar_t> out(kJsonTextCapacity, L'?');
    JsonGetString(value, key, out.data());
    return out.data();
}

}  // namespace

// ---- JsonGetInt, JsonGetInt64 ----

TEST(JsonGetInt, AbsentNullAndNullKeyGiveTheDefault) {
    const Json::Value value = Read(R"({"null":null})");
    EXPECT_EQ(7, JsonGetInt(value, "absent", 7));
    EXPECT_EQ(7, JsonGetInt(value, "null", 7));
    EXPECT_EQ(7, JsonGetInt(value, nullptr, 7));
    EXPECT_EQ(7, JsonGetInt(Json::Value(), "absent", 7));
    EXPECT_EQ(7, JsonGetInt64(value, "absent", 7));
    EXPECT_EQ(7, JsonGetInt64(value, "null", 7));
    EXPECT_EQ(7, JsonGetInt64(value, nullptr, 7));
}

TEST(JsonGetInt, ReadsNumbers) {
    const Json::Value value = Read(R"({"a":5,"b":-2147483648,"c":2147483647,"d":3.9,"e":-3.9})");
    EXPECT_EQ(5, JsonGetInt(value, "a", 7));
    EXPECT_EQ(INT_MIN, JsonGetInt(value, "b", 7));
    EXPECT_EQ(INT_MAX, JsonGetInt(value, "c", 7));
    EXPECT_EQ(3, JsonGetInt(value, "d", 7));
    EXPECT_EQ(-3, JsonGetInt(value, "e", 7));
    EXPECT_EQ(5, JsonGetInt64(value, "a", 7));
    EXPECT_EQ(3, JsonGetInt64(value, "d", 7));
}

TEST(JsonGetInt, ReadsText) {
    const Json::Value value =
        Read(R"({"a":"42","b":" -7x","c":"x","d":"","e":"0x10","f":"010","g":"4294967296"})");
    EXPECT_EQ(42, JsonGetInt(value, "a", 7));
    EXPECT_EQ(-7, JsonGetInt(value, "b", 7));
    EXPECT_EQ(0, JsonGetInt(value, "c", 7));
    EXPECT_EQ(0, JsonGetInt(value, "d", 7));
    EXPECT_EQ(0, JsonGetInt(value, "e", 7));
    EXPECT_EQ(10, JsonGetInt(value, "f", 7));
    EXPECT_EQ(0, JsonGetInt(value, "g", 7));  // the low 32 bits
    EXPECT_EQ(-7, JsonGetInt64(value, "b", 7));
    EXPECT_EQ(10, JsonGetInt64(value, "f", 7));
}

TEST(JsonGetInt64, TextIsTheWayOf64Bits) {
    const Json::Value value = Read(
        R"({"a":"4294967296","b":"-9223372036854775808","c":"9223372036854775807","d":"99999999999999999999"})");
    EXPECT_EQ(4294967296LL, JsonGetInt64(value, "a", 7));
    EXPECT_EQ(LLONG_MIN, JsonGetInt64(value, "b", 7));
    EXPECT_EQ(LLONG_MAX, JsonGetInt64(value, "c", 7));
    EXPECT_EQ(LLONG_MAX, JsonGetInt64(value, "d", 7));
}

TEST(JsonGetInt, NumbersBeyond32BitsRaise) {
    const Json::Value value = Read(R"({"a":2147483648,"b":-2147483649,"c":1e300,"d":18446744073709551615})");
    for (const char* key : {"a", "b", "c", "d"}) {
        EXPECT_THROW(JsonGetInt(value, key, 7), std::exception) << key;
        EXPECT_THROW(JsonGetInt64(value, key, 7), std::exception) << key;
    }
}

TEST(JsonGetInt, OtherMembersGiveTheDefault) {
    const Json::Value value = Read(R"({"true":true,"false":false,"array":[1],"object":{"a":1}})");
    for (const char* key : {"true", "false", "array", "object"}) {
        EXPECT_EQ(7, JsonGetInt(value, key, 7)) << key;
        EXPECT_EQ(7, JsonGetInt64(value, key, 7)) << key;
    }
}

TEST(JsonGetInt, AValueThatIsNoObjectRaises) {
    for (const char* text : {"[1]", "5", "\"text\"", "true"}) {
        EXPECT_THROW(JsonGetInt(Read(text), "a", 7), std::exception) << text;
        EXPECT_THROW(JsonGetInt64(Read(text), "a", 7), std::exception) << text;
    }
}

// ---- JsonGetString, JsonText, JsonTextIs ----

TEST(JsonGetString, ReadsText) {
    const Json::Value value = Read("{\"a\":\"aé中\U0001F600\",\"b\":\"\\u4e2d\\ud83d\\ude00\",\"c\":\"\"}");
    EXPECT_EQ(L"aé中\U0001F600", String(value, "a"));
    EXPECT_EQ(L"中\U0001F600", String(value, "b"));
    EXPECT_EQ(L"", String(value, "c"));
}

TEST(JsonGetString, ReadsNumbersTruthValuesAndNullAsText) {
    const Json::Value value = Read(R"({"a":42,"b":-7,"c":true,"d":false,"e":null,"f":4294967296})");
    EXPECT_EQ(L"42", String(value, "a"));
    EXPECT_EQ(L"-7", String(value, "b"));
    EXPECT_EQ(L"true", String(value, "c"));
    EXPECT_EQ(L"false", String(value, "d"));
    EXPECT_EQ(L"", String(value, "e"));
    EXPECT_EQ(L"4294967296", String(value, "f"));
}

TEST(JsonGetString, AnAbsentKeyClearsTheBuffer) {
    EXPECT_EQ(L"", String(Read("{}"), "a"));
    EXPECT_EQ(L"", String(Json::Value(), "a"));
    EXPECT_EQ(L"", String(Read("{}"), nullptr));
    JsonGetString(Read("{}"), "a", nullptr);
}

TEST(JsonGetString, TakesUpTo2047Characters) {
    Json::Value value;
    value["fits"] = std::string(2047, 'x');
    value["long"] = std::string(2048, 'x');
    EXPECT_EQ(std::wstring(2047, L'x'), String(value, "fits"));
    EXPECT_EQ(L"", String(value, "long"));
}

TEST(JsonGetString, WritesNothingBehindTheTerminator) {
    wchar_t out[4] = {L'?', L'?', L'?', L'?'};
    JsonGetString(Read(R"({"a":"xy"})"), "a", out);
    EXPECT_STREQ(L"xy", out);
    EXPECT_EQ(L'?', out[3]);
    JsonGetString(Read(R"({"a":"xy"})"), "absent", out);
    EXPECT_STREQ(L"", out);
    EXPECT_EQ(L'?', out[3]);
}

TEST(JsonGetString, ArraysObjectsAndValuesThatAreNoObjectRaise) {
    const Json::Value value = Read(R"({"a":[],"o":{}})");
    EXPECT_THROW(String(value, "a"), std::exception);
    EXPECT_THROW(String(value, "o"), std::exception);
    EXPECT_THROW(String(Read("[]"), "a"), std::exception);
}

TEST(JsonText, IsTheSameTextAndGoesIntoASmallFieldOnlyIfItFits) {
    Json::Value value;
    value["text"] = "中";
    value["field"] = std::string(259, 'x');
    value["long"] = std::string(260, 'x');
    value["longest"] = std::string(2047, 'x');
    EXPECT_EQ(L"中", JsonText(value, "text"));
    EXPECT_EQ(L"", JsonText(value, "absent"));
    EXPECT_EQ(2047u, JsonText(value, "longest").size());

    struct {
        wchar_t text[260] = {};
        wchar_t next[4] = L"abc";
    } record;
    EXPECT_TRUE(CopyText(record.text, JsonText(value, "field")));
    EXPECT_EQ(std::wstring(259, L'x'), record.text);
    EXPECT_FALSE(CopyText(record.text, JsonText(value, "long")));
    EXPECT_FALSE(CopyText(record.text, JsonText(value, "longest")));
    EXPECT_EQ(std::wstring(259, L'x'), record.text);
    EXPECT_STREQ(L"abc", record.next);
}

TEST(JsonTextIs, ComparesTheMemberReadAsText) {
    const Json::Value value = Read(R"({"a":"true","b":true,"c":"TRUE","d":1,"e":null})");
    EXPECT_TRUE(JsonTextIs(value, "a", "true"));
    EXPECT_TRUE(JsonTextIs(value, "b", "true"));
    EXPECT_FALSE(JsonTextIs(value, "c", "true"));
    EXPECT_TRUE(JsonTextIs(value, "d", "1"));
    EXPECT_TRUE(JsonTextIs(value, "e", ""));
    EXPECT_TRUE(JsonTextIs(value, "absent", ""));
    EXPECT_FALSE(JsonTextIs(value, "absent", "true"));
}

// ---- ReadJson, ParseReply ----

TEST(ReadJson, ReadsTheFirstValueAndLooksAtNothingBehindIt) {
    Json::Value root;
    EXPECT_TRUE(ReadJson("{\"a\":1}", root));
    EXPECT_TRUE(ReadJson(" /* comment */ {\"a\":1}\n<html>", root));
    EXPECT_EQ(1, root["a"].asInt());
}

TEST(ReadJson, RefusesWhatIsNoJson) {
    Json::Value root;
    EXPECT_FALSE(ReadJson(nullptr, root));
    EXPECT_FALSE(ReadJson("", root));
    EXPECT_FALSE(ReadJson("<html></html>", root));
    EXPECT_FALSE(ReadJson("{\"a\":", root));
    EXPECT_FALSE(ReadJson("{\"a\":1", root));
}

TEST(ParseReply, GivesWhatTheReaderGives) {
    EXPECT_EQ(1, ParseReply("{\"a\":1}", [](const Json::Value& root) { return JsonGetInt(root, "a", 0); }));
    EXPECT_EQ(5, ParseReply("[]", [](const Json::Value&) { return 5; }));
}

TEST(ParseReply, TextThatIsNoJsonIsNotUnderstood) {
    const auto never = [](const Json::Value&) {
        ADD_FAILURE() << "read";
        return 1;
    };
    EXPECT_EQ(-1, ParseReply(nullptr, never));
    EXPECT_EQ(-1, ParseReply("", never));
    EXPECT_EQ(-1, ParseReply("not json", never));
}

TEST(ParseReply, ContainsWhatTheJsonLibraryRaises) {
    const auto number = [](const Json::Value& root) { return JsonGetInt(root, "a", 0), 1; };
    EXPECT_EQ(-1, ParseReply("{\"a\":2147483648}", number));
    EXPECT_EQ(-1, ParseReply("[1]", number));
    EXPECT_EQ(-1, ParseReply("\"text\"", number));
    EXPECT_EQ(-1, ParseReply("{\"a\":[]}",
                             [](const Json::Value& root) { return JsonText(root, "a").empty() ? 1 : 2; }));
    EXPECT_EQ(-1,
              ParseReply("{\"a\":5}", [](const Json::Value& root) { return root["a"]["b"].isNull(), 1; }));
    EXPECT_EQ(-1, ParseReply("{\"a\":\"5\"}", [](const Json::Value& root) { return root["a"].asInt(); }));
    EXPECT_EQ(-1, ParseReply("{}", [](const Json::Value&) -> int { throw std::length_error("any"); }));
}

TEST(ParseReply, NestingBeyondAThousandIsNotUnderstood) {
    const auto understood = [](const Json::Value&) { return 1; };
    const auto nested = [](int depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_EQ(1, ParseReply(nested(900).c_str(), understood));
    EXPECT_EQ(-1, ParseReply(nested(1002).c_str(), understood));
    EXPECT_EQ(-1, ParseReply(nested(200000).c_str(), understood));
    EXPECT_EQ(-1, ParseReply(std::string(200000, '{').c_str(), understood));
}
