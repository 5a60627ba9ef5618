#include "support/wire.h"

#include <algorithm>

namespace wire {

namespace {

std::vector<std::string> lines(const HeaderList& headers, const char* between) {
    std::vector<std::string> texts;
    texts.reserve(headers.size());
    for (const auto& [name, value] : headers) texts.push_back(name + between + value);
    return texts;
}

std::vector<std::string> rawPairs(const std::string& text) {
    std::vector<std::string> pairs;
    for (std::size_t at = 0; !text.empty();) {
        const auto end = text.find('&', at);
        pairs.push_back(text.substr(at, end == std::string::npos ? end : end - at));
        if (end == std::string::npos) break;
        at = end + 1;
    }
    return pairs;
}

bool isNamed(const std::pair<std::string, std::string>& header, const std::string& name) {
    return header.first == name;
}

}  // namespace

HeaderList baseHeaders(const RawServer& server, const std::string& agent) {
    return {{"Host", server.authority()},
            {"User-Agent", agent},
            {"Connection", "Keep-Alive"},
            {"Cache-Control", "no-cache"},
            {"Pragma", "no-cache"},
            // Qt's own; main.cpp fixes the locale.
            {"Accept-Encoding", "gzip, deflate"},
            {"Accept-Language", "en,*"}};
}

HeaderList formHeaders(const RawServer& server, std::size_t bodySize, const std::string& agent) {
    HeaderList headers = baseHeaders(server, agent);
    headers.emplace_back("Content-Type", "application/x-www-form-urlencoded;charset=UTF-8");
    headers.emplace_back("Content-Length", std::to_string(bodySize));
    return headers;
}

HeaderList uploadHeaders(const RawServer& server, const Request& request, const std::string& agent) {
    HeaderList headers = baseHeaders(server, agent);
    headers.emplace_back("Content-Type", "multipart/form-data; boundary=" + request.multipart().boundary);
    headers.emplace_back("Content-Length", std::to_string(request.bodySize));
    return headers;
}

HeaderList with(HeaderList headers, const std::string& name, const std::string& value) {
    const auto found = std::find_if(headers.begin(), headers.end(),
                                    [&](const auto& header) { return isNamed(header, name); });
    if (found == headers.end()) {
        headers.emplace_back(name, value);
    } else {
        found->second = value;
    }
    return headers;
}

HeaderList without(HeaderList headers, const std::string& name) {
    headers.erase(std::remove_if(headers.begin(), headers.end(),
                                 [&](const auto& header) { return isNamed(header, name); }),
                  headers.end());
    return headers;
}

void expectRequestLine(const Request& request, const std::string& line, const char* file, int where) {
    const testing::ScopedTrace trace(file, where, "request line");
    EXPECT_EQ(request.line, line);
}

void expectHeaders(const Request& request, const HeaderList& headers, const char* file, int where) {
    const testing::ScopedTrace trace(file, where, "headers of " + request.line);
    std::vector<std::string> got = lines(request.headers, ": ");
    std::vector<std::string> expected = lines(headers, ": ");
    std::sort(got.begin(), got.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(got, expected);
}

void expectForm(const Request& request, const HeaderList& fields, const char* file, int where) {
    const testing::ScopedTrace trace(file, where, "form of " + request.line);
    EXPECT_EQ(rawPairs(request.body), lines(fields, "="));
    EXPECT_TRUE(request.complete);
}

void expectQuery(const Request& request, const HeaderList& fields, const char* file, int where) {
    const testing::ScopedTrace trace(file, where, "query of " + request.line);
    EXPECT_EQ(rawPairs(request.queryText()), lines(fields, "="));
}

void expectGet(const Request& request, const std::string& target, const HeaderList& headers, const char* file,
               int where) {
    expectRequestLine(request, "GET " + target + " HTTP/1.1", file, where);
    expectHeaders(request, headers, file, where);
    const testing::ScopedTrace trace(file, where, "body of " + request.line);
    EXPECT_EQ(request.bodySize, 0u);
}

void expectPart(const Part& part, const std::string& head, const std::string& body, const char* file,
                int where) {
    const testing::ScopedTrace trace(file, where, "part " + part.name);
    EXPECT_EQ(part.head, head);
    EXPECT_EQ(part.body, body);
}

}  // namespace wire
