#pragma once

#include <regex>

#include "nastest.h"

/// The text of an element of an XML reply, out of its CDATA sections; "(none)" if it isn't there.
inline std::string element(const NasReply& reply, const std::string& name) {
    const std::string begin = "<" + name + "><![CDATA[", end = "]]></" + name + ">";
    const auto from = reply.body.find(begin);
    if (from == std::string::npos) return "(none)";
    std::string text =
        reply.body.substr(from + begin.size(), reply.body.find(end, from) - from - begin.size());
    const std::string joint = "]]><![CDATA[";
    for (auto at = text.find(joint); at != std::string::npos; at = text.find(joint)) {
        text.erase(at, joint.size());
    }
    return text;
}

/// A server with accounts that ask for more than a password: anna has a code and a question, ben gets mail,
/// carl has a question, and dora only her password.
class SecondStepTest : public testing::Test {
protected:
    explicit SecondStepTest(std::vector<std::string> more = {"--try-limit", "3"})
        : nas(options(mails.string(), std::move(more))) {}

    /// All that a URL may hold unencoded.
    static constexpr const char* kCode = "a!$'()*+,;=:@/?[]-._~";

    static std::string authLogin(const std::string& query) { return "/cgi-bin/authLogin.cgi?" + query; }
    static std::string codeQuery(const std::string& code) {
        return "security_code=" + code + "&serviceKey=1&remme=1";
    }
    static std::string answerQuery(const std::string& answer) {
        return "security_answer=" + answer + "&serviceKey=1&remme=1";
    }
    static inline const std::string kQuestionQuery = "get_question=1&serviceKey=1&q_lang=";
    static inline const std::string kMailQuery = "send_mail=1&&serviceKey=1";

    NasReply get(const std::string& target) { return exchange(nas.port(), NasRequest::get(target)); }
    NasReply run(const NasRequest& request) { return exchange(nas.port(), request); }
    NasReply auth(const std::string& query, const std::string& user, const std::string& password) {
        return run(NasRequest::form(authLogin(query), {{"user", user}, {"pwd", base64(password)}}));
    }
    NasReply managerLogin(const std::string& user, const std::string& password) {
        return run(loginRequest(user, password, "/cgi-bin/filemanager/wfm2Login.cgi"));
    }
    /// Of a listing of the home with this session.
    int listStatus(const std::string& sid, const std::string& cgi = "filemanager/utilRequest.cgi") {
        return get("/cgi-bin/" + cgi + "?func=get_list&sid=" + sid +
                   "&is_iso=0&list_mode=all&path=%2Fhome&dir=DESC&limit=10&sort=mt&start=0&no_sort=0")
            .status();
    }

    /// The mails so far, in their order.
    std::vector<std::string> mailTexts() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(mails.path())) {
            if (entry.path().extension() == ".eml") names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        std::vector<std::string> texts;
        for (const std::string& name : names) texts.push_back(mails.read(name));
        return texts;
    }
    static std::string codeIn(const std::string& mail) {
        std::smatch found;
        return std::regex_search(mail, found, std::regex("Emergency code: ([0-9]{6})\r\n")) ? found[1].str()
                                                                                            : std::string();
    }

    TempDir mails;
    Nas nas;

private:
    static Nas::Options options(const std::string& mailFolder, std::vector<std::string> more) {
        Nas::Options result;
        result.users = {"anna:secret:admin", "ben:hidden", "carl:third", "dora:plain"};
        result.arguments = {"--second-factor", "anna:code=" + std::string(kCode),
                            "--second-factor", "anna:question=2:Whose <pet> & ]]> car?:Rex (the first)",
                            "--second-factor", "ben:mail=ben@example.org",
                            "--second-factor", "carl:question=1:First school?:Hill \xc3\xb6st",
                            "--question-text", "1:GER:Erste Schule?",
                            "--mail-dir",      mailFolder};
        result.arguments.insert(result.arguments.end(), more.begin(), more.end());
        return result;
    }
};
