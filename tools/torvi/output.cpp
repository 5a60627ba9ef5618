#include "output.h"

#include <QDateTime>
#include <algorithm>
#include <cwchar>

namespace torvi {
namespace {

int columnsOf(const QString& text) {
    int columns = 0;
    for (const wchar_t c : wide(text)) columns += std::max(0, ::wcwidth(c));
    return columns;
}

bool steersTerminal(uint c) {
    const bool control = c < 0x20 || (c >= 0x7f && c < 0xa0);
    const bool direction = (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069) || c == 0x200e ||
                           c == 0x200f || c == 0x2028 || c == 0x2029;
    return control || direction;
}

}  // namespace

std::string utf8(const QString& text) {
    return text.toUtf8().toStdString();
}

std::wstring wide(const QString& text) {
    return text.toStdWString();
}

QString text(const wchar_t* field) {
    return QString::fromWCharArray(field);
}

QString printable(const QString& text) {
    QVector<uint> characters = text.toUcs4();
    for (uint& c : characters) {
        if (steersTerminal(c)) c = '?';
    }
    return QString::fromUcs4(characters.constData(), characters.size());
}

QString humanSize(int64_t bytes) {
    static constexpr const char* kUnits[] = {"B", "KiB", "MiB", "GiB", "TiB", "PiB"};
    if (bytes < 1024) return QStringLiteral("%1 B").arg(bytes);
    double value = static_cast<double>(bytes);
    size_t unit = 0;
    while (value >= 1023.95 && unit + 1 < std::size(kUnits)) {
        value /= 1024;
        ++unit;
    }
    return QStringLiteral("%1 %2").arg(QString::number(value, 'f', 1), QLatin1String(kUnits[unit]));
}

QString localTime(int64_t secondsSinceEpoch) {
    if (secondsSinceEpoch <= 0) return QStringLiteral("-");
    const QDateTime time = QDateTime::fromSecsSinceEpoch(secondsSinceEpoch);
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) : QStringLiteral("-");
}

Json isoTime(int64_t secondsSinceEpoch) {
    if (secondsSinceEpoch <= 0) return nullptr;
    const QDateTime time = QDateTime::fromSecsSinceEpoch(secondsSinceEpoch, Qt::UTC);
    if (!time.isValid()) return nullptr;
    return utf8(time.toString(Qt::ISODate));
}

Json jsonTexts(const QStringList& texts) {
    Json all = Json::array();
    for (const QString& one : texts) all.push_back(utf8(one));
    return all;
}

void printLine(const QString& text) {
    std::printf("%s\n", utf8(printable(text)).c_str());
}

void printJson(const Json& value) {
    std::printf("%s\n", value.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

void Table::addColumn(const QString& title, Align align) {
    m_rows.front().push_back(title);
    m_aligns.push_back(align);
}

void Table::addRow(const std::vector<QString>& cells) {
    std::vector<QString> row;
    for (const QString& cell : cells) row.push_back(printable(cell));
    row.resize(m_aligns.size());
    m_rows.push_back(std::move(row));
}

void Table::print(FILE* out) const {
    std::vector<int> widths(m_aligns.size(), 0);
    for (const auto& row : m_rows) {
        for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], columnsOf(row[i]));
    }
    for (const auto& row : m_rows) {
        QString line;
        for (size_t i = 0; i < row.size(); ++i) {
            const QString padding(widths[i] - columnsOf(row[i]), QLatin1Char(' '));
            if (i > 0) line += QStringLiteral("  ");
            line += m_aligns[i] == Align::Right ? padding + row[i] : row[i] + padding;
        }
        while (line.endsWith(QLatin1Char(' '))) line.chop(1);
        std::fprintf(out, "%s\n", utf8(line).c_str());
    }
}

}  // namespace torvi
