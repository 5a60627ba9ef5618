#include <gmock/gmock.h>

#include "nastest.h"

/// A folder beside the root holds a secret that no request may read, replace or reveal.
class NasEscape : public NasTest, public testing::WithParamInterface<const char*> {
protected:
    NasEscape() {
        outside.write("secret", "treasure");
        outside.write("sub/secret", "treasure");
        const auto root = nas.folder().path();
        for (const char* place : {"Public", "homes/anna", "homes/anna/Plans"}) {
            std::filesystem::create_directory_symlink(outside.path(), root / place / "door");
            std::filesystem::create_symlink(outside.path() / "secret", root / place / "window");
            // Out by steps, not by an absolute path.
            std::filesystem::create_directory_symlink(std::filesystem::relative(outside.path(), root / place),
                                                      root / place / "stairs");
        }
        std::filesystem::create_directory_symlink(outside.path(), root / "gate");
    }
    ~NasEscape() override {
        EXPECT_EQ("treasure", outside.read("secret"));
        EXPECT_EQ("treasure", outside.read("sub/secret"));
        EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator(outside.path()),
                                   std::filesystem::directory_iterator()));
    }
    /// The secret's folder as seen from the root, with enough steps up for any start.
    std::string up() const { return "/../../../../../../../../.." + outside.string(); }

    NasReply putBatch(const std::string& path, const std::string& name) {
        const std::string delimiter = std::string("--") + kBoundary;
        const std::string field = delimiter + "\r\nContent-Disposition: form-data; name=\"";
        NasRequest request = NasRequest::get("/cgi-bin/torvi/upload.php");
        request.method = "POST";
        request.body =
            field + "sid\"\r\n\r\n" + sid + "\r\n" + field + "dest_path[]\"\r\n\r\n" + path + "\r\n" + field +
            "mtime[]\"\r\n\r\n1\r\n" + field + "files[]\"; filename=\"" + name +
            "\"\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: binary\r\n\r\n" +
            "mine\r\n" + delimiter + "--";
        request.set("Content-Type", std::string("multipart/form-data; boundary=") + kBoundary);
        request.set("Content-Length", std::to_string(request.body.size()));
        return run(request);
    }

    TempDir outside;
};

namespace {

const char* const kWays[] = {"/Public/..",
                             "/Public/../homes/ben",
                             "/home/..",
                             "/..",
                             "/../../../../../../../../etc",
                             "/Public/./..",
                             "/Public/door",
                             "/Public/door/sub",
                             "/Public/stairs",
                             "/home/door",
                             "/gate",
                             "/gate/sub",
                             "vtf://anna-Plans/..",
                             "vtf://anna-Plans/door",
                             "vtf://anna-Plans/stairs",
                             "vtf://../Public",
                             "vtf://..",
                             "vtf://"};

}  // namespace

TEST_P(NasEscape, NoCallPasses) {
    const std::string path = GetParam();
    const auto refused = [&](const NasReply& reply, const char* what) {
        EXPECT_EQ(200, reply.http) << what;
        EXPECT_THAT(reply.status(), testing::AnyOf(4, 5, 12)) << what << ": " << reply.body;
        EXPECT_THAT(reply.body, testing::Not(testing::HasSubstr("treasure"))) << what;
        EXPECT_FALSE(reply.json().isMember("datas")) << what;
    };
    refused(get(cgi(listQuery(sid, path))), "list");
    refused(get(cgi("func=get_tree&sid=" + sid + "&is_iso=0&node=" + encoded(path))), "tree");
    refused(get(cgi(statQuery(sid, path, "secret"))), "stat");
    refused(get(cgi("func=stat&sid=" + sid + "&settime=1&mtime=1&path=" + encoded(path) +
                    "&file_total=1&file_name=secret")),
            "settime");
    refused(get(cgi("func=properties&sid=" + sid + "&path=" + encoded(path) + "&total=1&name=secret")),
            "properties");
    refused(get(cgi("func=nubo_check_permission&sid=" + sid + "&path=" + encoded(path) +
                    "&file_name=secret&check_upload=1")),
            "permission");
    refused(put(path, "secret", "mine"), "upload");
    refused(run(NasRequest::upload(cgi(moveQuery(sid, path, 1, 4)), "secret", "mine", "upload_and_move")),
            "move");
    refused(run(NasRequest::upload(cgi(moveQuery(sid, "/Public", 1, 4, 1, path + "/secret")), "a", "mine",
                                   "upload_and_move")),
            "rename");
    refused(fetch(path, "secret"), "download");
    refused(get(cgi("func=createdir&sid=" + sid + "&dest_folder=x&dest_path=" + encoded(path))), "createdir");
    refused(
        post(cgi("func=delete&sid=" + sid), {{"file_name", "secret"}, {"file_total", "1"}, {"path", path}}),
        "delete");
    refused(
        post(cgi("func=rename&sid=" + sid), {{"path", path}, {"source_name", "secret"}, {"dest_name", "x"}}),
        "rename in place");
    write("Public/mine", "mine");
    const auto carried = [&](const std::string& from, const std::string& name, const std::string& to) {
        return post(cgi("func=move&sid=" + sid + "&no_fork=1"), {{"source_file", name},
                                                                 {"source_total", "1"},
                                                                 {"source_path", from},
                                                                 {"dest_path", to},
                                                                 {"mode", "0"}});
    };
    refused(carried(path, "secret", "/Public"), "move out of it");
    refused(carried("/Public", "mine", path), "move into it");
    refused(get(cgi("func=trash_recovery&sid=" + sid +
                    "&source_file=secret&mode=1&source_total=1&source_path=" + encoded(path))),
            "recovery");
    EXPECT_TRUE(there("Public/mine"));
    const auto begin = [&](const std::string& root) {
        return get(cgi("func=start_chunked_upload&sid=" + sid + "&upload_root_dir=" + encoded(root)));
    };
    EXPECT_THAT(begin(path).status(), testing::AnyOf(4, 7));
    const std::string id = begin("/home").json()["upload_id"].asString();
    const auto slice = [&](const std::string& folder, const std::string& rename) {
        return run(NasRequest::upload(
            cgi("func=chunked_upload&sid=" + sid + "&upload_id=" + id +
                "&settime=1&mtime=1&offset=0&filesize=4&dest_path=" + encoded(folder) + "&overwrite=1" +
                (rename.empty() ? "" : "&rename_dest=" + encoded(rename)) + "&upload_root_dir=%2Fhome"),
            "secret", "mine", "chunked_upload"));
    };
    refused(slice(path, ""), "slice");
    refused(slice("/Public", path + "/secret"), "slice with a new name");
    refused(get(cgi("func=versioning_lock&create_version=1&sid=" + sid + "&source_path=" + encoded(path) +
                    "&source_file=secret")),
            "lock");
    EXPECT_THAT(putBatch(path, "secret").json()["files"][0]["status"].asString(),
                testing::AnyOf("4", "5", "12"));
}

INSTANTIATE_TEST_SUITE_P(Ways, NasEscape, testing::ValuesIn(kWays),
                         [](const auto& way) { return "Way" + std::to_string(way.index); });

using NasEscapeByName = NasEscape;

TEST_F(NasEscapeByName, NamesDoNotStepSideways) {
    for (const std::string& name :
         {std::string("../secret"), std::string(".."), std::string("."),
          "../../../../../.." + outside.string() + "/secret", outside.string() + "/secret",
          std::string("door/secret"), std::string("window")}) {
        EXPECT_THAT(get(cgi(statQuery(sid, "/Public", name))).status(), testing::AnyOf(4, 12)) << name;
        EXPECT_THAT(fetch("/Public", name).status(), testing::AnyOf(4, 12)) << name;
        if (name != "window") {
            EXPECT_THAT(put("/Public", name, "mine").status(), testing::AnyOf(4, 12)) << name;
        }
    }
}

TEST_F(NasEscapeByName, NamesDoNotStepSidewaysInChanges) {
    write("Public/a", "1");
    for (const std::string& name :
         {std::string("../secret"), std::string(".."), std::string("."), outside.string() + "/secret",
          std::string("door/secret"), std::string("window"), std::string("door")}) {
        EXPECT_THAT(post(cgi("func=delete&sid=" + sid),
                         {{"file_name", name}, {"file_total", "1"}, {"path", "/Public"}})
                        .status(),
                    testing::AnyOf(4, 12))
            << name;
        for (const auto& [from, to] :
             {std::pair(name, std::string("b")), std::pair(std::string("a"), name)}) {
            EXPECT_THAT(post(cgi("func=rename&sid=" + sid),
                             {{"path", "/Public"}, {"source_name", from}, {"dest_name", to}})
                            .status(),
                        testing::AnyOf(4, 12))
                << from << " to " << to;
        }
        EXPECT_THAT(post(cgi("func=move&sid=" + sid + "&no_fork=0"), {{"source_file", name},
                                                                      {"source_total", "1"},
                                                                      {"source_path", "/Public"},
                                                                      {"dest_path", "/home"},
                                                                      {"mode", "0"}})
                        .status(),
                    testing::AnyOf(4, 12))
            << name;
        EXPECT_THAT(
            get(cgi("func=createdir&sid=" + sid + "&dest_folder=" + encoded(name) + "&dest_path=%2FPublic"))
                .status(),
            testing::AnyOf(4, 12))
            << name;
    }
    EXPECT_THAT(onDisk("Public"), testing::ElementsAre("a", "door", "stairs", "window"));
}

TEST_F(NasEscapeByName, DeletedFolderTakesItsLinksAlongAndNotWhatTheyPointTo) {
    std::filesystem::create_directory(nas.folder().path() / "Public/d");
    std::filesystem::create_directory_symlink(outside.path(), nas.folder().path() / "Public/d/door");
    EXPECT_EQ(
        1, post(cgi("func=delete&sid=" + sid), {{"file_name", "d"}, {"file_total", "1"}, {"path", "/Public"}})
               .status());
    EXPECT_FALSE(there("Public/d"));
}

TEST_F(NasEscapeByName, RecycleFolderThatIsALinkTakesNothing) {
    write("homes/anna/a", "1");
    std::filesystem::create_directory_symlink(outside.path(), nas.folder().path() / "homes/anna/@Recycle");
    EXPECT_EQ(
        4, post(cgi("func=delete&sid=" + sid), {{"file_name", "a"}, {"file_total", "1"}, {"path", "/home"}})
               .status());
    EXPECT_TRUE(there("homes/anna/a"));
}

TEST_F(NasEscapeByName, AbsolutePathOfTheMachineIsAPathOfTheTree) {
    EXPECT_EQ(5, get(cgi(listQuery(sid, outside.string()))).status());
    EXPECT_EQ(4, get(cgi(listQuery(sid, up()))).status());
}

TEST_F(NasEscapeByName, UploadOntoALinkReplacesNothingBehindIt) {
    EXPECT_EQ(4, put("/Public", "window", "mine").status());
    EXPECT_TRUE(std::filesystem::is_symlink(nas.folder().path() / "Public/window"));
}

TEST_F(NasEscapeByName, LinksAreNeitherLockedNorReplacedInABatch) {
    for (const char* name : {"window", "door", "../secret", ".."}) {
        EXPECT_THAT(putBatch("/Public", name).json()["files"][0]["status"].asString(),
                    testing::AnyOf("4", "12"))
            << name;
        EXPECT_THAT(get(cgi("func=versioning_lock&create_version=1&sid=" + sid +
                            "&source_path=%2FPublic&source_file=" + encoded(name)))
                        .status(),
                    testing::AnyOf(4, 12))
            << name;
    }
    EXPECT_TRUE(std::filesystem::is_symlink(nas.folder().path() / "Public/window"));
}

TEST_F(NasEscapeByName, UploadRootThatLeadsOutIsRefused) {
    for (const char* place : {"/Public/door", "/Public/..", "vtf://anna-Plans/stairs"}) {
        EXPECT_EQ(4, run(NasRequest::upload(cgi("func=upload_and_move&sid=" + sid +
                                                "&settime=1&mtime=1&filesize=1&dest_path=%2FPublic"
                                                "&overwrite=1&upload_root_dir=" +
                                                encoded(place)),
                                            "a", "1", "upload_and_move"))
                         .status())
            << place;
    }
}

TEST_F(NasEscapeByName, NulIsRefusedWhereverItStands) {
    for (const std::string& target :
         {cgi("func=stat&path=%2FPublic%00%2F..&file_total=1&file_name=a&sid=" + sid),
          cgi("func=stat&path=%2FPublic&file_total=1&file_name=a%00b&sid=" + sid),
          cgi("func=get_list%00&sid=" + sid)}) {
        const NasReply reply = get(target);
        EXPECT_EQ(400, reply.http);
        EXPECT_THAT(reply.body, testing::HasSubstr("NUL"));
    }
    EXPECT_EQ(400,
              run(NasRequest::upload(cgi(uploadQuery(sid, "/Public")), std::string("a\0b", 3), "1")).http);
    EXPECT_EQ(400, post(cgi("func=delete&sid=" + sid),
                        {{"file_name", std::string("a\0b", 3)}, {"file_total", "1"}, {"path", "/Public"}})
                       .http);
    NasRequest form = NasRequest::download(cgi("func=download"), downloadForm(sid, "/Public", "a"));
    form.body += "%00";
    form.set("Content-Length", std::to_string(form.body.size()));
    EXPECT_EQ(400, run(form).http);
}

TEST_F(NasEscapeByName, UnfinishedUploadsOfOthersAreOutOfReach) {
    write("Public/.torvi-nas.0123456789abcdef", "half");
    EXPECT_EQ(4, fetch("/Public", ".torvi-nas.0123456789abcdef").status());
    EXPECT_EQ(4, get(cgi(statQuery(sid, "/Public", ".torvi-nas.0123456789abcdef"))).status());
    EXPECT_EQ(4, put("/Public", ".torvi-nas.mine", "x").status());
}
