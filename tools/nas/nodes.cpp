#include "nodes.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "disk.h"

namespace nas {

namespace fs = std::filesystem;

Nodes::Nodes(const std::string& sessionFolder, Node own) : own_(std::move(own)) {
    if (sessionFolder.empty() || own_.slaveId.empty()) {
        return;
    }
    folder_ = sessionFolder + "/nodes";
    fs::create_directories(folder_);
    // Written aside and renamed: the others must not see half a file.
    const std::string file = folder_ + "/" + own_.slaveId;
    const std::string aside = folder_ + "/." + randomHex(8);
    std::ofstream out(aside);
    out << nlohmann::json{{"slave_id", own_.slaveId}, {"hostname", own_.hostName}, {"root", own_.root}};
    out.close();
    if (!out) {
        throw std::runtime_error("cannot tell the cluster of this node in " + folder_);
    }
    fs::rename(aside, file);
}

Nodes::~Nodes() {
    if (!folder_.empty()) {
        std::error_code ignored;
        fs::remove(folder_ + "/" + own_.slaveId, ignored);
    }
}

std::vector<Node> Nodes::all() const {
    std::map<std::string, Node> nodes;
    std::error_code gone;
    for (const auto& entry :
         folder_.empty() ? fs::directory_iterator() : fs::directory_iterator(folder_, gone)) {
        std::ifstream in(entry.path());
        const nlohmann::json json = nlohmann::json::parse(in, nullptr, false);
        if (json.is_object() && entry.path().filename() == json.value("slave_id", "")) {
            nodes[json["slave_id"]] = {json["slave_id"], json.value("hostname", ""), json.value("root", "")};
        }
    }
    nodes[own_.slaveId] = own_;
    std::vector<Node> all;
    for (const auto& [id, node] : nodes) {
        all.push_back(node);
    }
    return all;
}

}  // namespace nas
