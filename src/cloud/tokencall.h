#pragma once

#include "cloud/cloudcall.h"

namespace Lattice {

/// Runs a request whose answer is a token record. A refusal comes as an HTTP error whose body says why: the
/// record is filled from it, and the HTTP status stays what the call fails by.
template <class Reply>
bool AskForToken(CloudCall& call, Reply& reply, _CLOUD_TOKEN_INFORMATION& token) {
    const int networkError = call.send();
    if (networkError == 0) {
        if (!call.understands(reply)) return false;
        reply.store(token);
        return true;
    }
    const bool isHttpError = call.worker().http_status >= 400;
    if (isHttpError && call.parse(reply) == 1) reply.store(token);
    call.failByHttp(networkError);
    return false;
}

}  // namespace Lattice
