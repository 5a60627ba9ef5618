#include <sys/stat.h>

#include <memory>
#include <vector>

#include "calls.h"

namespace nas {

namespace {

constexpr size_t kBlock = size_t{256} * 1024;

Answer download(Service& service, Request& request, httplib::Response& response) {
    Fields form = readForm(request);
    const Shape whole = {"isfolder=0", "sid", "source_total=1", "source_path", "source_file"};
    Shape tail = whole;
    tail.push_back("offset");
    requireShape(form, {whole, tail}, "form");
    const int64_t offset = hasField(form, "offset") ? std::max<int64_t>(0, numberField(form, "offset")) : 0;

    const User& user = service.authenticate(request, field(form, "sid"));
    Folder folder = service.tree().open(user, field(form, "source_path"));
    return sendFile(service.tree().openFile(folder, field(form, "source_file")), offset, response);
}

}  // namespace

Answer sendFile(Fd opened, int64_t offset, httplib::Response& response) {
    auto file = std::make_shared<Fd>(std::move(opened));
    struct stat info {};
    if (::fstat(file->get(), &info) != 0) {
        throw errnoError(errno, "size");
    }
    if (offset > info.st_size) {
        throw StatusError(Status::Failed, "offset " + std::to_string(offset) + " lies behind the end");
    }
    const auto length = static_cast<size_t>(info.st_size - offset);
    Answer answer;
    answer.direct = true;
    answer.note = std::to_string(length) + " bytes from " + std::to_string(offset);
    const char* type = "application/octet-stream";
    if (length == 0) {
        response.set_content("", type);
        return answer;
    }
    auto block = std::make_shared<std::vector<char>>(std::min(kBlock, length));
    response.set_content_provider(length, type, [=](size_t at, size_t left, httplib::DataSink& sink) {
        ssize_t n = ::pread(file->get(), block->data(), std::min(block->size(), left),
                            offset + static_cast<off_t>(at));
        // A file that shrank meanwhile can't keep the promise: the connection ends.
        return n > 0 && sink.write(block->data(), static_cast<size_t>(n));
    });
    return answer;
}

void addDownloadCalls(std::vector<Call>& calls) {
    calls.push_back(
        {"download", kBothCgis, "POST", BodyKind::Form, false, {{"func=download"}}, download, {}});
}

}  // namespace nas
