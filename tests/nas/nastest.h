#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "nasclient.h"
#include "support/nas.h"

/// A server with anna (administrator, owner of a team folder) and ben, both logged in.
class NasTest : public testing::Test {
protected:
    static Nas::Options options(std::vector<std::string> more = {}) {
        Nas::Options result;
        result.arguments = {"--team", "anna:/home/Plans:ben", "--team", "anna:/home/Rules:ben:ro"};
        result.arguments.insert(result.arguments.end(), more.begin(), more.end());
        return result;
    }

    explicit NasTest(std::vector<std::string> more = {}) : nas(options(std::move(more))) {
        std::filesystem::create_directory(nas.folder().path() / "Public");
        sid = loginSid(nas.port(), "anna", "secret");
        benSid = loginSid(nas.port(), "ben", "hidden");
    }

    static std::string cgi(const std::string& query) { return "/cgi-bin/torvi/torvisrv.cgi?" + query; }
    static std::string manager(const std::string& query) {
        return "/cgi-bin/filemanager/utilRequest.cgi?" + query;
    }
    static std::string listQuery(const std::string& sid, const std::string& path, int limit = 100,
                                 int start = 0, const std::string& type = "", bool sort = true) {
        return "func=get_list&sid=" + sid + "&is_iso=0&list_mode=all&path=" + encoded(path) +
               "&dir=DESC&limit=" + std::to_string(limit) + "&sort=mt&start=" + std::to_string(start) + type +
               "&no_sort=" + (sort ? "0" : "1");
    }
    static std::string statQuery(const std::string& sid, const std::string& path, const std::string& name,
                                 const std::string& more = "") {
        return "func=stat&path=" + encoded(path) + "&file_total=1&file_name=" + encoded(name) + more +
               "&sid=" + sid;
    }
    static std::string uploadQuery(const std::string& sid, const std::string& path, int overwrite = 1) {
        return "func=upload&sid=" + sid + "&dest_path=" + encoded(path) +
               "&overwrite=" + std::to_string(overwrite);
    }
    static std::string moveQuery(const std::string& sid, const std::string& path, long long mtime,
                                 long long size, int overwrite = 1, const std::string& rename = "") {
        return "func=upload_and_move&sid=" + sid + "&settime=1&mtime=" + std::to_string(mtime) +
               "&filesize=" + std::to_string(size) + "&dest_path=" + encoded(path) +
               "&overwrite=" + std::to_string(overwrite) +
               (rename.empty() ? "" : "&rename_dest=" + encoded(rename)) +
               "&upload_root_dir=" + encoded("/home");
    }
    static std::vector<std::pair<std::string, std::string>> downloadForm(const std::string& sid,
                                                                         const std::string& path,
                                                                         const std::string& name) {
        return {{"isfolder", "0"},
                {"sid", sid},
                {"source_total", "1"},
                {"source_path", path},
                {"source_file", name}};
    }

    NasReply get(const std::string& target) { return exchange(nas.port(), NasRequest::get(target)); }
    NasReply run(const NasRequest& request, bool tls = false) {
        return exchange(tls ? nas.tlsPort() : nas.port(), request, tls);
    }
    /// A short call with a form; the session id stays in the query.
    NasReply post(const std::string& target, const std::vector<std::pair<std::string, std::string>>& fields) {
        return run(NasRequest::form(target, fields));
    }
    NasReply put(const std::string& path, const std::string& name, const std::string& content,
                 int overwrite = 1) {
        return run(NasRequest::upload(cgi(uploadQuery(sid, path, overwrite)), name, content));
    }
    NasReply fetch(const std::string& path, const std::string& name, const std::string& offset = "") {
        auto form = downloadForm(sid, path, name);
        if (!offset.empty()) form.emplace_back("offset", offset);
        return run(NasRequest::download(cgi("func=download"), form));
    }

    std::string write(const std::string& name, const std::string& content, long mtime = 0) {
        const std::string path = nas.folder().write(name, content);
        if (mtime != 0) setTime(path, mtime);
        return path;
    }
    static void setTime(const std::string& path, long mtime) {
        const timespec times[2] = {{mtime, 0}, {mtime, 0}};
        ASSERT_EQ(0, ::utimensat(AT_FDCWD, path.c_str(), times, 0));
    }
    static std::vector<std::string> names(const Json::Value& datas) {
        std::vector<std::string> result;
        for (const Json::Value& entry : datas) result.push_back(entry["filename"].asString());
        return result;
    }
    /// Every entry below a folder of the server, hidden ones too.
    std::vector<std::string> onDisk(const std::string& folder) const {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(nas.folder().path() / folder)) {
            result.push_back(entry.path().filename().string());
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    /// Bytes that look like nothing, the same for the same seed.
    static std::string noise(std::size_t length, unsigned seed = 1) {
        std::string text(length, '\0');
        for (char& c : text) c = static_cast<char>((seed = seed * 1103515245 + 12345) >> 16);
        return text;
    }
    /// Of the server so far, in KiB.
    long peakMemory() const {
        std::ifstream status("/proc/" + std::to_string(nas.pid()) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("VmHWM:", 0) == 0) return std::atol(line.c_str() + 6);
        }
        return -1;
    }
    bool there(const std::string& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(nas.folder().path() / name));
    }
    static std::int64_t timeOf(const std::string& path) {
        struct stat info {};
        EXPECT_EQ(0, ::stat(path.c_str(), &info)) << path;
        return info.st_mtim.tv_sec;
    }

    Nas nas;
    std::string sid, benSid;
};
