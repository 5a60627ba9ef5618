#include "second_factor.h"

#include <cstdio>
#include <stdexcept>

#include "disk.h"
#include "users.h"

namespace nas {

namespace {

int questionNumber(const std::string& text, const std::string& rule) {
    if (text.empty() || text.size() > 4 || text.find_first_not_of("0123456789") != std::string::npos) {
        throw std::invalid_argument("a question's number is missing: " + rule);
    }
    return std::stoi(text);
}

}  // namespace

void SecondFactor::add(const std::string& rule) {
    const size_t equals = rule.find('=');
    const std::string name = rule.substr(0, equals);
    const std::string value = equals == std::string::npos ? "" : rule.substr(equals + 1);
    Step added = Step::None;
    if (name == "code" && !value.empty()) {
        code = value;
        added = Step::Code;
    } else if (name == "question") {
        const size_t first = value.find(':');
        const size_t last = value.rfind(':');
        if (first == std::string::npos || last <= first + 1 || last + 1 == value.size()) {
            throw std::invalid_argument("a question is <no>:<text>:<answer>, not " + value);
        }
        questionNo = questionNumber(value.substr(0, first), rule);
        question = value.substr(first + 1, last - first - 1);
        answer = value.substr(last + 1);
        added = Step::Question;
    } else if (name == "mail" && !value.empty()) {
        mailTo = value;
        added = Step::Mail;
    } else {
        throw std::invalid_argument("a second factor is code=, question= or mail=, not " + rule);
    }
    if (step == Step::None) {
        step = added;
    }
}

void QuestionTexts::add(const std::string& rule) {
    const size_t first = rule.find(':');
    const size_t second = first == std::string::npos ? first : rule.find(':', first + 1);
    if (second == std::string::npos || second == first + 1 || second + 1 == rule.size()) {
        throw std::invalid_argument("--question-text wants no:language:text, not " + rule);
    }
    texts_[{questionNumber(rule.substr(0, first), rule), rule.substr(first + 1, second - first - 1)}] =
        rule.substr(second + 1);
}

const std::string& QuestionTexts::textOf(const SecondFactor& factor, const std::string& language) const {
    auto it = texts_.find({factor.questionNo, language});
    return it == texts_.end() ? factor.question : it->second;
}

int SecondSteps::count(const User& user) {
    std::lock_guard<std::mutex> lock(mutex_);
    return states_[user.name].count;
}

bool SecondSteps::locked(const User& user) {
    std::lock_guard<std::mutex> lock(mutex_);
    return lockedNow(states_[user.name]);
}

bool SecondSteps::counted(State& state, bool right) const {
    if (lockedNow(state)) {
        return false;
    }
    state.count = right ? 0 : state.count + 1;
    return right;
}

bool SecondSteps::takeCode(const User& user, const std::string& code) {
    std::lock_guard<std::mutex> lock(mutex_);
    State& state = states_[user.name];
    const bool own = !user.second.code.empty() && sameSecret(user.second.code, code);
    const bool mailed = !state.emergencyCode.empty() && sameSecret(state.emergencyCode, code);
    if (!counted(state, own || mailed)) {
        return false;
    }
    if (mailed) {
        state.emergencyCode.clear();
    }
    return true;
}

bool SecondSteps::takeAnswer(const User& user, const std::string& answer) {
    std::lock_guard<std::mutex> lock(mutex_);
    return counted(states_[user.name], !user.second.answer.empty() && sameSecret(user.second.answer, answer));
}

std::string SecondSteps::emergencyCode(const User& user) {
    constexpr unsigned long kCodes = 1000000;
    char code[8];
    std::snprintf(code, sizeof code, "%06lu", std::stoul(randomHex(4), nullptr, 16) % kCodes);
    std::lock_guard<std::mutex> lock(mutex_);
    return states_[user.name].emergencyCode = code;
}

void SecondSteps::forget() {
    std::lock_guard<std::mutex> lock(mutex_);
    states_.clear();
}

}  // namespace nas
