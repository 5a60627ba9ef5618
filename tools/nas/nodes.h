#pragma once

#include <string>
#include <vector>

namespace nas {

// One server of a cluster, as the others know it.
struct Node {
    std::string slaveId;
    std::string hostName;
    std::string root;
};

// The nodes that share a session folder: each tells there of itself as long as it runs.
class Nodes {
public:
    // Without a folder, or without an id, the server is alone.
    Nodes(const std::string& sessionFolder, Node own);
    ~Nodes();
    Nodes(const Nodes&) = delete;
    Nodes& operator=(const Nodes&) = delete;

    const Node& own() const { return own_; }
    // By id; the own one is always among them.
    std::vector<Node> all() const;

private:
    Node own_;
    std::string folder_;
};

}  // namespace nas
