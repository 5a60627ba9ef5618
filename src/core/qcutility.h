#pragma once

#include <QByteArray>
#include <QString>

namespace Lattice {

/// Path helpers in Qt's terms for the sync client, and a coder that hides text from a casual look.
class Utility {
public:
    static Utility& getInstance();

    /// What follows the last "\", or failing that the last "/"; one trailing separator isn't counted.
    QString getFileNameFromPath(QString path);
    /// What stands before the last "\", or failing that the last "/".
    QString getFolderNameFromPath(QString path);
    /// The path without a trailing separator.
    QString getPathDisplayName(QString path);
    /// Always false, and that must stay.
    bool checkCaseDisMatch(QString path, QString* out);
    /// Finds the highest folder at which two paths differ by case alone.
    bool getCaseDisMatchPath(QString a, QString b, QString& outA, QString& outB);
    /// Does nothing here.
    void openSelectedItem(QString path);

    /// A base64 of a private alphabet. There is no key.
    bool encryptString(const QString& in, const QString& key, QByteArray& out);
    bool decryptString(const QString& in, unsigned int length, const QString& key, QString& out);
};

}  // namespace Lattice
