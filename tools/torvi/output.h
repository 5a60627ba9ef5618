#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace torvi {

using Json = nlohmann::ordered_json;

std::string utf8(const QString& text);
std::wstring wide(const QString& text);
/// A field of one of the library's records.
QString text(const wchar_t* field);

/// Names come from the network: what would steer the terminal becomes "?".
QString printable(const QString& text);
QString humanSize(int64_t bytes);
/// Local time, or "-" for none.
QString localTime(int64_t secondsSinceEpoch);
/// ISO 8601 in UTC, or null.
Json isoTime(int64_t secondsSinceEpoch);

Json jsonTexts(const QStringList& texts);

void printLine(const QString& text);
void printJson(const Json& value);

/// Columns as wide as their widest cell.
class Table {
public:
    enum class Align { Left, Right };
    void addColumn(const QString& title, Align align = Align::Left);
    void addRow(const std::vector<QString>& cells);
    void print(FILE* out) const;

private:
    std::vector<Align> m_aligns;
    std::vector<std::vector<QString>> m_rows = std::vector<std::vector<QString>>(1);
};

}  // namespace torvi
