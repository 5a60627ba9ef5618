#include "state.h"

#include <filesystem>

namespace cloud {

void to_json(nlohmann::json& json, const State& state) {
    json = {{"tokens", state.tokens}, {"suspended", state.suspended}, {"devices", state.directory}};
}

void from_json(const nlohmann::json& json, State& state) {
    json.at("tokens").get_to(state.tokens);
    json.at("suspended").get_to(state.suspended);
    json.at("devices").get_to(state.directory);
}

StateBook::StateBook(const std::string& folder) {
    if (!folder.empty()) {
        std::filesystem::create_directories(folder);
        kept_.emplace(folder + "/cloud.json");
    }
}

std::shared_ptr<const State> StateBook::read() const {
    return kept_ ? kept_->read() : alone_;
}

void StateBook::change(const std::function<void(State&)>& act) {
    if (kept_) {
        kept_->change(act);
        return;
    }
    auto changed = std::make_shared<State>(*alone_);
    act(*changed);
    alone_ = std::move(changed);
}

}  // namespace cloud
