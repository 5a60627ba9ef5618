#include "lib_config.h"

namespace e2e {

namespace {

ConfigItem itemOf(const WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO& record) {
    return {record.dwFlag, record.pszValue, record.nAction != 0};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ConfigItem& item) {
    return out << item.flag << "=" << utf8(item.value);
}

Numbers ask(const Client& client, ConfigQuestion& question) {
    WFM_TORVI_DEVICE_CONFIG_LIST list = {};
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetDeviceConfigInfo(client.context(), kServer, client.port(), question.device.c_str(),
                                      question.mode, question.check, nullptr, result, &list);
    });
    question.items.clear();
    for (std::uint32_t i = 0; i < list.dwCount; ++i) {
        question.items.push_back(itemOf(*list.lppItems[i]));
        delete[] list.lppItems[i]->pszValue;
        delete list.lppItems[i];
    }
    delete[] list.lppItems;
    return numbers;
}

Numbers save(const Client& client, const ConfigChange& change) {
    std::vector<ConfigItem> items = change.items;
    std::vector<WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO> records;
    for (ConfigItem& item : items) records.push_back({item.flag, item.value.data(), item.atOnce ? 1 : 0});
    std::vector<WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO*> pointers;
    for (auto& record : records) pointers.push_back(&record);
    const WFM_TORVI_DEVICE_CONFIG_LIST list = {static_cast<std::uint32_t>(pointers.size()), pointers.data()};
    return numbersOf([&](std::uint32_t* result) {
        return WFMSetDeviceConfigInfo(client.context(), kServer, client.port(), nullptr, change.user.c_str(),
                                      change.device.c_str(),
                                      change.password.empty() ? nullptr : change.password.c_str(),
                                      change.asTemplate ? 1 : 0, &list, result);
    });
}

Numbers resetConfig(const Client& client, const std::wstring& device, const std::wstring& user) {
    return numbersOf([&](std::uint32_t* result) {
        return WebFileManResetDeviceConfig(client.context(), kServer, client.port(), user.c_str(),
                                           device.c_str(), nullptr, result);
    });
}

Numbers ask(const Client& client, ConfigChanges& question) {
    const auto orNull = [](const std::wstring& text) { return text.empty() ? nullptr : text.c_str(); };
    WFM_TORVI_CONFIG_NOTIFY_LIST list = {};
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetConfigNotifyInfo(client.context(), kServer, client.port(), orNull(question.user),
                                      orNull(question.device), question.lower, question.upper, nullptr,
                                      result, &list);
    });
    question.changes.clear();
    for (std::uint32_t i = 0; i < list.dwCount; ++i) {
        const WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO& change = *list.lppItems[i];
        question.changes.push_back(utf8(std::wstring(change.szUser) + L"/" + change.szDeviceUID + L" type " +
                                        change.szType + L" action " + change.szAction + L" status " +
                                        change.szStatus + L" by " + change.szModifier + L": " +
                                        change.szValue));
        delete list.lppItems[i];
    }
    delete[] list.lppItems;
    return numbers;
}

Numbers configAcl(const Client& client, WFM_TORVI_CONFIG_ACL_INFO& acl) {
    return numbersOf([&](std::uint32_t* result) {
        return WFMGetConfigACL(client.context(), kServer, client.port(), nullptr, result, &acl);
    });
}

Numbers tryPassword(const Client& client, const std::wstring& password, std::int32_t& answer) {
    std::uint32_t number = 0xABCD;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMAuthConfigPassword(client.context(), kServer, client.port(), password.c_str(), nullptr,
                                     result, &number);
    });
    answer = static_cast<std::int32_t>(number);
    return numbers;
}

Numbers ask(const Client& client, Devices& question) {
    OwnRecords<_WFM_TORVI_DEVICE_INFORMATION> records(question.capacity);
    question.count = question.capacity;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WebFileManGetDeviceList(client.context(), kServer, client.port(), question.user.c_str(),
                                       question.lower, question.upper, nullptr, &question.total,
                                       &question.count, records.list(), result);
    });
    question.devices.clear();
    for (std::uint32_t i = 0; numbers == kDone && i < question.count; ++i)
        question.devices.push_back(
            utf8(std::wstring(records[i].szDeviceName) + L" at " + records[i].szDeviceUID));
    return numbers;
}

}  // namespace e2e
