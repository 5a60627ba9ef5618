#include "cloud/cloudstatus.h"

#include "core/jsonfields.h"

namespace Lattice {

int CloudCodeOf(const Json::Value& root) {
    return JsonGetInt(root, "code", kNoCloudCode);
}

int CloudStatusOf(int code) {
    switch (code) {
        case 0:
            return 0;
        case 1013001:
            return 3;
        case 1013002:
            return 4;
        case 1070001:
            return 5;
        default:
            return 1;
    }
}

}  // namespace Lattice
