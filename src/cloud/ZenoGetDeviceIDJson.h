#pragma once

#include <string>

#include "WebFileManAPI.h"

/// The reply of the account service on the device of a user's id.
class TORVIAPI_EXPORT CZenoGetDeviceIDJson {
public:
    int Parser(char* text);
    int GetStatus() const { return m_status; }  ///< 0 for the service's code 200, otherwise -1
    /// What the message means.
    int GetCloudAPIResponseCode() const;
    const std::wstring& GetMessage() const { return m_message; }
    const std::wstring& GetactTime() const { return m_actionTime; }
    const std::wstring& GetDeviceID() const { return m_deviceID; }

private:
    int m_status = -1;
    std::wstring m_message;
    std::wstring m_actionTime;
    std::wstring m_deviceID;
};
