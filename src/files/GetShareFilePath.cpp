#include "files/GetShareFilePath.h"

#include "core/callframe.h"
#include "files/MapTeamFolderPath.h"

using namespace Lattice;

namespace {

/// Puts the server-side path in place of `item` if a team folder holds it and its node can be asked as well:
/// one request goes to one node only, that of the first item met.
bool MapItem(const _WFM_AUTH_CONTEXT& context, std::wstring& item, std::wstring& slaveId) {
    const int32_t index = IndexOfTeamFolder(context, item);
    const std::wstring serverPath = index >= 0 ? TeamListEntry(context.lppTeamFolderPathList, index) : L"";
    if (serverPath.empty()) return false;
    const std::wstring node = TeamListEntry(context.lppTeamFolderSlaveIDList, index);
    if (!node.empty() && slaveId.empty()) slaveId = node;
    if (!node.empty() && !IsSameNode(node, slaveId)) return false;
    item = serverPath;
    return true;
}

}  // namespace

void GetShareFilePath(_WFM_AUTH_CONTEXT* context, std::wstring path, std::vector<std::wstring>& fileList,
                      bool& mapped, std::wstring& slaveId) {
    mapped = false;
    slaveId.clear();
    path = WithoutTrailingSlash(path);
    if (context == nullptr || fileList.empty() || !context->bUseNuboCGI || path != L"/home/.Torvi" ||
        context->nTeamFolderCount <= 0 || context->lppTeamFolderPathList == nullptr ||
        context->lppOriPathList == nullptr)
        return;

    std::vector<std::wstring> places;
    std::vector<std::wstring> items;
    for (auto item = fileList.rbegin(); item != fileList.rend(); ++item) {
        std::wstring place = WithTrailingSlash(path + L"/" + *item);
        if (MapItem(*context, place, slaveId)) mapped = true;
        if (!place.empty()) places.push_back(place.substr(0, place.size() - 1));
        if (!item->empty()) items.push_back(*item);
    }
    fileList = mapped ? places : items;
}
