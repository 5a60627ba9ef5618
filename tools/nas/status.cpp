#include "status.h"

#include <cerrno>
#include <cstring>

namespace nas {

StatusError errnoError(int error, const std::string& what) {
    Status status = Status::Failed;
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            status = Status::Missing;
            break;
        case ELOOP:  // a symbolic link: never followed
        case EACCES:
        case EPERM:
        case EROFS:
            status = Status::Denied;
            break;
        case EEXIST:
            status = Status::Exists;
            break;
        case EISDIR:
        case ENOTEMPTY:
            status = Status::FolderExists;
            break;
        case ENAMETOOLONG:
            status = Status::NameTooLong;
            break;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            status = Status::Quota;
            break;
        default:
            break;
    }
    return StatusError(status, what + ": " + std::strerror(error));
}

}  // namespace nas
