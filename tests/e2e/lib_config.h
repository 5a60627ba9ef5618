#pragma once

#include "WebFileManShareAPI.h"
#include "lib_records.h"
#include "lib_support.h"

/// What a server keeps of the devices of its users.
namespace e2e {

/// An item without the memory that a list has it in.
struct ConfigItem {
    std::uint32_t flag = 0;
    std::wstring value = {};
    bool atOnce = false;  ///< of what is set
    bool operator==(const ConfigItem& other) const { return flag == other.flag && value == other.value; }
};
std::ostream& operator<<(std::ostream& out, const ConfigItem& item);

/// Of which device, and what of it.
struct ConfigQuestion {
    std::wstring device;
    std::int32_t mode = 0;
    bool check = false;
    std::vector<ConfigItem> items = {};
};
inline constexpr std::int32_t kInEffect = 0, kTemplate = 1, kDevicesOwn = 3;
Numbers ask(const Client& client, ConfigQuestion& question);

/// Whose device, and what becomes of it.
struct ConfigChange {
    std::wstring device;
    std::vector<ConfigItem> items;
    std::wstring user = L"anna", password = {};
    bool asTemplate = false;
};
Numbers save(const Client& client, const ConfigChange& change);
Numbers resetConfig(const Client& client, const std::wstring& device, const std::wstring& user = L"anna");

/// Changes, each as one line of text without its number and its time.
struct ConfigChanges {
    std::wstring user = {}, device = {};
    std::uint32_t lower = 0, upper = 1000;
    std::vector<std::string> changes = {};
};
Numbers ask(const Client& client, ConfigChanges& question);

Numbers configAcl(const Client& client, WFM_TORVI_CONFIG_ACL_INFO& acl);
/// The server's own number for the password.
Numbers tryPassword(const Client& client, const std::wstring& password, std::int32_t& answer);

struct Devices : Window {
    std::wstring user = L"anna";
    std::vector<std::string> devices;  ///< "name at uid"
};
Numbers ask(const Client& client, Devices& question);

}  // namespace e2e
