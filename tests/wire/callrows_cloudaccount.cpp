#include "cloudcalls.h"

namespace {

const char* const kToken = R"({"access_token":"token-1","error_description":"fine","expires_in":3600})";

}  // namespace

std::vector<CloudRow> cloudAccountRows() {
    std::vector<CloudRow> rows;

    CloudRow signin{"ZenoAPIAPPSignin",
                    [](const CloudTarget& at) {
                        _CLOUD_TOKEN_INFORMATION token;
                        return ZenoAPIAPPSignin(at.server, L"agent", L"1.2.3", L"desk-app", L"secret",
                                                at.secure, at.proxyMode, at.proxyHost, at.proxyUser,
                                                at.proxyPassword, nullptr, &token);
                    },
                    kToken};
    signin.goodLine = "[WFM] ZenoAPIAPPSignin: AccessToken(token-1), Msg(fine)";
    signin.notUnderstood = "[WFM] ZenoAPIAPPSignin WFM_PARSE_XML_FAIL";
    rows.push_back(signin);

    CloudRow refresh{"ZenoAPIAPPRefreshToken",
                     [](const CloudTarget& at) {
                         _CLOUD_TOKEN_INFORMATION token;
                         return ZenoAPIAPPRefreshToken(
                             at.server, L"agent", L"refresh-1", L"1.2.3", L"desk-app", L"secret", at.secure,
                             at.proxyMode, at.proxyHost, at.proxyUser, at.proxyPassword, nullptr, &token);
                     },
                     kToken};
    refresh.goodLine = "[WFM] ZenoAPIAPPRefreshToken: AccessToken(token-1), Msg(fine)";
    rows.push_back(refresh);

    CloudRow tokenInfo{"ZenoAPIGetTokenInfo",
                       [](const CloudTarget& at) {
                           _CLOUD_TOKEN_INFORMATION token;
                           return ZenoAPIGetTokenInfo(at.server, L"agent", L"token-1", L"1.2.3", L"desk-app",
                                                      nullptr, at.secure, at.proxyMode, at.proxyHost,
                                                      at.proxyUser, at.proxyPassword, nullptr, &token);
                       },
                       R"({"user_id":"7","user":{"email":"a@b.example"},"error_description":"fine"})"};
    tokenInfo.goodLine = "[WFM] ZenoAPIGetTokenInfo: AccessToken(token-1), Msg(fine)";
    tokenInfo.proxyRefused = tokenInfo.unavailable = tokenInfo.failed = tokenInfo.notUnderstood =
        "[WFM] ZenoAPIGetTokenInfo FAIL(httpStatusCode={http})";
    tokenInfo.summary = "";
    rows.push_back(tokenInfo);

    CloudRow signOut{"ZenoAPIAPPSignOut",
                     [](const CloudTarget& at) {
                         return ZenoAPIAPPSignOut(at.server, L"token-1", L"agent", L"1.2.3", L"desk-app",
                                                  at.secure, at.proxyMode, at.proxyHost, at.proxyUser,
                                                  at.proxyPassword);
                     },
                     "{}"};
    signOut.goodLine = "[WFM] ZenoAPIAPPSignOut: AccessToken(token-1)";
    signOut.summary = "[WFM] ZenoAPIAPPSignOut failed dwStatus({status})";
    signOut.readsReply = false;
    rows.push_back(signOut);

    CloudRow link{"PeltAPIGetVLinkInfo",
                  [](const CloudTarget& at) {
                      _CLOUD_VLINK_INFORMATION link;
                      return PeltAPIGetVLinkInfo(at.server, L"attic", L"agent", L"1.2.3", L"desk-app",
                                                 L"secret", at.secure, at.proxyMode, at.proxyHost,
                                                 at.proxyUser, at.proxyPassword, nullptr, &link);
                  },
                  R"({"return":{"StatusCode":{"code":"200","message":"Access successfully."},"vlinkId":"L-1",
            "lanIp":"10.0.0.2,10.0.0.3","lanGW":"10.0.0.1","wanIp":"192.0.2.7","actTime":"noon"}})"};
    link.goodLine =
        "[WFM] PeltAPIGetVLinkInfo VLinkID(L-1), LANIPs(10.0.0.2,10.0.0.3), GetwayIP(10.0.0.1), "
        "WANIP(192.0.2.7), Msg(Access successfully.), ResponseCode(0)";
    link.proxyRefused = "[WFM] PeltAPIGetVLinkInfo WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ";
    link.failed = "[WFM] PeltAPIGetVLinkInfo FAIL(httpStatusCode={http})";
    link.notUnderstood = "[WFM] PeltAPIGetVLinkInfo WFM_PARSE_XML_FAIL";
    rows.push_back(link);

    CloudRow ports{"PeltAPIGetServicePorts",
                   [](const CloudTarget& at) {
                       _CLOUD_SERVICE_PORTS ports;
                       return PeltAPIGetServicePorts(at.server, L"attic", L"agent", L"1.2.3", L"desk-app",
                                                     L"secret", at.secure, at.proxyMode, at.proxyHost,
                                                     at.proxyUser, at.proxyPassword, nullptr, &ports);
                   },
                   R"({"return":{"StatusCode":{"code":"200","message":"Access successfully."},"portMapping":[
            {"serviceName":"WebAdministration","proto":"TCP","internalPort":8080,"externalPort":18080},
            {"serviceName":"WebAdministration","subServiceName":"Secured","proto":"TCP",
             "internalPort":"8443","externalPort":"18443"}]}})"};
    ports.goodLine =
        "[WFM] PeltAPIGetServicePorts InternalHttpPort(8080), InternalHttpsPort(8443), ExtHttpPort(18080), "
        "ExtHttpsPort(18443), Msg(Access successfully.)";
    ports.proxyRefused = "[WFM] PeltAPIGetServicePorts WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ";
    ports.failed = "[WFM] PeltAPIGetServicePorts FAIL(httpStatusCode={http})";
    ports.notUnderstood = "[WFM] PeltAPIGetServicePorts WFM_PARSE_XML_FAIL";
    rows.push_back(ports);
    return rows;
}
