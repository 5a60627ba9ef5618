#include "WebFileManShareAPI.h"

const wchar_t* const gNetworkTypes[] = {L"internet", L"local"};
const wchar_t* const gValidDurationTypes[] = {L"forever", L"specific_time", L"period_of_time"};
const wchar_t* const gDownloadLinkTypes[] = {L"email_download_link", L"create_download_link"};
