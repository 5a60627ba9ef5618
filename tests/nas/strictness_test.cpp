#include <gmock/gmock.h>

#include <functional>

#include "nastest.h"

using testing::HasSubstr;

using NasStrict = NasTest;

namespace {

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    if (at == std::string::npos) throw std::logic_error("no \"" + from + "\" in " + text);
    return text.replace(at, from.size(), to);
}

}  // namespace

TEST_F(NasStrict, QueryThatIsNotExactlyTheTemplateIsRefusedWithTheReason) {
    const std::string list = listQuery(sid, "/Public");
    const std::vector<std::tuple<std::string, std::string>> wrong = {
        {list + "&more=1", "key \\\"more\\\" is not in the protocol"},
        {replaced(list, "&limit=100", ""), "key \\\"limit\\\" is missing"},
        {replaced(replaced(list, "&limit=100", ""), "&start=0", "&start=0&limit=100"), "out of order"},
        {replaced(list, "is_iso=0&list_mode=all", "list_mode=all&is_iso=0"), "out of order"},
        {replaced(list, "is_iso=0", "is_iso=1"), "has the value \\\"1\\\", not \\\"0\\\""},
        {replaced(list, "dir=DESC", "dir=ASC"), "not \\\"DESC\\\""},
        {replaced(list, "sort=mt", "sort=filename"), "not \\\"mt\\\""},
        {replaced(list, "limit=100", "limit=ten"), "not a decimal number"},
        {replaced(list, "limit=100", "limit=-1"), "out of its range"},
        {replaced(list, "no_sort=0", "no_sort=2"), "out of its range"},
        {replaced(list, "%2FPublic", ""), "\\\"path\\\" is empty"},
        {replaced(list, "%2FPublic", "/Public"), "unencoded"},
        {replaced(list, "%2FPublic", "%2FPub+lic"), "unencoded"},
        {replaced(list, "%2FPublic", "%2"), "broken percent-encoding"},
        {replaced(list, "%2FPublic", "%2FPub%FFlic"), "not UTF-8"},
        {replaced(list, "%2FPublic", "%2F%C0%AE%C0%AE"), "not UTF-8"},
        {list + "&sid=" + sid, "twice"},
        {list + "&", "without key and value"},
        {replaced(list, "func=get_list", "func=get_lists"), "no call"},
        {replaced(list, "func=get_list&", ""), "\\\"func\\\" is missing"},
    };
    for (const auto& [query, reason] : wrong) {
        const NasReply reply = get(cgi(query));
        EXPECT_EQ(400, reply.http) << query;
        EXPECT_THAT(reply.body, HasSubstr(reason)) << query;
    }
    EXPECT_EQ(1, get(cgi(list)).status());
}

TEST_F(NasStrict, RefusalIsInTheLogWithItsReason) {
    get(cgi(listQuery(sid, "/Public") + "&more=1"));
    EXPECT_TRUE(
        nas.waitForLog("func=get_list user=- http=400 refused: query key \"more\" is not in the protocol"));
}

TEST_F(NasStrict, LogHasOneLineForEachRequestAndNoSessionId) {
    get(cgi(listQuery(sid, "/Public")));
    ASSERT_TRUE(nas.waitForLog("GET /cgi-bin/torvi/torvisrv.cgi func=get_list user=anna http=200 status=1"));
    EXPECT_THAT(nas.log(), testing::Not(HasSubstr(sid)));
}

TEST_F(NasStrict, CheckChildHasNoPlaceInTheFileManager) {
    const std::string query = listQuery(sid, "/Public", 10, 0, "&type=4") + "&check_child=4";
    EXPECT_EQ(200, get(cgi(query)).http);
    EXPECT_EQ(400, get(manager(query)).http);
}

TEST_F(NasStrict, StatKnowsItsTwoOrdersOnly) {
    EXPECT_EQ(400, get(cgi("func=stat&sid=" + sid + "&path=%2FPublic&file_total=1&file_name=a")).http);
    EXPECT_EQ(400, get(cgi(statQuery(sid, "/Public", "a", "&check_upload=1"))).http);
    EXPECT_EQ(400, get(cgi(statQuery(sid, "/Public", "a", "&get_privilege=0"))).http);
}

TEST_F(NasStrict, MethodIsPartOfTheCall) {
    NasRequest post = NasRequest::form(cgi(listQuery(sid, "/Public")), {});
    EXPECT_EQ(405, run(post).http);
    EXPECT_EQ(405, get(cgi(uploadQuery(sid, "/Public"))).http);
    EXPECT_EQ(405, get("/cgi-bin/torvi/torvisrv_login.cgi").http);
    for (const char* method : {"HEAD", "PUT", "DELETE", "OPTIONS", "PATCH"}) {
        NasRequest other = NasRequest::get(cgi(listQuery(sid, "/Public")));
        other.method = method;
        EXPECT_EQ(405, run(other).http) << method;
    }
}

TEST_F(NasStrict, HeadersAreThoseOfTheProtocol) {
    const auto list = [&] { return NasRequest::get(cgi(listQuery(sid, "/Public"))); };
    const std::vector<std::tuple<std::string, std::string, std::string>> wrong = {
        {"User-Agent", "", "User-Agent is missing"},
        {"Cache-Control", "", "header Cache-Control"},
        {"Cache-Control", "max-age=0", "header Cache-Control"},
        {"Pragma", "", "header Pragma"},
        {"Range", "bytes=0-1", "Range is not in the protocol"},
        {"Content-Type", "text/plain", "Content-Type on a request without a body"},
        {"Cookie", "a=b", "Cookie is not in the protocol"},
        {"Content-Length", "5", "a body on a GET"},
    };
    for (const auto& [name, value, reason] : wrong) {
        NasConnection connection(nas.port());
        connection.send(list().set(name, value).bytes() + (name == "Content-Length" ? "12345" : ""));
        const NasReply reply = connection.readAll();
        EXPECT_EQ(400, reply.http) << name;
        EXPECT_THAT(reply.raw, HasSubstr(reason)) << name;
    }
}

TEST_F(NasStrict, TransfersCarryNoPragma) {
    EXPECT_EQ(
        400,
        run(NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "a", "1").set("Pragma", "no-cache")).http);
    EXPECT_EQ(400, run(NasRequest::download(cgi("func=download"), downloadForm(sid, "/Public", "a"))
                           .set("Pragma", "no-cache"))
                       .http);
    EXPECT_EQ(200, run(loginRequest("anna", "secret")).http);
    EXPECT_EQ(400, run(loginRequest("anna", "secret").set("Pragma", "")).http);
}

TEST_F(NasStrict, ForwardedForComesFromThisMachineOnly) {
    NasRequest request = NasRequest::get(cgi(listQuery(sid, "/Public")));
    request.set("X-Forwarded-For", "10.0.0.1");
    EXPECT_EQ(200, run(request).http);
    EXPECT_EQ(200, run(request.set("X-Forwarded-For", "2001:db8::7")).http);
    EXPECT_EQ(400, run(request.set("Host", "nas.example")).http);
}

TEST_F(NasStrict, ForwardedForIsOneAddress) {
    for (const char* value : {"phone", "10.0.0", "10.0.0.1, 10.0.0.2", "10.0.0.1:80", "\xff"}) {
        NasRequest request = loginRequest("anna", "secret");
        const NasReply reply = run(request.set("X-Forwarded-For", value));
        EXPECT_EQ(400, reply.http) << value;
        EXPECT_THAT(reply.body, HasSubstr("X-Forwarded-For is no address")) << value;
    }
    NasRequest request = loginRequest("anna", "secret").set("X-Forwarded-For", "10.0.0.1");
    request.headers.emplace_back("X-Forwarded-For", "10.0.0.2");
    EXPECT_THAT(run(request).body, HasSubstr("came twice"));
}

TEST_F(NasStrict, LoginFormIsExact) {
    const auto refused = [&](const std::function<void(NasRequest&)>& change, const std::string& reason) {
        NasRequest request = loginRequest("anna", "secret");
        change(request);
        request.set("Content-Length", std::to_string(request.body.size()));
        const NasReply reply = run(request);
        EXPECT_EQ(reason == "too long" ? 413 : 400, reply.http) << reason;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    refused([](NasRequest& r) { r.body = replaced(r.body, "nubo_user=1", "nubo_user=0"); }, "nubo_user");
    refused([](NasRequest& r) { r.body = replaced(r.body, "&uid=u-1", ""); }, "\\\"uid\\\" is missing");
    refused([](NasRequest& r) { r.body = replaced(r.body, "uid=u-1", "uid="); }, "\\\"uid\\\" is empty");
    refused([](NasRequest& r) { r.body += "&otp=1"; }, "not in the protocol");
    refused(
        [](NasRequest& r) {
            r.body = replaced(r.body, "nubo_user=1&nubo_computer=desk", "nubo_computer=desk&nubo_user=1");
        },
        "out of order");
    refused([](NasRequest& r) { r.body = replaced(r.body, "nubo_device_type=2", "nubo_device_type=pc"); },
            "decimal");
    refused([](NasRequest& r) { r.body = replaced(r.body, "pwd=", "pwd=%21"); }, "base64");
    refused([](NasRequest& r) { r.set("Content-Type", "application/x-www-form-urlencoded"); },
            "Content-Type");
    refused([](NasRequest& r) { r.target += "?func=login"; }, "not in the protocol");
    refused([](NasRequest& r) { r.body = std::string(70000, 'a') + "=1"; }, "too long");
}

TEST_F(NasStrict, DownloadFormIsExact) {
    const auto form = downloadForm(sid, "/Public", "a");
    const auto http = [&](std::vector<std::pair<std::string, std::string>> fields) {
        return run(NasRequest::download(cgi("func=download"), fields)).http;
    };
    auto changed = form;
    EXPECT_EQ(200, http(changed));
    std::swap(changed[1], changed[2]);
    EXPECT_EQ(400, http(changed));
    changed = form;
    changed[0].second = "1";
    EXPECT_EQ(400, http(changed));
    changed = form;
    changed.pop_back();
    EXPECT_EQ(400, http(changed));
    changed = form;
    changed.emplace_back("offset", "");
    EXPECT_EQ(400, http(changed));
    changed.back().second = "0";
    EXPECT_EQ(200, http(changed));
    EXPECT_EQ(400, run(NasRequest::download(cgi("func=download&sid=" + sid), form)).http);
}

TEST_F(NasStrict, MultipartBodyIsExact) {
    const NasRequest right = NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "a", "content");
    const std::string delimiter = std::string("--") + kBoundary;
    const auto refused = [&](const std::string& body, const std::string& reason) {
        NasRequest request = right;
        request.body = body;
        request.set("Content-Length", std::to_string(body.size()));
        const NasReply reply = run(request);
        EXPECT_EQ(400, reply.http) << reason;
        EXPECT_THAT(reply.body, HasSubstr(reason));
        EXPECT_THAT(onDisk("Public"), testing::IsEmpty());
    };
    const std::string& body = right.body;
    refused(body + "\r\n", "after the closing delimiter");
    refused(body.substr(0, body.size() - 2), "ends inside its closing field");
    refused(body.substr(0, body.find("content") + 3), "ends inside the part \\\"Filedata\\\"");
    refused(body.substr(0, 40), "ends inside the part \\\"Filename\\\"");
    refused("", "ends inside the part \\\"Filename\\\"");
    refused("\r\n" + body, "doesn't begin with");
    refused(replaced(body, "name=\"Filename\"", "name=\"filename\""), "doesn't begin with");
    refused(replaced(body, "name=\"Filedata\"", "name=\"file\""), "isn't \\\"Filedata\\\"");
    refused(replaced(body, "filename=\"a\"", "filename=\"b\""), "\\\"Filename\\\" is");
    refused(replaced(body, "Content-Type: application/octet-stream", "Content-Type: text/plain"),
            "head of the part");
    refused(replaced(body, "\r\nContent-Type: application/octet-stream", ""), "head of the part");
    refused(replaced(body, "name=\"Upload\"", "name=\"upload_and_move\""),
            "doesn't close with the field \\\"Upload\\\"");
    refused(replaced(body, "Submit Query", "Submit"), "doesn't close");
    // The file before its name.
    const auto file = body.find(delimiter, 5);
    const auto closing = body.find(delimiter, file + 5);
    refused(body.substr(file, closing - file) + body.substr(0, file) + body.substr(closing),
            "doesn't begin with");
    refused(replaced(body, delimiter + "\r\nContent-Disposition: form-data; name=\"Filedata\"",
                     delimiter + "\r\nContent-Disposition: form-data; name=\"More\"\r\n\r\nx\r\n" +
                         delimiter + "\r\nContent-Disposition: form-data; name=\"Filedata\""),
            "isn't \\\"Filedata\\\"");
    refused(replaced(body, "\"Filename\"\r\n\r\na", "\"Filename\"\r\n\r\n" + std::string(20000, 'a')), "");
    EXPECT_EQ(1, run(right).status());
}

TEST_F(NasStrict, MultipartHeadersAreExact) {
    const NasRequest right = NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "a", "1");
    for (const char* type :
         {"multipart/form-data; boundary=abc", "multipart/form-data", "application/octet-stream",
          "multipart/form-data; boundary=\"__-----------------------17000000000001234\"",
          "multipart/form-data; boundary=__-----------------------"}) {
        EXPECT_EQ(400, run(NasRequest(right).set("Content-Type", type)).http) << type;
    }
    NasRequest noLength = right;
    noLength.body.clear();
    EXPECT_EQ(411, run(noLength.set("Content-Length", "")).http);
    NasRequest chunked = right;
    chunked.set("Content-Length", "").set("Transfer-Encoding", "chunked");
    chunked.body = "1\r\na\r\n0\r\n\r\n";
    EXPECT_EQ(400, run(chunked).http);
    EXPECT_THAT(onDisk("Public"), testing::IsEmpty());
}

TEST_F(NasStrict, UploadQueryIsExact) {
    const auto http = [&](const std::string& query, const std::string& closing) {
        return run(NasRequest::upload(cgi(query), "a", "1", closing)).http;
    };
    EXPECT_EQ(400, http(uploadQuery(sid, "/Public", 256), "Upload"));
    EXPECT_EQ(400, http(uploadQuery(sid, "/Public", -1), "Upload"));
    const std::string move = moveQuery(sid, "/Public", 1, 1);
    EXPECT_EQ(400, http(replaced(move, "settime=1", "settime=0"), "upload_and_move"));
    EXPECT_EQ(400, http(replaced(move, "&upload_root_dir=%2Fhome", ""), "upload_and_move"));
    EXPECT_EQ(400, http(replaced(move, "upload_root_dir=%2Fhome", "upload_root_dir="), "upload_and_move"));
    EXPECT_EQ(400, http(replaced(move, "mtime=1", "mtime=-1"), "upload_and_move"));
    EXPECT_EQ(400, http(replaced(move, "filesize=1", "filesize=x"), "upload_and_move"));
    EXPECT_EQ(400,
              http(replaced(move, "&upload_root_dir", "&rename_dest=&upload_root_dir"), "upload_and_move"));
    EXPECT_EQ(200, http(move, "upload_and_move"));
}

TEST_F(NasStrict, RefusedUploadIsReadToItsEndSoThatTheConnectionGoesOn) {
    NasRequest refused =
        NasRequest::upload(cgi(uploadQuery(sid, "/Public") + "&x=1"), "a", std::string(5 << 20, 'x'));
    refused.set("Connection", "Keep-Alive");
    NasConnection connection(nas.port());
    ASSERT_TRUE(connection.send(refused.bytes()));
    std::string first;
    while (first.find("not in the protocol here\"}") == std::string::npos) {
        ASSERT_TRUE(connection.readBytes(first, first.size() + 1));
    }
    EXPECT_THAT(first, HasSubstr("HTTP/1.1 400"));
    connection.send(NasRequest::get(cgi(listQuery(sid, "/Public"))).bytes());
    EXPECT_EQ(1, connection.readAll().status());
}

TEST_F(NasStrict, OtherAddressesAreNotThere) {
    for (const char* target :
         {"/", "/cgi-bin/torvi/", "/cgi-bin/torvi/upload.cgi", "/index.html",
          "/cgi-bin/torvi/../torvi/torvisrv.cgi?func=x", "/node7/cgi-bin/torvi/torvisrv.cgi?func=x",
          "//cgi-bin/torvi/torvisrv.cgi", "/cgi-bin/torvi/torvisrv%2Ecgi"}) {
        EXPECT_EQ(404, get(target).http) << target;
    }
}

TEST_F(NasStrict, WhatIsNotHttpIsRefusedAndLogged) {
    NasConnection connection(nas.port());
    connection.send("BREW /cgi-bin HTTP/1.1\r\n\r\n");
    // The connection goes on: no end tells that the answer is complete.
    const std::string answer = "HTTP/1.1 400 ";
    std::string beginning;
    EXPECT_TRUE(connection.readBytes(beginning, answer.size()));
    EXPECT_EQ(answer, beginning);
    EXPECT_TRUE(nas.waitForLog("refused: not a request that HTTP knows"));
}
