#include "files/ProfileCheck.h"

namespace Lattice {

void AddProfileCheck(Call& call, const ObjectProfile& profile) {
    call.field("check_nubo_file_profile", L"1");
    call.field("check_nubo_file_path", profile.path);
    call.field("check_nubo_file_exist", L"1");
    call.field("check_nubo_file_type", profile.isFolder ? L"1" : L"0");
    if (profile.isFolder) return;
    call.field("check_nubo_file_size", profile.size);
    call.field("check_nubo_file_time", profile.time);
}

}  // namespace Lattice
