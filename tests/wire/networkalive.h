#pragma once

namespace wire {

/// While it lives, the calls of this thread find a network, or none, whatever this machine has.
class NetworkIs {
public:
    explicit NetworkIs(bool alive);
    ~NetworkIs();
    NetworkIs(const NetworkIs&) = delete;
    NetworkIs& operator=(const NetworkIs&) = delete;
};

}  // namespace wire
