#include "volumes.h"

#include <cstdlib>
#include <stdexcept>

namespace nas {

void Volumes::add(const std::string& rule) {
    const size_t colon = rule.rfind(':');
    const std::string share = rule.substr(0, colon);
    const std::string bytes = colon == std::string::npos ? "" : rule.substr(colon + 1);
    if (share.empty() || bytes.empty() || bytes.find_first_not_of("0123456789") != std::string::npos) {
        throw std::invalid_argument("--volume wants share:bytes, not " + rule);
    }
    if (find(share) || share == "home" || share == "homes") {
        throw std::invalid_argument("--volume is for a share, once: " + rule);
    }
    volumes_.push_back({kFirstVolume + 1 + static_cast<int>(volumes_.size()), share,
                        std::strtoll(bytes.c_str(), nullptr, 10)});
}

const Volume* Volumes::find(const std::string& share) const {
    for (const Volume& volume : volumes_) {
        if (volume.share == share) {
            return &volume;
        }
    }
    return nullptr;
}

}  // namespace nas
