#include "calls.h"
#include "headers.h"
#include "nas/status.h"
#include "oauth_error.h"

namespace cloud {

namespace {

using nas::field;

nlohmann::json pairJson(const TokenPair& pair) {
    return {{"access_token", pair.access},
            {"token_type", "Bearer"},
            {"expires_in", pair.seconds},
            {"refresh_token", pair.refresh}};
}

// The access token stands in the header and in the query or the form.
std::string tokenOf(const Request& request, const nas::Fields& fields, const std::string& place) {
    const std::string& token = field(fields, "access_token");
    if (bearerOf(request.http) != token) {
        throw nas::Refusal("header Authorization bears another token than the " + place);
    }
    return token;
}

Answer signedIn(Service& service, const std::string& app) {
    TokenPair pair;
    service.book().change(
        [&](State& state) { pair = state.tokens.signIn(app, service.options().lifetimes, service.now()); });
    Answer answer{pairJson(pair)};
    answer.note = "signed in";
    return answer;
}

Answer refreshed(Service& service, const std::string& app, const std::string& token) {
    TokenPair pair;
    Grant grant;
    service.book().change([&](State& state) {
        grant = state.tokens.requireRefresh(token, app, service.accounts(), service.now());
        if (state.suspended.count(grant.user) > 0) {
            throw OAuthError(403, "access_denied", "The account is suspended.");
        }
        pair = state.tokens.refresh(token, grant, service.options().lifetimes, service.now());
    });
    Answer answer{pairJson(pair)};
    answer.user = grant.user;
    answer.note = "refreshed";
    return answer;
}

Answer giveToken(Service& service, const Request& request) {
    const std::string& app = field(request.form, "client_id");
    if (app != request.http.header("X-VEXA-APP-ID")) {
        throw nas::Refusal("form key \"client_id\" isn't header X-VEXA-APP-ID");
    }
    service.accounts().requireApp(app, field(request.form, "client_secret"));
    return field(request.form, "grant_type") == "refresh_token"
               ? refreshed(service, app, field(request.form, "refresh_token"))
               : signedIn(service, app);
}

Answer tellToken(Service& service, const Request& request) {
    const std::string token = tokenOf(request, request.query, "query");
    const int64_t now = service.now();
    const Grant grant =
        service.book().read()->tokens.require(token, request.http.header("X-VEXA-APP-ID"), now);
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
    const std::string token = tokenOf(request, request.form, "form");
    Answer answer{nlohmann::json::object()};
    service.book().change([&](State& state) {
        answer.user = state.tokens.require(token, request.http.header("X-VEXA-APP-ID"), service.now()).user;
        state.tokens.signOut(token, service.accounts());
    });
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
    calls.push_back({"tokeninfo", "GET", "/oauth/tokeninfo", Proof::Bearer, {{"access_token"}}, tellToken});
    calls.push_back({"signout", "POST", "/oauth/signout", Proof::Bearer, {{"access_token"}}, signOut});
}

}  // namespace cloud
