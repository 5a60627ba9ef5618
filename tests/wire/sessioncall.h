#pragma once

#include <string>

#include "support/session.h"
#include "support/wire.h"

namespace wire {

/// The arguments that every call on a session has, good until a test changes them. `Call::call` is the
/// exported function with them and with the call's own.
template <class Derived>
struct SessionCall {
    SessionPtr own = makeSession();
    _WFM_AUTH_CONTEXT* session = own.get();
    uint32_t port = 80;
    const wchar_t* slaveID = nullptr;
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    SessionCall() = default;
    explicit SessionCall(const RawServer& at) : port(at.port()) {}
    SessionCall(const SessionCall&) = delete;
    SessionCall& operator=(const SessionCall&) = delete;

    uint32_t run() { return static_cast<Derived*>(this)->call(); }
    uint32_t run(_WFM_AUTH_CONTEXT* context, uint32_t at) {
        session = context;
        port = at;
        return run();
    }
    int32_t signedResult() const { return static_cast<int32_t>(result); }
};

/// A caller's text buffer: as large as a call may take it for, with a guard behind it.
class TextBuffer {
public:
    static constexpr size_t kSize = 260;
    TextBuffer() : m_text(kSize + kGuard, L'#') {}
    wchar_t* data() { return m_text.data(); }
    /// What the call wrote, up to its terminator; "untouched" if it wrote nothing, "overrun" if it wrote on.
    std::wstring text() const {
        if (m_text == std::wstring(m_text.size(), L'#')) return L"untouched";
        if (m_text.substr(kSize) != std::wstring(kGuard, L'#')) return L"overrun";
        const auto end = m_text.find(L'\0');
        return end < kSize ? m_text.substr(0, end) : L"unterminated";
    }

private:
    static constexpr size_t kGuard = 4000;
    std::wstring m_text;
};

/// A caller's buffer of any size, full of "#", so that whatever a call writes shows.
class MarkedBuffer {
public:
    explicit MarkedBuffer(size_t size = 300) : m_text(size, L'#') {}
    wchar_t* data() { return m_text.data(); }
    bool isUntouched() const { return m_text == std::wstring(m_text.size(), L'#'); }
    /// What the call wrote, up to its terminator; behind it the fill must still be there.
    std::wstring text() const {
        if (isUntouched()) return L"untouched";
        const auto end = m_text.find(L'\0');
        if (end == std::wstring::npos) return L"unterminated";
        return m_text.find_first_not_of(L'#', end + 1) == std::wstring::npos ? m_text.substr(0, end)
                                                                             : L"overrun";
    }

private:
    std::wstring m_text;
};

}  // namespace wire
