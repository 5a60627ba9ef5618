#!/usr/bin/env python3
"""Writes checksumvectors.h: digests of every kind, and what goes out of them, by Python's own SHA-1 and UTF-8.

    ./checksumvectors.py >checksumvectors.h

Of a broken sequence of several bytes Qt makes one U+FFFD for each byte, Python one for as many bytes as might have
begun a character. Vectors where that differs are passed over, and so is a byte order mark, which Qt drops.
"""
import hashlib
import re
from itertools import count

REPLACED = "\N{REPLACEMENT CHARACTER}"


def digest(secret, app_id, msec, version):
    text = f"{secret}{app_id}{msec}{version}"
    return hashlib.sha1(text.encode("latin-1", "replace")).digest()


def sent(raw):
    return raw.split(b"\0")[0].decode("utf-8", "replace")


def is_clear(raw):
    """Whether a U+FFFD stands for one byte each time."""
    text = raw.split(b"\0")[0]
    return len(sent(raw).replace(REPLACED, "?").encode()) == len(text) and not text.startswith(b"\xef\xbb\xbf")


def is_utf8(raw):
    return b"\0" not in raw and REPLACED not in sent(raw)


KINDS = [
    ("ZeroByteFirst", lambda raw: raw[0] == 0),
    ("ZeroByteLast", lambda raw: raw.find(0) == len(raw) - 1),
    ("ZeroByteBehindBrokenBytes", lambda raw: 4 < raw.find(0) < 15 and REPLACED in sent(raw)),
    ("Utf8", lambda raw: is_utf8(raw) and any(c >= "\u0080" for c in sent(raw))),
    ("Ascii", lambda raw: is_utf8(raw) and all(c < "\u0080" for c in sent(raw))),
    ("ThreeByteCharacter", lambda raw: any("\u0800" <= c < REPLACED for c in sent(raw)) and not is_utf8(raw)),
    ("FourByteCharacter", lambda raw: any(c > "\uffff" for c in sent(raw)) and not is_utf8(raw)),
    ("Overlong", lambda raw: b"\0" not in raw and re.search(rb"[\xc0\xc1][\x80-\xbf]", raw)),
    ("Surrogate", lambda raw: b"\0" not in raw and re.search(rb"\xed[\xa0-\xbf][\x80-\xbf]", raw)),
    ("BeyondUnicode", lambda raw: b"\xf5" in raw.split(b"\0")[0]),
    ("LineEnd", lambda raw: b"\0" not in raw and b"\r" in raw and b"\n" in raw),
    ("NoCharacterAtAll", lambda raw: b"\0" not in raw and sent(raw).count(REPLACED) > 15),
]

# Secrets that another way of building the text would read otherwise, beside a plain one.
APPS = [
    ("desk-secret", "desk-app", "1.2.3"),
    ("50%2off%1", "%3%4", "%L1"),
    ("geheim-\u00e4\u00df", "\u66f8-app", "\u20ac2"),
]


def vectors():
    now = 1700000000000
    for kind, fits in KINDS:
        secret, app_id, version = APPS[0]
        for msec in count(now):
            raw = digest(secret, app_id, msec, version)
            if fits(raw) and is_clear(raw):
                yield kind, secret, app_id, msec, version, raw
                break
    for secret, app_id, version in APPS[1:]:
        msec = next(t for t in count(now) if is_clear(digest(secret, app_id, t, version)))
        yield "OtherText", secret, app_id, msec, version, digest(secret, app_id, msec, version)
    # Times of fewer digits.
    for start in (0, 900):
        msec = next(t for t in count(start) if is_clear(digest("s", "a", t, "v")))
        yield "OtherTime", "s", "a", msec, "v", digest("s", "a", msec, "v")


def quoted(data):
    return '"' + "".join(f"\\{byte:03o}" for byte in data) + '"'


print("// Written by checksumvectors.py.")
print("// clang-format off")
print("#pragma once\n")
print("struct ChecksumVector {")
print("    const char* kind;")
print("    const wchar_t* secret;")
print("    const wchar_t* appID;")
print("    long long msec;")
print("    const wchar_t* appVersion;")
print("    const char* sent;  ///< UTF-8")
print("};\n")
print("inline const ChecksumVector kChecksumVectors[] = {")
for kind, secret, app_id, msec, version, raw in vectors():
    wide = [
        'L"' + "".join(c if c < "\u0080" else f"\\u{ord(c):04x}" for c in text) + '"'
        for text in (secret, app_id, version)
    ]
    print(f"    // {raw.hex()}")
    print(f'    {{"{kind}", {wide[0]}, {wide[1]}, {msec}, {wide[2]}, {quoted(sent(raw).encode())}}},')
print("};")
