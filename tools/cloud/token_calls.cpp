#include "calls.h"
#include "nas/status.h"

namespace cloud {

namespace {

using nas::field;

nlohmann::json pairJson(const TokenPair& pair) {
    return {{"access_token", pair.access},
            {"token_type", "Bearer"},
            {"expires_in", pair.seconds},
            {"refresh_token", pair.refresh}};
}

Answer giveToken(Service& service, const Request& request) {
    const std::string& app = field(request.form, "client_id");
    if (app != request.http.header("X-VEXA-APP-ID")) {
        throw nas::Refusal("form key \"client_id\" isn't header X-VEXA-APP-ID");
    }
    Accounts& accounts = service.accounts();
    accounts.requireApp(app, field(request.form, "client_secret"));
    const Lifetimes& lifetimes = service.options().lifetimes;
    const bool again = field(request.form, "grant_type") == "refresh_token";
    const TokenPair pair =
        again ? accounts.refresh(app, field(request.form, "refresh_token"), lifetimes, service.now())
              : accounts.signIn(app, lifetimes, service.now());
    Answer answer{pairJson(pair)};
    answer.user = accounts.require(pair.access, app, service.now()).user;
    answer.note = again ? "refreshed" : "signed in";
    return answer;
}

Answer tellToken(Service& service, const Request& request) {
    const std::string& token = field(request.query, "access_token");
    if (!request.http.header("Authorization").empty() && bearerOf(request.http) != token) {
        throw nas::Refusal("header Authorization bears another token than the query");
    }
    const int64_t now = service.now();
    const Grant& grant = service.accounts().require(token, request.http.header("X-VEXA-APP-ID"), now);
    Answer answer;
    answer.user = grant.user;
    answer.json = {{"expires_in", (grant.ends - now) / 1000}};
    if (const User* user = service.accounts().findUser(grant.user)) {
        answer.json["user_id"] = grant.user;
        answer.json["user"] = {{"display_name", user->displayName}, {"email", user->mail}};
    }
    return answer;
}

Answer signOut(Service& service, const Request& request) {
    const std::string& token = field(request.form, "access_token");
    if (bearerOf(request.http) != token) {
        throw nas::Refusal("header Authorization bears another token than the form");
    }
    Answer answer{nlohmann::json::object()};
    answer.user = service.accounts().require(token, request.http.header("X-VEXA-APP-ID"), service.now()).user;
    service.accounts().signOut(token);
    answer.note = "signed out";
    return answer;
}

}  // namespace

void addTokenCalls(std::vector<Call>& calls) {
    calls.push_back({"token",
                     "POST",
                     "/oauth/token",
                     Proof::Form,
                     {{"grant_type=client_credentials", "client_id", "client_secret"},
                      {"grant_type=refresh_token", "client_id", "client_secret", "refresh_token"}},
                     giveToken});
    calls.push_back({"tokeninfo", "GET", "/oauth/tokeninfo", Proof::Query, {{"access_token"}}, tellToken});
    calls.push_back({"signout", "POST", "/oauth/signout", Proof::Bearer, {{"access_token"}}, signOut});
}

}  // namespace cloud
