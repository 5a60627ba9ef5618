#include "calls.h"
#include "login.h"

namespace nas {

namespace {

// Told as "errorValue".
enum class AuthError { None = 0, Password = 1, SecondStep = 2, Locked = 3, NoSuchStep = 4 };

using Elements = std::vector<std::pair<std::string, std::string>>;

std::string cdata(std::string text) {
    const std::string end = "]]>";
    // A text may hold the end's own mark: it is cut there, into two sections.
    for (size_t at = 0; (at = text.find(end, at)) != std::string::npos; at += 14) {
        text.replace(at, end.size(), "]]]]><![CDATA[>");
    }
    return "<![CDATA[" + text + end;
}

Answer xmlAnswer(httplib::Response& response, const Elements& elements, const std::string& note = {}) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<authLogin version=\"1.0\">\n";
    for (const auto& [name, value] : elements) {
        text += "<" + name + ">" + cdata(value) + "</" + name + ">\n";
    }
    response.set_content(text + "</authLogin>\n", "text/xml");
    return {nullptr, true, note};
}

std::string text(AuthError error) {
    return std::to_string(static_cast<int>(error));
}

void addTries(Elements& elements, Service& service, const User& user) {
    elements.emplace_back("emergency_try_limit", std::to_string(service.secondSteps().limit()));
    elements.emplace_back("emergency_try_count", std::to_string(service.secondSteps().count(user)));
}

// The user of the form, or none for a wrong password.
const User* userOf(Service& service, Request& request) {
    if (request.http.has_header("X-Forwarded-For")) {
        throw Refusal("header X-Forwarded-For is not in the protocol here");
    }
    Fields form = readForm(request);
    requireShape(form, {{"user", "pwd"}}, "form");
    return checkPassword(service, request, form);
}

Answer wrongPassword(httplib::Response& response) {
    return xmlAnswer(response, {{"authPassed", "0"}, {"errorValue", text(AuthError::Password)}},
                     "wrong user or password");
}

Answer refusedStep(Service& service, httplib::Response& response, const User& user) {
    const bool locked = service.secondSteps().locked(user);
    Elements elements = {{"authPassed", "0"},
                         {"errorValue", text(locked ? AuthError::Locked : AuthError::SecondStep)},
                         {"need_2sv", "1"},
                         {"lost_phone", std::to_string(static_cast<int>(user.second.step))}};
    addTries(elements, service, user);
    return xmlAnswer(response, elements, locked ? "no tries are left" : "wrong second step");
}

Answer secondStep(Service& service, Request& request, httplib::Response& response) {
    const auto& [kind, typed] = request.query.front();
    if (typed.empty()) {
        throw Refusal("query key \"" + kind + "\" is empty");
    }
    const User* user = userOf(service, request);
    if (!user) {
        return wrongPassword(response);
    }
    SecondSteps& steps = service.secondSteps();
    const bool right = !user->second.wanted() || (kind == "security_code" ? steps.takeCode(*user, typed)
                                                                          : steps.takeAnswer(*user, typed));
    if (!right) {
        return refusedStep(service, response, *user);
    }
    const std::string sid = service.sessions().open(user->name);
    return xmlAnswer(response, {{"authPassed", "1"},
                                {"errorValue", text(AuthError::None)},
                                {"authSid", sid},
                                {"ntoken", sid},
                                {"servername", service.options().serverName},
                                {"isAdmin", user->admin ? "1" : "0"}});
}

Answer question(Service& service, Request& request, httplib::Response& response) {
    const User* user = userOf(service, request);
    const std::string& language = field(request.query, "q_lang");
    if (language.empty()) {
        throw Refusal("query key \"q_lang\" is empty");
    }
    if (!user) {
        return wrongPassword(response);
    }
    if (user->second.question.empty()) {
        return xmlAnswer(response, {{"errorValue", text(AuthError::NoSuchStep)}},
                         "the account has no question");
    }
    return xmlAnswer(
        response, {{"security_question_no", std::to_string(user->second.questionNo)},
                   {"system_question_text", service.options().questionTexts.textOf(user->second, language)}});
}

Answer sendMail(Service& service, Request& request, httplib::Response& response) {
    const User* user = userOf(service, request);
    if (!user) {
        return wrongPassword(response);
    }
    const bool locked = service.secondSteps().locked(*user);
    const bool sent = !locked && !user->second.mailTo.empty();
    if (sent) {
        service.mailbox().send({user->second.mailTo, "Emergency code of " + service.options().serverName,
                                "Emergency code: " + service.secondSteps().emergencyCode(*user)});
    }
    Elements elements = {{"send_result", sent ? "1" : "0"}};
    addTries(elements, service, *user);
    return xmlAnswer(response, elements,
                     sent     ? ""
                     : locked ? "no tries are left"
                              : "the account has no mail address");
}

}  // namespace

void addAuthCalls(std::vector<Call>& calls) {
    const auto add = [&](const Shape& shape, auto serve) {
        const std::string name = shape[0].substr(0, shape[0].find('='));
        calls.push_back({name, on(Endpoint::AuthLogin), "POST", BodyKind::Form, true, {shape}, serve, {}});
    };
    add({"security_code", "serviceKey=1", "remme=1"}, secondStep);
    add({"security_answer", "serviceKey=1", "remme=1"}, secondStep);
    add({"get_question=1", "serviceKey=1", "q_lang"}, question);
    add({"send_mail=1", "serviceKey=1"}, sendMail);
}

}  // namespace nas
