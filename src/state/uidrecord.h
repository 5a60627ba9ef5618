#pragma once

#include "core/Utils.h"
#include "state/ShareGetUIDJson.h"

namespace Lattice {

inline _NAS_USER_UID_INFORMATION IdentityRecord(const CShareGetUIDJson& reply) {
    _NAS_USER_UID_INFORMATION record{};
    record.bBooting = reply.isBooting;
    record.bRecovering = reply.isRecovering;
    record.bMigrating = reply.isMigrating;
    record.bNuboCGI = reply.nuboCGI;
    record.bFcgi = reply.fcgi;
    record.dwUserType = reply.userType;
    CopyText(record.szUID, reply.uid);
    CopyText(record.szSUID, reply.suid);
    CopyText(record.szMAC, reply.mac);
    CopyText(record.szTorviVersion, reply.torviVersion);
    CopyText(record.szVersioningVersion, reply.versioningVersion);
    return record;
}

}  // namespace Lattice
