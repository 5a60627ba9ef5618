#pragma once

#include "core/callframe.h"

class QFile;

namespace Lattice {

/// Whether a caller's file can be sent; it is never read through.
bool IsReadableFile(const QFile* file);
/// The path on which the transport opens the caller's file by itself.
QString LocalPath(const QFile& file);
/// The form of an upload: the name as a plain field, then the file from `start` on. More slices follow one
/// that `continues`.
void AddFilePart(Call& call, const std::wstring& name, const QString& localPath, qint64 size,
                 qint64 start = 0, bool continues = false);

}  // namespace Lattice
