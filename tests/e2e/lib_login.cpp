#include "lib_login.h"

namespace e2e {

Numbers SecondStep::run() {
    wchar_t nameField[260] = {};
    _WFM_AUTH_CONTEXT* context = nullptr;
    int unused = 0;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMLoginStep2(kServer, port, user.c_str(), password.c_str(), isAnswer, code.c_str(), tls,
                             kAgent, 260, 0, 0, nullptr, nameField, &isAdmin, result, &context, &unused);
    });
    session.reset(context);
    serverName = nameField;
    return numbers;
}

Numbers Activation::run() {
    wchar_t nameField[260] = {};
    _WFM_AUTH_CONTEXT* context = nullptr;
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return TorviActivateSid2(kServer, port, tls, token.c_str(), node.c_str(), kAgent, ownNode.c_str(),
                                 260, proxyMode, proxyHost.c_str(), proxyUser.c_str(), proxyPassword.c_str(),
                                 nullptr, false, result, nameField, &isAdmin, &context);
    });
    session.reset(context);
    serverName = nameField;
    return numbers;
}

Numbers systemSid(const Client& client, std::wstring& sid, std::uint32_t capacity) {
    wchar_t text[260] = {};
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMGetSystemSid(client.context(), kServer, client.port(), nullptr, result, &capacity, text);
    });
    sid = text;
    return numbers;
}

std::wstring slaveID(const _WFM_AUTH_CONTEXT* context) {
    wchar_t text[260] = {};
    std::uint32_t capacity = 260;
    WFMGetSlaveID(context, &capacity, text);
    return text;
}

}  // namespace e2e
