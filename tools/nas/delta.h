#pragma once

#include <functional>
#include <string>

#include "disk.h"

namespace nas {

// The server's own formats; numbers are little-endian.
//
// Signature: "TORVSIG1", block size (4), file size (8), then for each block a rolling sum (4) and the first
// 16 bytes of its SHA-256. The last block may be shorter.
//
// Delta: "TORVDLT1", then instructions: 1, offset (8), length (8) copies from the old file; 2, length (4) and
// so many bytes are new; 0 and the new file's SHA-256 (32) end it.

using Output = std::function<void(const char* data, size_t length)>;

void makeSignature(int file, const Output& out, const Progress& progress);
// What makes the file of that signature into this file. Without a signature (-1) all of it is new.
void makeDelta(int signature, int file, const Output& out, const Progress& progress);
// Throws Failed for what is no delta of this file.
void applyDelta(int oldFile, int delta, const Output& out, const Progress& progress);

}  // namespace nas
