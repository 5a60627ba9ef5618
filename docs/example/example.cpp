#include <WebFileManAPI.h>

#include <QtCore/QCoreApplication>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    wchar_t name[260] = {};
    bool isAdmin, isSlave;
    uint32_t word = 0, start = 0, count = 0, teamIndex = 0, teamCount = 0;
    _WFM_AUTH_CONTEXT* session = nullptr;
    _WFM_PATH_INFORMATION** list = nullptr;
    uint32_t status = TorviLogin(L"127.0.0.1", 8080, L"ann", L"secret", false, L"my-pc", L"my-pc-1",
                                 L"example", 0, 260, 0, nullptr, nullptr, nullptr, nullptr, L"1.0", 0,
                                 nullptr, false, name, &isAdmin, &isSlave, &word, &session, 0, nullptr);
    if (status == 0)
        status = WFMGetNodeList(session, L"127.0.0.1", 8080, nullptr, L"*", L"/Public", 3, 0x38, nullptr, 100,
                                true, &word, nullptr, &start, &count, &teamIndex, &teamCount, &list);
    std::printf("dwStatus %u, result word %d\n", status, static_cast<int>(word));
    for (uint32_t i = 0; i < count; delete list[i++]) std::printf("%ls\n", list[i]->szPathName);
    delete[] list;
    TorviLogout(L"127.0.0.1", 8080, false, session);
    WFMFreeAuthContext(session);
    return status == 0 ? 0 : 1;
}
