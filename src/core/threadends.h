#pragma once

namespace Lattice {

/// Has the end of the process wait for threads of Qt's requests that are still ending. Told behind each
/// exchange over TLS; the first time counts.
void AwaitRequestThreadsAtExit();

}  // namespace Lattice
