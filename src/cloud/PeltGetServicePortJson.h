#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of the remote-access service on a device's port mapping.
class TORVIAPI_EXPORT CPeltGetServicePortJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }  ///< 0 for the service's code 200, otherwise -1
    const std::wstring& GetMessage() const { return m_message; }
    const std::wstring& GetactTime() const { return m_actionTime; }
    int GetInternalHttpPort() const { return m_internalHttpPort; }
    int GetInternalHttpsPort() const { return m_internalHttpsPort; }
    int GetExternalHttpPort() const { return m_externalHttpPort; }
    int GetExternalHttpsPort() const { return m_externalHttpsPort; }

private:
    int m_status = -1;
    std::wstring m_message;
    std::wstring m_actionTime;
    int m_internalHttpPort = 0;
    int m_internalHttpsPort = 0;
    int m_externalHttpPort = 0;
    int m_externalHttpsPort = 0;
};
