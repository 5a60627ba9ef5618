#pragma once

#include <map>
#include <mutex>
#include <string>

namespace nas {

struct User;

// What an account asks for beside its password. The first one given is what the login asks for; a user may
// go through any of them.
struct SecondFactor {
    // Told as "lost_phone".
    enum class Step { None = 0, Code = 1, Question = 2, Mail = 3 };

    Step step = Step::None;
    std::string code;
    int questionNo = 0;
    std::string question;
    std::string answer;
    std::string mailTo;

    bool wanted() const { return step != Step::None; }
    // "code=<code>", "question=<no>:<text>:<answer>" or "mail=<address>". Throws std::invalid_argument.
    void add(const std::string& rule);
};

// The texts of the questions in the languages that clients ask for.
class QuestionTexts {
public:
    // "<no>:<language>:<text>". Throws std::invalid_argument.
    void add(const std::string& rule);
    // In this language, or else as the account has it.
    const std::string& textOf(const SecondFactor& factor, const std::string& language) const;

private:
    std::map<std::pair<int, std::string>, std::string> texts_;
};

// The tries at second steps. A wrong one counts, a right one makes them forgotten; an account that used them
// up is locked, whatever it tries.
class SecondSteps {
public:
    // A negative limit is none.
    explicit SecondSteps(int limit) : limit_(limit) {}

    int limit() const { return limit_; }
    int count(const User& user);
    bool locked(const User& user);
    bool takeCode(const User& user, const std::string& code);
    bool takeAnswer(const User& user, const std::string& answer);
    // A code that is good once, in place of an earlier one.
    std::string emergencyCode(const User& user);
    void forget();

private:
    struct State {
        int count = 0;
        std::string emergencyCode;
    };

    bool lockedNow(const State& state) const { return limit_ >= 0 && state.count >= limit_; }
    bool counted(State& state, bool right) const;

    const int limit_;
    std::mutex mutex_;
    std::map<std::string, State> states_;
};

}  // namespace nas
