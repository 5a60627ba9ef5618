#pragma once

#include <cstdint>
#include <string>

#include "WebFileManAPI.h"
#include "cloud/addresslist.h"

/// Where a device is reached by one protocol: "address:port", or the address alone where no port is known.
struct _CLOUD_LINK_JSON_ADDRESSES {
    Lattice::AddressList wan;
    Lattice::AddressList lan;
    Lattice::AddressList ddns;
};

/// The reply of "device/<id>/network": how a device is reached from outside and inside.
class TORVIAPI_EXPORT CZenoGetCloudLinkInfoJson {
public:
    int Parser(char* text);
    int GetStatus() const { return status; }

    int32_t code = -1;
    int32_t status = -1;
    _CLOUD_LINK_JSON_ADDRESSES http;
    _CLOUD_LINK_JSON_ADDRESSES https;
    std::wstring cloudLinkID;
};
