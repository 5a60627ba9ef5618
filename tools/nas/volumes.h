#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nas {

// A share on a volume of its own, and the bytes that the volume holds. All else lies on the first volume.
struct Volume {
    int id = 0;
    std::string share;
    int64_t limit = 0;
};

constexpr int kFirstVolume = 1;

class Volumes {
public:
    // "share:bytes". Throws std::invalid_argument.
    void add(const std::string& rule);
    // Null for a share on the first volume.
    const Volume* find(const std::string& share) const;
    const std::vector<Volume>& all() const { return volumes_; }

private:
    std::vector<Volume> volumes_;
};

}  // namespace nas
