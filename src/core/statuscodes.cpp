#include "core/statuscodes.h"

#include <cwchar>

namespace {

struct Row {
    int server;
    int client;
};

constexpr Row kClientCodes[] = {
    {-101, -8}, {-90, -37}, {-43, -35}, {-42, -34}, {-41, -33}, {-40, -32}, {-20, -17},
    {-19, -36}, {-18, -30}, {-16, -14}, {-15, -13}, {-14, -28}, {-13, -27}, {-12, -26},
    {-10, -12}, {-8, -25},  {-6, -41},  {-4, -11},  {-3, -4},   {-2, -10},  {-1, -9},
    {0, -2},    {1, 0},     {2, -15},   {3, -29},   {4, -3},    {5, -4},    {7, -5},
    {8, -24},   {9, -6},    {12, -7},   {26, -42},  {33, -15},
};

constexpr Row kSyncEventActions[] = {
    {-91, -3}, {-90, -2}, {8, 1},  {9, 2},   {10, 3},  {11, 4},  {12, 5},  {13, 18}, {14, 6},
    {16, 7},   {17, 8},   {18, 9}, {19, 16}, {20, 17}, {26, 21}, {27, 19}, {28, 20},
};

template <size_t N>
int Translate(const Row (&table)[N], int server) {
    for (const Row& row : table) {
        if (row.server == server) {
            return row.client;
        }
    }
    return -1;
}

}  // namespace

int TranslateWFMErrorCode(int status) {
    return Translate(kClientCodes, status);
}

int TranslateSyncEventIsFolder(int value) {
    return value == 1 || value == 2 ? value : 0;
}

int TranslateSyncEventAction(int action) {
    return Translate(kSyncEventActions, action);
}

bool SupportNuboCGI(std::wstring version) {
    const size_t point = version.find(L'.');
    if (point == std::wstring::npos || point == 0) {
        return false;
    }
    return std::wcstol(version.substr(0, point).c_str(), nullptr, 10) >= 4;
}
