#pragma once

#include <string>
#include <vector>

#include "lists.h"
#include "support/staterecords.h"
#include "support/wire.h"

// Who a server is: what the call before a login and the one within a session share.
namespace wire {

using IdentityRecord = Garbage<_NAS_USER_UID_INFORMATION>;

struct IdentityRow {
    std::string reply;
    std::string record;
};

inline const std::vector<IdentityRow>& identityRows() {
    const std::string longest(259, 'x');
    static const std::vector<IdentityRow> rows = {
        {R"({"is_booting":1,"is_recovering":1,"is_migrating":1,"nubo_cgi":1,"fcgi":1,"user_type":1,"UID":"u1",
            "SUID":"s1","MAC0":"00:11","Torvi_version":"4.3.6","versioning_version":"1.0"})",
         "booting recovering migrating nubo type=1 uid=u1 suid=s1 mac=00:11 torvi=4.3.6 versioning=1.0"},
        {R"({"is_booting":"2","is_recovering":0,"nubo_cgi":"0","fcgi":"1","user_type":"1","UID":"書"})",
         "booting type=1 uid=書"},
        {R"({"user_type":2,"UID":"---","SUID":"---","MAC0":"---","Torvi_version":"---",
            "versioning_version":"---"})",
         ""},
        {R"({"UID":")" + longest + R"(","SUID":")" + longest + "x\"}", "uid=" + longest},
        {R"({"UID":")" + std::string(100000, 'x') + R"(","MAC0":"m"})", "mac=m"},
        {"{\"UID\":\"a\xFF\"}", "uid=a\xEF\xBF\xBD"},
        {R"({"status":4,"UID":"u1"})", "uid=u1"},
        {"{}", ""},
    };
    return rows;
}

/// `Args` are the good arguments of a call to a server; `record` is what it fills.
template <class Args>
void expectIdentities() {
    for (const IdentityRow& row : identityRows()) {
        SCOPED_TRACE(row.reply.substr(0, 200));
        const RawServer server({Reply::json(row.reply)});
        Args call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.record.text(), row.record);
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

/// What isn't an identity is 14 and leaves a zeroed record.
template <class Args>
void expectNoIdentities() {
    for (const char* reply :
         {"{\"UID\":[\"u\"]}", "{\"MAC0\":{}}", "{\"is_booting\":99999999999}", "[]", "no"}) {
        SCOPED_TRACE(reply);
        const RawServer server({Reply::json(reply)});
        Args call(server);
        EXPECT_EQ(call.run(), 14u);
        EXPECT_EQ(call.record.text(), "");
    }
}

}  // namespace wire
