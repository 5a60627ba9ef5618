#pragma once

#include <thread>

#include "nastest.h"

using FormFields = std::vector<std::pair<std::string, std::string>>;

/// Anna has a folder Photos to share; ben and carl are there to receive it.
class NasSharing : public NasTest {
protected:
    explicit NasSharing(std::vector<std::string> more = {}) : NasTest(withCarl(std::move(more))) {
        std::filesystem::create_directory(nas.folder().path() / "homes/anna/Photos");
        carlSid = loginSid(nas.port(), "carl", "third");
    }

    static std::vector<std::string> withCarl(std::vector<std::string> more) {
        more.insert(more.end(), {"--user", "carl:third"});
        return more;
    }
    static FormFields shareForm(const std::string& session, const std::string& file,
                                const std::vector<std::string>& targets) {
        FormFields form = {{"sid", session}, {"target_number", std::to_string(targets.size())}};
        for (std::size_t i = 0; i < targets.size(); ++i) {
            form.emplace_back("target_name" + std::to_string(i), targets[i]);
        }
        form.emplace_back("file", file);
        return form;
    }
    NasReply shareTo(const std::string& session, const std::string& file,
                     const std::vector<std::string>& targets) {
        return post(cgi("func=nubo_team_folder_share_to"), shareForm(session, file, targets));
    }
    /// Waits for the end of a job that a reply names, and tells whether it went well.
    bool finished(const NasReply& reply, const std::string& session) {
        EXPECT_EQ(1, reply.status()) << reply.body;
        EXPECT_TRUE(reply.json()["pid"].isString()) << reply.body;
        while (true) {
            const Json::Value now = progress(reply, session);
            if (now["status"].asInt() != 1 || now["copying"].asInt() != 0) return false;
            if (now["percent"].asInt() == 100) return true;
            std::this_thread::yield();
        }
    }
    Json::Value progress(const NasReply& reply, const std::string& session) {
        return get(cgi("func=nubo_get_progress&sid=" + session + "&pid=" + reply.json()["pid"].asString()))
            .json();
    }
    /// Shares Photos, or another folder, as a whole.
    void share(const std::vector<std::string>& targets, const std::string& file = "home/Photos") {
        ASSERT_TRUE(finished(shareTo(sid, file, targets), sid));
    }

    static std::string foldersQuery(const std::string& session, int type, const std::string& more = "",
                                    const std::string& window = "&lower=0&upper=-1") {
        return "func=nubo_team_folder_get_list&sid=" + session +
               "&event_status=0&event_type=" + std::to_string(type) + window + more;
    }
    /// The team folder of that name; null if there is none.
    Json::Value folder(const std::string& session, int type, const std::string& name) {
        const Json::Value reply = get(cgi(foldersQuery(session, type))).json();
        EXPECT_EQ(0, reply.get("status", -1000).asInt()) << reply.toStyledString();
        return named(reply["team_folder"], "name", name);
    }
    static std::string eventsQuery(const std::string& session, int type) {
        return "func=nubo_get_my_event&sid=" + session + "&event_type=" + std::to_string(type) +
               "&lower=0&upper=-1";
    }
    /// The event of that file; null if there is none.
    Json::Value event(const std::string& session, int type, const std::string& file) {
        const Json::Value reply = get(manager(eventsQuery(session, type))).json();
        EXPECT_EQ(1, reply.get("status", -1000).asInt()) << reply.toStyledString();
        return named(reply["event"], "file", file);
    }
    static Json::Value named(const Json::Value& items, const std::string& key, const std::string& value) {
        for (const Json::Value& item : items) {
            if (item[key].asString() == value) return item;
        }
        return {};
    }
    std::string photosId() { return folder(sid, 4, "Photos")["share_id"].asString(); }

    /// A call of the sync service on a share, and one of the file manager on an event.
    NasReply byShare(const std::string& func, const std::string& session, const std::string& id,
                     const std::string& more = "") {
        return get(cgi("func=" + func + "&sid=" + session + more + "&share_id=" + encoded(id)));
    }
    NasReply byEvent(const std::string& func, const std::string& session, int id) {
        return get(manager("func=" + func + "&sid=" + session + "&event_id=" + std::to_string(id)));
    }
    NasReply accept(const std::string& session, const std::string& id, const std::string& display) {
        return byShare("nubo_team_folder_accept_share", session, id, "&display_name=" + encoded(display));
    }
    /// Photos is shared and accepted.
    void shareWithBen() {
        share({"ben"});
        ASSERT_EQ(0, accept(benSid, photosId(), "Pictures").status());
    }
    /// The status of a stat of the team folder itself.
    int reach(const std::string& session, const std::string& team = "vtf://anna-Photos") {
        return get(cgi(listQuery(session, team))).status();
    }

    std::string carlSid;
};
