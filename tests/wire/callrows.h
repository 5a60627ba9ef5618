#pragma once

#include <utility>

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

/// One file per family adds its own.
void addSessionRows(std::vector<CallRow>& rows);
void addStateRows(std::vector<CallRow>& rows);
