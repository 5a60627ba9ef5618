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

RemotePath MapDestination(const _WFM_AUTH_CONTEXT& context, const wchar_t* destination) {
    const SplitPath split = SplitAtLastSlash(destination);
    return MapTeamFolderPath(context, split.parent, split.name);
}

void AddFilePart(HttpRequestInput& request, const std::wstring& name, const QString& localPath, qint64 size) {
    request.add_var("Filename", ToQString(name));
    request.add_file("Filedata", localPath, ToQString(name), "application/octet-stream", size, 0, false);
}

}  // namespace Lattice
