#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

#include "directory.h"
#include "nas/kept.h"
#include "tokens.h"

namespace cloud {

// What requests change.
struct State {
    Tokens tokens;
    std::set<std::string> suspended;  // users
    Directory directory;
};

void to_json(nlohmann::json& json, const State& state);
void from_json(const nlohmann::json& json, State& state);

// It outlives the server where there is a folder for it.
class StateBook {
public:
    explicit StateBook(const std::string& folder);

    // As it is now; it stays so for whoever holds it.
    std::shared_ptr<const State> read() const;
    // Nothing changes if it throws, or can't be kept.
    void change(const std::function<void(State&)>& act);

private:
    std::optional<nas::Kept<State>> kept_;
    std::shared_ptr<const State> alone_ = std::make_shared<State>();
};

}  // namespace cloud
