#include "core/qcutility.h"

#include <algorithm>
#include <array>

namespace Lattice {

namespace {

/// The published base64 alphabet with "Q" and "q" changed over.
constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPqRSTUVWXYZabcdefghijklmnopQrstuvwxyz0123456789+/";

QString WithoutTrailingSeparator(QString path) {
    if (path.endsWith('\\') || path.endsWith('/')) path.chop(1);
    return path;
}

/// Where the last "\" stands, or failing that the last "/"; -1 if there is none.
int LastSeparator(const QString& path) {
    const int back = path.lastIndexOf('\\');
    return back >= 0 ? back : path.lastIndexOf('/');
}

bool DiffersByCaseAlone(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0 && a != b;
}

/// The low byte of a character, 0 beyond Latin-1.
unsigned ByteOf(const QString& text, int index) {
    if (index >= text.size()) return 0;
    const ushort code = text.at(index).unicode();
    return code < 256 ? code : 0;
}

/// The position of a character in the alphabet, 0 for one that isn't in it.
unsigned ValueOf(QChar character) {
    const auto* const end = kAlphabet + 64;
    const auto* const found = std::find(kAlphabet, end, character.unicode());
    return found != end ? static_cast<unsigned>(found - kAlphabet) : 0;
}

}  // namespace

Utility& Utility::getInstance() {
    static Utility instance;
    return instance;
}

QString Utility::getFileNameFromPath(QString path) {
    path = WithoutTrailingSeparator(path);
    return path.mid(LastSeparator(path) + 1);
}

QString Utility::getFolderNameFromPath(QString path) {
    const int separator = LastSeparator(path);
    return separator >= 0 ? path.left(separator) : QString();
}

QString Utility::getPathDisplayName(QString path) {
    return WithoutTrailingSeparator(path);
}

bool Utility::checkCaseDisMatch(QString path, QString* /*out*/) {
    path = WithoutTrailingSeparator(path);
    return false;
}

bool Utility::getCaseDisMatchPath(QString a, QString b, QString& outA, QString& outB) {
    outA.clear();
    outB.clear();
    if (a.isEmpty() || b.isEmpty()) return false;
    if (a.size() > b.size()) a.truncate(b.size());
    while (DiffersByCaseAlone(a, b)) {
        const QString parentA = getFolderNameFromPath(a);
        const QString parentB = getFolderNameFromPath(b);
        if (parentA == parentB) {
            outA = a;
            outB = b;
            return true;
        }
        a = parentA;
        b = parentB;
    }
    return false;
}

void Utility::openSelectedItem(QString /*path*/) {}

bool Utility::encryptString(const QString& in, const QString& /*key*/, QByteArray& out) {
    out.clear();
    for (int i = 0; i < in.size(); i += 3) {
        const unsigned group = ByteOf(in, i) << 16 | ByteOf(in, i + 1) << 8 | ByteOf(in, i + 2);
        const int taken = std::min(in.size() - i, 3);
        for (int k = 0; k < 4; ++k) out += k <= taken ? kAlphabet[group >> (18 - 6 * k) & 63] : '=';
    }
    return true;
}

bool Utility::decryptString(const QString& in, unsigned int length, const QString& /*key*/, QString& out) {
    QString text;  // apart from `out`, which may be `in`
    if (in.isEmpty() || length % 4 != 0) {
        out.clear();
        return true;
    }
    length = std::min(length, static_cast<unsigned>(in.size()));
    int effective = static_cast<int>(length);
    while (effective > 0 && in.at(effective - 1) == '=') --effective;
    const int size = static_cast<int>(static_cast<qint64>(effective) * 3 / 4);
    for (int i = 0; i < effective; i += 4) {
        unsigned group = 0;
        for (int k = 0; k < 4; ++k) group = group << 6 | (i + k < effective ? ValueOf(in.at(i + k)) : 0);
        for (int k = 0; k < 3 && text.size() < size; ++k)
            text += QChar(static_cast<ushort>(group >> (16 - 8 * k) & 255));
    }
    out = text;
    return true;
}

}  // namespace Lattice
