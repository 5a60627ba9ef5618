#pragma once

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QString>
#include <QVector>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "nas/nasclient.h"
#include "support/cloud.h"
#include "support/nas.h"

/// A cloud with the application desk-app, and with anna and ben.
class TorviCloudTest : public testing::Test {
protected:
    static Cloud::Options options(std::vector<std::string> more) {
        Cloud::Options result;
        result.arguments = std::move(more);
        return result;
    }

    explicit TorviCloudTest(std::vector<std::string> more = {}) : cloud(options(std::move(more))) {}

    /// The frame of the calls with a token; without Authorization if it is empty.
    static NasRequest framed(NasRequest request, const std::string& token = {},
                             const std::string& app = "desk-app") {
        request.set("Accept", "application/json").set("X-VEXA-APP-ID", app).set("X-VEXA-SUBAPP-ID", app);
        request.set("X-VEXA-APP-VER", "1.2");
        return token.empty() ? request : request.set("Authorization", "Bearer " + token);
    }
    static NasRequest signInRequest(const std::string& secret = "desk-secret") {
        return framed(NasRequest::form(
            "/oauth/token",
            {{"grant_type", "client_credentials"}, {"client_id", "desk-app"}, {"client_secret", secret}}));
    }
    /// The secret of desk-app is desk-secret, and so on.
    static NasRequest refreshRequest(const std::string& refresh, const std::string& app = "desk-app") {
        return framed(NasRequest::form("/oauth/token", {{"grant_type", "refresh_token"},
                                                        {"client_id", app},
                                                        {"client_secret", secretOf(app)},
                                                        {"refresh_token", refresh}}),
                      "", app);
    }
    static NasRequest signOutRequest(const std::string& token) {
        return framed(NasRequest::form("/oauth/signout", {{"access_token", token}}), token);
    }
    static NasRequest infoRequest(const std::string& token) {
        return framed(NasRequest::get("/oauth/tokeninfo?access_token=" + token), token);
    }
    /// What a NAS says when it registers.
    static Json::Value entry(const std::string& user, const std::string& id) {
        Json::Value entry;
        entry["user"] = user;
        entry["device_id"] = id;
        entry["device_name"] = "Shed";
        entry["address"] = "192.0.2.9";
        for (const char* text : {"description", "model", "firmware", "mac_address", "host_name",
                                 "external_address", "ddns_name"})
            entry[text] = "";
        for (const char* port : {"http_port", "tls_port", "external_http_port", "external_tls_port"})
            entry[port] = 0;
        entry["remote_access"] = true;
        entry["local_users"] = Json::arrayValue;
        return entry;
    }
    static NasRequest registerRequest(const Json::Value& entry) {
        NasRequest request = NasRequest::get("/standin/register");
        request.method = "POST";
        request.body = Json::FastWriter().write(entry);
        return request.set("Content-Length", std::to_string(request.body.size()));
    }

    static std::string secretOf(const std::string& app) { return app.substr(0, app.rfind('-')) + "-secret"; }

    static long long now() {
        using namespace std::chrono;
        return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    }
    static QByteArray digest(long long time) {
        const std::string text = "desk-secretdesk-app" + std::to_string(time) + "1.2";
        return QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha1);
    }
    static NasRequest checkedRequest(const std::string& target, long long time) {
        return withCheck(target, time, QString(digest(time).constData()).toUtf8().toStdString());
    }
    static NasRequest withCheck(const std::string& target, long long time, const std::string& check) {
        NasRequest request = NasRequest::get(target);
        request.set("X-VEXA-APP-VER", "1.2");
        request.headers.emplace_back("X-VEXA-CHECK", check);  // also an empty one
        return request.set("X-VEXA-TIME", std::to_string(time)).set("X-VEXA-APP-ID", "desk-app");
    }

    NasReply run(const NasRequest& request, bool tls = false) {
        return exchange(tls ? cloud.tlsPort() : cloud.port(), request, tls);
    }
    /// All of them on one connection, answered one by one: gives all replies as they came.
    std::string runInOneGo(std::vector<NasRequest> requests) {
        NasConnection connection(cloud.port());
        for (NasRequest& request : requests) {
            if (&request != &requests.back()) request.set("Connection", "Keep-Alive");
            connection.send(request.bytes());
        }
        return connection.readAll().raw;
    }
    static long countOf(const std::string& text, const std::string& piece) {
        long count = 0;
        for (auto at = text.find(piece); at != text.npos; at = text.find(piece, at + piece.size())) ++count;
        return count;
    }
    NasReply get(const std::string& target, const std::string& token) {
        return run(framed(NasRequest::get(target), token));
    }
    /// A new access token of the user's first refresh token.
    std::string tokenOf(const std::string& user) {
        return run(refreshRequest(user + "-refresh")).json()["access_token"].asString();
    }
    std::string appToken() { return run(signInRequest()).json()["access_token"].asString(); }
    /// The reply of a call by checksum.
    Json::Value checked(const std::string& target) {
        return run(checkedRequest(target, now())).json()["return"];
    }

    /// A NAS on this cloud's list.
    Nas::Options nasOptions(const std::string& user, const std::string& name, const std::string& id,
                            std::vector<std::string> more = {}) {
        Nas::Options result;
        result.arguments = cloud.registration(user, name, id);
        result.arguments.insert(result.arguments.end(), more.begin(), more.end());
        return result;
    }

    Cloud cloud;
};
