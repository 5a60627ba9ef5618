#include "transfer/filepart.h"

#include <QFile>
#include <QFileInfo>

namespace Lattice {

bool IsReadableFile(const QFile* file) {
    return file != nullptr && file->exists() && file->isReadable();
}

QString LocalPath(const QFile& file) {
    return QFileInfo(file).absoluteFilePath();
}

void AddFilePart(Call& call, const std::wstring& name, const QString& localPath, qint64 size, qint64 start,
                 bool continues) {
    call.field("Filename", name);
    call.addFile("Filedata", localPath, name, size, start, continues);
}

}  // namespace Lattice
