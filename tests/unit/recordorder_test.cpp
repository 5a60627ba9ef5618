// The records that a caller's program lays out like the library: their fields stand in a fixed order.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "WebFileManAPI.h"
#include "WebFileManShareAPI.h"

namespace {

void expectInOrder(const std::vector<size_t>& offsets) {
    EXPECT_EQ(offsets.front(), 0u);
    EXPECT_TRUE(std::is_sorted(offsets.begin(), offsets.end()));
    EXPECT_EQ(std::adjacent_find(offsets.begin(), offsets.end()), offsets.end());
}

}  // namespace

TEST(RecordOrder, OfDeviceConfiguration) {
    using Item = WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO;
    expectInOrder({offsetof(Item, dwFlag), offsetof(Item, pszValue), offsetof(Item, nAction)});
    using List = WFM_TORVI_DEVICE_CONFIG_LIST;
    expectInOrder({offsetof(List, dwCount), offsetof(List, lppItems)});
    using Change = WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO;
    expectInOrder({offsetof(Change, nEventID), offsetof(Change, szUser), offsetof(Change, szDeviceUID),
                   offsetof(Change, szAction), offsetof(Change, szType), offsetof(Change, szStatus),
                   offsetof(Change, szTime), offsetof(Change, szModifier), offsetof(Change, szValue)});
    using Rights = WFM_TORVI_CONFIG_ACL_INFO;
    expectInOrder({offsetof(Rights, dwManagerMode), offsetof(Rights, dwUseManagerPassword),
                   offsetof(Rights, dwClientSetConfig), offsetof(Rights, dwSmartSync),
                   offsetof(Rights, dwConflictPolicy), offsetof(Rights, dwBlackFileFilter),
                   offsetof(Rights, dwMails)});
    using Device = _WFM_TORVI_DEVICE_INFORMATION;
    expectInOrder({offsetof(Device, szDeviceName), offsetof(Device, szDeviceUID), offsetof(Device, szIP),
                   offsetof(Device, llModifiedTime)});
}

TEST(RecordOrder, OfTheCloud) {
    using Token = _CLOUD_TOKEN_INFORMATION;
    expectInOrder({offsetof(Token, error), offsetof(Token, error_description), offsetof(Token, access_token),
                   offsetof(Token, token_type), offsetof(Token, refresh_token), offsetof(Token, email),
                   offsetof(Token, display_name), offsetof(Token, user_id), offsetof(Token, expires_in)});
    using DeviceID = _CLOUD_DEVICE_ID_INFORMATION;
    expectInOrder(
        {offsetof(DeviceID, nResponseCode), offsetof(DeviceID, szDeviceID), offsetof(DeviceID, szMessage)});
    using Device = _NAS_DEVICE_INFORMATION_API_V11;
    expectInOrder({offsetof(Device, szDeviceID), offsetof(Device, szToken), offsetof(Device, szDeviceName),
                   offsetof(Device, szAccessCode), offsetof(Device, szAccessControlMode),
                   offsetof(Device, szUserID), offsetof(Device, szDescription),
                   offsetof(Device, szDomainName), offsetof(Device, info), offsetof(Device, nServiceCount),
                   offsetof(Device, lppServices), offsetof(Device, nUserCount), offsetof(Device, lppUsers),
                   offsetof(Device, modelInfo), offsetof(Device, permissions)});
    using Info = _NAS_DEVICE_UPDATE_INFO;
    expectInOrder({offsetof(Info, szDeviceType), offsetof(Info, szModelName), offsetof(Info, szFwModelName),
                   offsetof(Info, szHwSerialNumber), offsetof(Info, szFwSerialNumber),
                   offsetof(Info, szMacAddress), offsetof(Info, szHostName),
                   offsetof(Info, szFirmwareVersion), offsetof(Info, szFirmwareBuildNumber),
                   offsetof(Info, szFirmwarePatchVersion), offsetof(Info, szAgentVersion),
                   offsetof(Info, szFirmwareNumber), offsetof(Info, lanGateway), offsetof(Info, nLanIPCount),
                   offsetof(Info, lppLanIPs), offsetof(Info, nWanIPCount), offsetof(Info, lppWanIPs)});
    using Address = _NAS_DEVICE_IP_INFO;
    expectInOrder({offsetof(Address, szName), offsetof(Address, szIPv4), offsetof(Address, szIPv6)});
    using Service = _NAS_DEVICE_SERVICE_INFO;
    expectInOrder({offsetof(Service, szServiceName), offsetof(Service, szProtocol), offsetof(Service, szUri),
                   offsetof(Service, nExternalPort), offsetof(Service, nInternalPort),
                   offsetof(Service, bPublished), offsetof(Service, bPrivate)});
    using Model = _NAS_DEVICE_MODEL_INFO;
    expectInOrder({offsetof(Model, szName), offsetof(Model, szLatestFwVersion),
                   offsetof(Model, szLatestFwBuildNumber), offsetof(Model, szLatestFwPatchVersion),
                   offsetof(Model, szImgUrl)});
    using Permissions = _NAS_DEVICE_PERMISSIONS;
    expectInOrder({offsetof(Permissions, szBasicInfo), offsetof(Permissions, szRemoteAccess),
                   offsetof(Permissions, szPublicLocalService), offsetof(Permissions, szPrivateLocalService),
                   offsetof(Permissions, szPublicPackageServices),
                   offsetof(Permissions, szProtectedPackageServices),
                   offsetof(Permissions, szPrivatePackageServices)});
    using Link = _CLOUD_LINK_INFORMATION;
    expectInOrder({offsetof(Link, nResultCode), offsetof(Link, nWanIPCount), offsetof(Link, lppWanIPs),
                   offsetof(Link, nLanIPCount), offsetof(Link, lppLanIPs), offsetof(Link, nDdnsCount),
                   offsetof(Link, lppDdns), offsetof(Link, szCloudLinkID)});
    using VLink = _CLOUD_VLINK_INFORMATION;
    expectInOrder({offsetof(VLink, nReplyCode), offsetof(VLink, nHttpCode), offsetof(VLink, szActionTime),
                   offsetof(VLink, szVLinkID), offsetof(VLink, szWANIP), offsetof(VLink, szLANIPs),
                   offsetof(VLink, szGatewayIP), offsetof(VLink, szMessage)});
    using Ports = _CLOUD_SERVICE_PORTS;
    expectInOrder({offsetof(Ports, nInternalHttpPort), offsetof(Ports, nInternalHttpsPort),
                   offsetof(Ports, nExternalHttpPort), offsetof(Ports, nExternalHttpsPort)});
}
