#include "session/AuthLoginResultXml.h"

#include "core/Utils.h"
#include "core/xmlfields.h"

using namespace Lattice;

namespace {

/// A text for a field of 260 characters; one that doesn't fit counts as not sent.
std::wstring Field(const QString& value) {
    constexpr size_t kTextField = 260;
    std::wstring text = FromQString(value);
    return text.size() < kTextField ? text : std::wstring();
}

}  // namespace

int AuthLoginResultXml::Parser(char* text) {
    const bool wellFormed = WalkXml(text, [this](const QString& name, const QString& value) {
        if (name == "authPassed")
            authStatus = value == "1" ? 0 : -2;
        else if (name == "errorValue")
            errorCode = value.toInt();
        else if (name == "authSid")
            sid = Field(value);
        else if (name == "ntoken")
            ntoken = Field(value);
        else if (name == "servername")
            servername = Field(value);
        else if (name == "isAdmin")
            isAdmin = value.toInt();
        else if (name == "need_2sv")
            need2sv = value.toInt();
        else if (name == "lost_phone")
            lostPhone = value.toInt();
        else if (name == "emergency_try_limit")
            tryLimit = value.toInt();
        else if (name == "emergency_try_count")
            tryCount = value.toInt();
    });
    if (wellFormed) return 1;
    // Half a reply must not open a session.
    *this = AuthLoginResultXml();
    return -1;
}
