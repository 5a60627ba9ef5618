#include <QFile>
#include <memory>
#include <stdexcept>

#include "lib_support.h"

namespace e2e {

namespace {

constexpr Numbers kNoID{0, -1};

void openOrThrow(QFile& file) {
    if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("the local file can't be opened");
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Sliced& sliced) {
    return out << sliced.numbers << (sliced.resume ? ", bResume" : "")
               << (sliced.deleteID ? ", bDeleteUploadID" : "");
}

Numbers Client::uploadID(std::wstring& id, const std::wstring& folder, const std::wstring& root) const {
    wchar_t buffer[261] = {};
    std::uint32_t capacity = 260, detail = 0xABCD;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetUploadID(context(), kServer, m_port, nullptr, &capacity, buffer, root.c_str(),
                              folder.c_str(), nullptr, result, &detail);
    });
    id = buffer;
    // The detail says whether there is an id, and nothing else does.
    const bool isThere = detail == 0 && !id.empty();
    return isThere == (numbers == kDone) ? numbers : kNoID;
}

Numbers Client::heldBytes(const std::wstring& id, std::int64_t& size, const std::wstring& root,
                          const std::wstring& node) const {
    size = -1;
    return numbersOf([&](std::uint32_t* result) {
        return WFMTorvGetChunkFileSize(context(), kServer, m_port, node.c_str(), id.c_str(), root.c_str(),
                                       nullptr, &size, result);
    });
}

Numbers Client::forgetUpload(const std::wstring& id, const std::wstring& root) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMTorviDeleteChunkFile(context(), kServer, m_port, nullptr, id.c_str(), root.c_str(), nullptr,
                                       result);
    });
}

Sliced Client::send(const Slice& slice) const {
    const TempDir folder;
    const std::string path = slice.local.empty() ? folder.write("local name.bin", slice.bytes) : slice.local;
    QFile file(QString::fromStdString(path));
    openOrThrow(file);
    // The opposite of what a call begins with.
    Sliced sliced{{}, true, false};
    sliced.numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviChunckUploadwithHandle(
            context(), kServer, m_port, nullptr, &file, slice.id.c_str(), slice.root.c_str(),
            slice.to.c_str(), slice.rename.c_str(), slice.offset, file.size(), slice.time, slice.data,
            slice.callback, slice.overwrite, slice.stop, &sliced.resume, &sliced.deleteID, result);
    });
    return sliced;
}

Numbers Client::sendBatch(const std::wstring& folder, std::vector<BatchFile>& files) const {
    const TempDir local;
    std::vector<std::unique_ptr<QFile>> opened;
    std::vector<std::unique_ptr<_WFM_MULTI_PART_FILE_INFO>> records;
    std::vector<_WFM_MULTI_PART_FILE_INFO*> list;
    for (const BatchFile& file : files) {
        const std::string path = local.write(std::to_string(records.size()), file.bytes);
        opened.push_back(std::make_unique<QFile>(QString::fromStdString(path)));
        openOrThrow(*opened.back());
        records.push_back(std::make_unique<_WFM_MULTI_PART_FILE_INFO>());
        _WFM_MULTI_PART_FILE_INFO& record = *records.back();
        record.nResult = file.result;
        record.pFile = opened.back().get();
        file.name.copy(record.szName, std::size(record.szName) - 1);
        record.llSize = static_cast<std::int64_t>(file.bytes.size());
        record.llModifiedTime = file.time;
        list.push_back(&record);
    }
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviUploadandMoveMultiPartwithHandle(
            context(), kServer, m_port, nullptr, list.data(), static_cast<std::int32_t>(list.size()),
            folder.c_str(), nullptr, nullptr, nullptr, nullptr, result);
    });
    for (std::size_t i = 0; i < files.size(); ++i) files[i].result = records[i]->nResult;
    return numbers;
}

}  // namespace e2e
