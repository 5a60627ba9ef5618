#pragma once

#include <optional>

#include "lib_support.h"
#include "support/cloud.h"
#include "support/cloudplace.h"

/// An application that asks the cloud on behalf of somebody.
namespace e2e {

/// Filled records are large, and their texts are wide.
struct Token {
    std::uint32_t dwStatus = 0xABCD;
    std::string error, description, access, type, refresh, email, displayName, user;
    std::int32_t expiresIn = 0;
};
struct CloudDevice {
    std::string id, name, user, description, model, token, accessCode, lan, services;
    std::vector<std::string> users;
};
struct CloudLists {
    std::uint32_t dwStatus = 0xABCD;
    std::int32_t code = 0xABCD;
    std::vector<std::string> wan, lan, ddns;
    std::string link;
};
struct Link {
    std::uint32_t dwStatus = 0xABCD;
    std::int32_t reply = 0xABCD, http = 0xABCD;
    std::string id, wan, lan, gateway, message, time;
};
struct DeviceId {
    std::uint32_t dwStatus = 0xABCD;
    std::int32_t reply = 0xABCD;
    std::string id, message;
};

class CloudClient {
public:
    CloudClient(std::wstring host, bool secure) : m_host(std::move(host)), m_secure(secure) {}

    Token signIn() const;
    Token refresh(const std::string& refreshToken) const;
    Token info(const std::string& accessToken) const;
    std::uint32_t signOut(const std::string& accessToken) const;

    Numbers devices(const std::string& accessToken, std::vector<CloudDevice>& devices) const;
    Numbers devicesNamed(const std::string& accessToken, const std::wstring& name,
                         std::vector<CloudDevice>& devices) const;
    Numbers count(const std::string& accessToken, std::int32_t& count) const;
    CloudLists lists(const std::string& accessToken, const std::wstring& device) const;
    std::uint32_t publicIP(const std::string& accessToken, std::string& address) const;

    // One in seven checksums breaks its request: these are asked again then.
    DeviceId deviceId(const std::wstring& user) const;
    Link link(const std::wstring& device) const;
    std::uint32_t ports(const std::wstring& device, _CLOUD_SERVICE_PORTS& ports) const;

    std::wstring app = L"desk-app", secret = L"desk-secret";

private:
    std::wstring m_host;
    bool m_secure;
};

/// A cloud at the ports that its clients know, and a NAS that is listed there as anna's. The parameter says
/// whether one goes there over TLS.
class LibCloud : public CloudTest<testing::TestWithParam<bool>> {
protected:
    void SetUp() override;
    virtual Cloud::Options cloudOptions() const;
    virtual std::vector<std::string> nasOptions() const { return {}; }

    /// anna's access token.
    std::string annas() const { return client->refresh("anna-refresh").access; }

    std::optional<Cloud> cloud;
    std::optional<Nas> nas;
    std::optional<CloudClient> client;
};

}  // namespace e2e
