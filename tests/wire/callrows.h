#pragma once

#include <list>
#include <string>
#include <utility>
#include <vector>

#include "calltable.h"

using Context = _WFM_AUTH_CONTEXT*;

/// A row of the usual wording: "[WFM] <Function>: <WORD>", "[WFM] <Function>(server:port) failed
/// dwStatus(n)".
inline CallRow usual(const char* name, decltype(CallRow::run) run, std::vector<const char*> failure,
                     const char* refused) {
    CallRow row;
    row.name = name;
    row.run = std::move(run);
    row.failure = std::move(failure);
    row.refused = refused;
    return row;
}

/// A row's text, for as long as the program runs.
inline const char* lasting(const std::string& text) {
    static std::list<std::string> texts;
    return texts.emplace_back(text).c_str();
}

/// A row of the usual wording whose lines begin with `spelled`, prefix and name.
inline CallRow spelledRow(const std::string& name, decltype(CallRow::run) run, const std::string& spelled) {
    return usual(
        lasting(name), std::move(run),
        {lasting(spelled + ": {word}"), lasting(spelled + "(127.0.0.1:{port}) failed dwStatus({status})")},
        lasting(spelled + "({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER"));
}

/// For the calls that have no result word: one as the others would have it.
inline uint32_t withoutResultWord(uint32_t status, uint32_t* result) {
    if (status != 8) *result = status == 0 ? 0 : static_cast<uint32_t>(-1);
    return status;
}

/// How a login ends whose server insists on HTTPS.
inline Outcome wantsTls() {
    return {14, "WFM_FORCE_HTTPS_REDIRECT", -8};
}

/// One file per family adds its own.
void addSessionRows(std::vector<CallRow>& rows);
void addStateRows(std::vector<CallRow>& rows);
void addTeamRows(std::vector<CallRow>& rows);
void addShareSettingRows(std::vector<CallRow>& rows);
void addLinkRows(std::vector<CallRow>& rows);
void addConfigRows(std::vector<CallRow>& rows);
