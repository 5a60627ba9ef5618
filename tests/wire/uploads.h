#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <functional>
#include <string>
#include <vector>

#include "calltable.h"
#include "pathroutes.h"
#include "replies.h"
#include "support/logcapture.h"
#include "support/progress.h"
#include "support/session.h"
#include "support/tempdir.h"
#include "support/wire.h"

// What the tests of the two whole-file uploads share.
namespace wire {

/// A file on disk that the caller has opened.
class LocalFile {
public:
    explicit LocalFile(const std::string& content = "0123456789", const std::string& name = "local.bin")
        : m_path(m_folder.write(name, content)), file(QString::fromStdString(m_path)) {
        file.open(QIODevice::ReadOnly);
    }
    /// More bytes than the sockets of both sides hold.
    static constexpr qint64 kHuge = 64 << 20;
    void makeHuge() { ASSERT_EQ(::truncate(m_path.c_str(), kHuge), 0); }
    void append(const std::string& bytes) {
        QFile other(file.fileName());
        ASSERT_TRUE(other.open(QIODevice::Append));
        other.write(bytes.data(), static_cast<qint64>(bytes.size()));
    }

private:
    TempDir m_folder;
    std::string m_path;

public:
    QFile file;
};

/// The body of an upload, byte for byte.
inline std::string uploadBody(const Request& request, const std::string& name, const std::string& content,
                              const std::string& submitName, const std::string& sentName) {
    const std::string line = "--" + request.multipart().boundary;
    const std::string part = line + "\r\nContent-Disposition: form-data; name=\"";
    return part + "Filename\"\r\n\r\n" + name + "\r\n" + part + "Filedata\"; filename=\"" + sentName +
           "\"\r\nContent-Type: application/octet-stream\r\n\r\n" + content + "\r\n" + part + submitName +
           "\"\r\n\r\nSubmit Query\r\n" + line + "--";
}
inline std::string uploadBody(const Request& request, const std::string& name, const std::string& content,
                              const std::string& submitName) {
    return uploadBody(request, name, content, submitName, name);
}

inline HeaderList transferHeaders(const RawServer& server, const Request& request) {
    return without(uploadHeaders(server, request), "Pragma");
}

/// The verdicts of a callback at its opening, at each progress and at its closing call.
inline void answerWith(Progress& progress, uint32_t opening, uint32_t during, uint32_t closing) {
    progress.verdict = [=](size_t, const Progress::Call& call) {
        if (call.reason == 1) return opening;
        return call.streamNumber == 1 ? during : closing;
    };
}

/// One upload, good arguments until a test changes them. `Call` is the exported function with these
/// arguments.
template <class Derived>
struct UploadArgs {
    SessionPtr session = makeSession();
    LocalFile local;
    QFile* file = &local.file;
    const wchar_t* server = kServer;
    uint32_t port = 80;
    const wchar_t* slaveID = nullptr;
    std::wstring destinationText = L"/home/a.txt";
    const wchar_t* destination = destinationText.c_str();
    Progress progress;
    bool withCallback = true;
    uint32_t overwrite = 1;
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    UploadArgs() = default;
    explicit UploadArgs(const RawServer& at) : port(at.port()) {}
    UploadArgs(const UploadArgs&) = delete;
    UploadArgs& operator=(const UploadArgs&) = delete;

    void setDestination(const std::wstring& text) {
        destinationText = text;
        destination = destinationText.c_str();
    }
    WFMProgressCallback callback() const { return withCallback ? Progress::callback : nullptr; }
    int32_t signedResult() const { return static_cast<int32_t>(result); }
    uint32_t run() { return static_cast<Derived*>(this)->call(); }
};

/// Each row of the routes: the request line that `target` makes of it, and the names in the body.
template <class Args>
void expectUploadRoutes(const char* goodReply, const char* submitName,
                        const std::function<std::string(const PathRoute&)>& target) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({Reply::json(goodReply)});
        Args call(server);
        call.session = route.session();
        call.slaveID = route.slaveID;
        call.setDestination(route.path());
        EXPECT_EQ(call.run(), 0u);
        const Request request = server.onlyRequest();
        expectRequestLine(request, "POST " + target(route) + " HTTP/1.1");
        // A file can't go out without a name: the local one stands in.
        const std::string sentName = *route.sentName != '\0' ? route.sentName : "local.bin";
        EXPECT_EQ(request.body, uploadBody(request, route.sentName, "0123456789", submitName, sentName));
    }
}

/// Names go out as they are, whatever stands in them.
template <class Args>
void expectNamesAsTheyAre(const char* goodReply, const char* submitName) {
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"100%1 %2 %L1.txt", "100%1 %2 %L1.txt"},
        {L"say \"hi\";x='1'.txt", "say \"hi\";x='1'.txt"},
        {L"\x6587\x4EF6.txt", "\xE6\x96\x87\xE4\xBB\xB6.txt"},
        {L"\x1F600.txt", "\xF0\x9F\x98\x80.txt"},
        {L"a&b=c#d?e+f g~.txt", "a&b=c#d?e+f g~.txt"},
    };
    for (const auto& [name, bytes] : rows) {
        SCOPED_TRACE(bytes);
        RawServer server({Reply::json(goodReply)});
        Args call(server);
        call.setDestination(std::wstring(L"/home/") + name);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        const Request request = server.onlyRequest();
        EXPECT_EQ(request.body, uploadBody(request, bytes, "0123456789", submitName));
    }
}

/// A file that is missing, closed, gone or not open for reading is refused, with nothing sent or changed.
template <class Args>
void expectFileRefusals(const std::string& line) {
    LogCapture log;
    QFile missing(QStringLiteral("/no/such/file"));
    LocalFile closed;
    closed.file.close();
    LocalFile writing;
    writing.file.close();
    writing.file.open(QIODevice::WriteOnly);
    LocalFile gone;
    QFile::remove(gone.file.fileName());
    Args call;
    log.clear();
    for (QFile* file : {static_cast<QFile*>(nullptr), &missing, &closed.file, &writing.file, &gone.file}) {
        call.file = file;
        EXPECT_EQ(call.run(), 8u);
    }
    EXPECT_EQ(call.result, 0xABCDu);
    EXPECT_TRUE(call.progress.calls.empty());
    log.expectLines({line, line, line, line, line});
}

/// A pipe exists, is readable and open, but can't be sent: the transport's 202.
template <class Args>
void expectAPipeIs6(const std::vector<std::string>& lines) {
    TempDir folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    QFile writer(QString::fromStdString(path));
    ASSERT_TRUE(writer.open(QIODevice::ReadWrite | QIODevice::Unbuffered));  // so that opening doesn't wait
    QFile pipe(writer.fileName());
    ASSERT_TRUE(pipe.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    RawServer server({Reply::json(R"({"status":1,"success":"true"})")});
    Args call(server);
    call.file = &pipe;
    LogCapture log;
    EXPECT_EQ(call.run(), 6u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(server.connectionCount(), 0u);
    EXPECT_EQ(log.texts(), withPort(lines, server.port()));
}

/// The caller's file is neither read nor moved nor closed, and the whole of it is sent.
template <class Args>
void expectTheHandleIsLeftAlone(const char* goodReply, const char* submitName) {
    RawServer server({Reply::json(goodReply)});
    Args call(server);
    ASSERT_TRUE(call.local.file.seek(3));
    EXPECT_EQ(call.run(), 0u);
    EXPECT_TRUE(call.local.file.isOpen());
    EXPECT_EQ(call.local.file.pos(), 3);
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "0123456789", submitName));
}

/// Opening call, progress up to the last byte of the file, closing call.
inline std::vector<Progress::Call> callsOfASmallUpload(int64_t told, int64_t sent) {
    return {{told, 0, told, 0, 1, 1}, {told, sent, told, sent, 1, 0}, {told, sent, told, sent, 0, 0}};
}

/// What a callback's verdicts make of an upload.
struct VerdictRow {
    const char* what;
    uint32_t opening, during, closing;
    uint32_t dwStatus;
    int32_t result;
    size_t calls;
    std::vector<std::string> lines;
};

template <class Args>
void expectVerdicts(const char* reply, const std::vector<VerdictRow>& rows) {
    for (const VerdictRow& row : rows) {
        SCOPED_TRACE(row.what);
        // An answer would race with the end of the body.
        RawServer server({row.during != 0 ? Reply::stall() : Reply::json(reply)});
        Args call(server);
        answerWith(call.progress, row.opening, row.during, row.closing);
        LogCapture log;
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.signedResult(), row.result);
        EXPECT_EQ(call.progress.calls.size(), row.calls);
        EXPECT_EQ(log.texts(), withPort(row.lines, server.port()));
    }
}

/// Bytes that still have to go when the connection breaks make a transfer without a callback short.
template <class Args>
void expectABrokenUpload(bool withCallback, int32_t result) {
    RawServer server({Reply::resetDuringBody(1000)});
    Args call(server);
    call.local.makeHuge();
    call.withCallback = withCallback;
    EXPECT_EQ(call.run(), 2u);
    EXPECT_EQ(call.signedResult(), result);
    EXPECT_EQ(server.requestCount(), 1u);
}

}  // namespace wire
