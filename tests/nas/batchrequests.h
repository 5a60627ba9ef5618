#pragma once

#include <string>
#include <utility>
#include <vector>

#include "nasclient.h"

/// Files in one body, as upload.php takes them.
struct BatchRequests {
    struct File {
        File(std::string fileName, std::string bytes, std::string path = "/Public/",
             std::string time = "1000000001")
            : name(std::move(fileName)),
              content(std::move(bytes)),
              folder(std::move(path)),
              mtime(std::move(time)) {}

        std::string name, content, folder, mtime;
    };

    static std::string field(const std::string& key, const std::string& value) {
        return std::string("--") + kBoundary + "\r\nContent-Disposition: form-data; name=\"" + key +
               "\"\r\n\r\n" + value + "\r\n";
    }
    static std::string part(const File& file) {
        return std::string("--") + kBoundary +
               "\r\nContent-Disposition: form-data; name=\"files[]\"; filename=\"" + file.name +
               "\"\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: binary\r\n\r\n" +
               file.content + "\r\n";
    }
    static std::string body(const std::string& sid, const std::vector<File>& files) {
        std::string text = field("sid", sid);
        for (const File& file : files) text += field("dest_path[]", file.folder);
        for (const File& file : files) text += field("mtime[]", file.mtime);
        for (const File& file : files) text += part(file);
        return text + "--" + kBoundary + "--";
    }
    static NasRequest requestOf(const std::string& body,
                                const std::string& target = "/cgi-bin/torvi/upload.php") {
        NasRequest request = NasRequest::get(target);
        request.method = "POST";
        request.body = body;
        request.set("Content-Type", std::string("multipart/form-data; boundary=") + kBoundary);
        request.set("Content-Length", std::to_string(body.size()));
        return request;
    }
};
