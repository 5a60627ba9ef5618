#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of the remote-access service on a device's link.
class TORVIAPI_EXPORT CPeltGetNASInfoJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }  ///< 0 for the service's code 200, otherwise -1
    int GetHttpCode() const { return m_httpCode; }
    /// What the message means.
    int GetCloudAPIResponseCode() const;
    const std::wstring& GetMessage() const { return m_message; }
    const std::wstring& GetactTime() const { return m_actionTime; }
    const std::wstring& GetVLinkId() const { return m_vlinkID; }
    const std::wstring& GetWANIP() const { return m_wanIP; }
    const std::wstring& GetLANIPs() const { return m_lanIPs; }
    const std::wstring& GetGatewayIP() const { return m_gatewayIP; }
    const std::wstring& GetVLinkType() const { return m_vlinkType; }
    const std::wstring& GetVLinkVersion() const { return m_vlinkVersion; }

private:
    int m_status = -1;
    int m_httpCode = 0;
    std::wstring m_message;
    std::wstring m_actionTime;
    std::wstring m_vlinkID;
    std::wstring m_vlinkType;
    std::wstring m_vlinkVersion;
    std::wstring m_wanIP;
    std::wstring m_lanIPs;
    std::wstring m_gatewayIP;
};
