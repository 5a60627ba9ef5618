// GetPath: one page of a listing, through the exported symbol, with the parser's class as the library has it.

#include "../../src/files/GetPath.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../../src/files/GetNodeInfoJson.h"
#include "lines.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/pathrecord.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

using Lines = std::vector<std::string>;

const char* const kPage = R"({"status":1,"total":3,"datas":[{"filename":"a","epochmt":"5"},
                              {"filename":"b","epochmt":"6"}]})";

/// Good arguments, until a test changes them.
struct GetPathCall {
    const wchar_t* agent = L"agent";
    const wchar_t* slaveID = nullptr;
    const wchar_t* path = L"%2Fhome";
    const wchar_t* pattern = L"*";
    uint32_t start = 7;
    uint32_t limit = 10;
    uint32_t typeFilter = 3;
    uint32_t fieldMask = 0x22;
    bool wantSort = true;
    CGetNodeInfoJson reply;
    CGetNodeInfoJson* parser = &reply;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) const {
        return GetPath(session, agent, kServer, port, slaveID, path, pattern, start, limit, typeFilter,
                       fieldMask, wantSort, nullptr, parser);
    }
    bool isUntouched() const { return reply.GetStatus() == -1 && reply.nextStart == 0; }
};

std::string getList(const std::string& behind) {
    return "func=get_list&sid=sid123&is_iso=0&list_mode=all&path=%2Fhome&dir=DESC&limit=10&sort=mt&start=7" +
           behind;
}

class GetPathWire : public testing::Test {
protected:
    SessionPtr session = makeSession();
    LogCapture log;
    GetPathCall call;
};

/// A parser of a caller's own.
class CountingParser : public CGetNodeInfoJson {
public:
    int Parser(char* text) override {
        ++calls;
        return CGetNodeInfoJson::Parser(text);
    }
    int calls = 0;
};

}  // namespace

TEST_F(GetPathWire, AsksForOnePageOnEveryRoute) {
    const struct {
        uint32_t typeFilter;
        bool wantSort;
        const char* behind;
        const char* fileManagerBehind;
    } rows[] = {{1, true, "&no_sort=0", ""},
                {7, false, "&no_sort=1", ""},
                {2, true, "&type=4&no_sort=0", ""},
                {6, true, "&type=4&no_sort=0&check_child=4", "&type=4&no_sort=0"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.behind);
        const std::string fileManagerBehind = row.fileManagerBehind;
        call.typeFilter = row.typeFilter;
        call.wantSort = row.wantSort;
        expectOnEveryRoute(
            getList(row.behind),
            [this](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                call.slaveID = slaveID;
                call.run(context, port);
            },
            routes(), fileManagerBehind.empty() ? std::string() : getList(fileManagerBehind));
    }
}

TEST_F(GetPathWire, GoesByTheAgentThatIsGiven) {
    RawServer server({Reply::json(kPage)});
    call.agent = L"another agent";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectHeaders(server.onlyRequest(), baseHeaders(server, "another agent"));
}

TEST_F(GetPathWire, TellsTheParserWhatIsWantedAndFillsIt) {
    RawServer server({Reply::json(kPage)});
    call.pattern = L"?";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.reply.pattern, L"?");
    EXPECT_EQ(call.reply.typeFilter, 3u);
    EXPECT_EQ(call.reply.fieldMask, 0x22u);
    EXPECT_EQ(call.reply.GetStatus(), 0);
    EXPECT_EQ(call.reply.total, 3u);
    EXPECT_EQ(call.reply.nextStart, 9u);
    EXPECT_EQ(describe(call.reply.records),
              (Lines{"name=a exists child modified=5", "name=b exists child modified=6"}));
    log.expectNoLines();
}

TEST_F(GetPathWire, TheNextPageIsAddedToTheSameParser) {
    RawServer server({Reply::json(kPage)});
    call.run(session.get(), server.port());
    call.start = call.reply.nextStart;
    call.run(session.get(), server.port());
    EXPECT_EQ(call.reply.records.size(), 4u);
    EXPECT_EQ(call.reply.nextStart, 11u);
}

TEST_F(GetPathWire, CallsTheParserThroughItsTable) {
    RawServer server({Reply::json(kPage)});
    CountingParser parser;
    call.parser = &parser;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(parser.calls, 1);
    EXPECT_EQ(parser.records.size(), 2u);
}

TEST_F(GetPathWire, RefusesWhatMustBeGivenWithOneLine) {
    expectRefusals<GetPathCall>(
        log, session.get(), "GetPath",
        {[](GetPathCall& page) { page.agent = nullptr; }, [](GetPathCall& page) { page.agent = L""; },
         [](GetPathCall& page) { page.path = nullptr; }, [](GetPathCall& page) { page.path = L""; },
         [](GetPathCall& page) { page.pattern = nullptr; }, [](GetPathCall& page) { page.pattern = L""; },
         [](GetPathCall& page) { page.typeFilter = 0; }, [](GetPathCall& page) { page.parser = nullptr; }});
}

TEST_F(GetPathWire, RefusesAConnectionThatLeadsNowhere) {
    EXPECT_EQ(call.run(nullptr, 80), 8u);
    EXPECT_EQ(call.run(session.get(), 0), 8u);
    EXPECT_EQ(GetPath(session.get(), L"agent", L"", 80, nullptr, L"x", L"*", 0, 1, 3, 1, true, nullptr,
                      &call.reply),
              8u);
    log.expectLines({refusedLine("GetPath", 80), refusedLine("GetPath", 0),
                     "[WFM] GetPath(:80): WFM_PARSE_XML_INVALID_PARAMETER"});
}

TEST_F(GetPathWire, APageThatIsNotUnderstoodLeavesTheStartForAnotherTry) {
    RawServer server({Reply::json("no")});
    EXPECT_EQ(call.run(session.get(), server.port()), 14u);
    EXPECT_EQ(call.reply.nextStart, 7u);
    EXPECT_TRUE(call.reply.records.empty());
    log.expectLines({"[WFM] GetPath: WFM_PARSE_XML_FAIL", summaryLine("GetPath", server.port(), 14)});
}

TEST_F(GetPathWire, AFieldMaskOf0IsTakenAndFillsNothing) {
    RawServer server({Reply::json(kPage)});
    call.fieldMask = 0;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(describe(call.reply.records), (Lines{"exists child", "exists child"}));
}
