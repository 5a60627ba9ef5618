#include "core/xmlfields.h"

#include <QXmlStreamReader>
#include <vector>

namespace Lattice {

namespace {

/// An element that is open, with the text that stands in it directly.
struct Open {
    QString name;
    QString text;
};

}  // namespace

bool WalkXml(const char* text, const std::function<void(const QString& name, const QString& value)>& take) {
    if (text == nullptr) return false;
    QXmlStreamReader xml{QByteArray(text)};
    std::vector<Open> open;
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
            case QXmlStreamReader::StartElement:
                open.push_back({xml.name().toString(), {}});
                break;
            case QXmlStreamReader::Characters:
                if (!open.empty()) open.back().text += xml.text();
                break;
            case QXmlStreamReader::EndElement:
                take(open.back().name, open.back().text);
                open.pop_back();
                break;
            default:
                break;
        }
    }
    return !xml.hasError();
}

}  // namespace Lattice
