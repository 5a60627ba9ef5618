#pragma once

#include "options.h"
#include "session.h"
#include "source.h"

namespace torvi {

struct WholeUpload {
    QString path;
    QString rename;
    QString root;
    bool overwrite = false;
    /// The older upload, which has none of the above but the path.
    bool plain = false;
};

/// The share of a path: there the server moves a finished file without copying it.
QString shareOf(const QString& path);

/// Sends a file in one request; when that breaks off, nothing is left on the server.
void sendWhole(const GlobalOptions& global, const Session& session, const QString& what, Source& source,
               const WholeUpload& upload);

}  // namespace torvi
