#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/rawserver.h"

/// What the wire tests say about a request. Each failure names the line that asked.
namespace wire {

/// The headers of a GET: the transport's own and those that Qt adds. `agent` is the library's default where a
/// session has none; calls without a session send "VEXAWebFileMan".
HeaderList baseHeaders(const RawServer& server, const std::string& agent = "VEXA Torvi");
/// Those of a form POST whose body has that many bytes.
HeaderList formHeaders(const RawServer& server, std::size_t bodySize,
                       const std::string& agent = "VEXA Torvi");
/// Those of an upload; boundary and length are taken from the request, which other assertions check.
HeaderList uploadHeaders(const RawServer& server, const Request& request,
                         const std::string& agent = "VEXA Torvi");
/// The list with one more header, or with another value for one that it has.
HeaderList with(HeaderList headers, const std::string& name, const std::string& value);
HeaderList without(HeaderList headers, const std::string& name);

void expectRequestLine(const Request& request, const std::string& line, const char* file = __builtin_FILE(),
                       int where = __builtin_LINE());
/// These headers and no others, with these values and this case, in any order.
void expectHeaders(const Request& request, const HeaderList& headers, const char* file = __builtin_FILE(),
                   int where = __builtin_LINE());
/// These fields in this order, as they stand encoded on the wire.
void expectForm(const Request& request, const HeaderList& fields, const char* file = __builtin_FILE(),
                int where = __builtin_LINE());
void expectQuery(const Request& request, const HeaderList& fields, const char* file = __builtin_FILE(),
                 int where = __builtin_LINE());
/// The whole of a GET: its line, no body, and the headers.
void expectGet(const Request& request, const std::string& target, const HeaderList& headers,
               const char* file = __builtin_FILE(), int where = __builtin_LINE());
/// A plain part of a multipart body: `head` and body, byte for byte.
void expectPart(const Part& part, const std::string& head, const std::string& body,
                const char* file = __builtin_FILE(), int where = __builtin_LINE());

/// "127.0.0.1" and the port as the calls want them.
inline constexpr const wchar_t* kServer = L"127.0.0.1";

}  // namespace wire
