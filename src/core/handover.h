#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace Lattice {

/// Records as a list that the caller frees: an array from new[] of records from new; null for none.
template <class Record>
Record** HandOver(const std::vector<Record>& records) {
    if (records.empty()) return nullptr;
    auto** const list = new Record*[records.size()]();
    for (size_t i = 0; i < records.size(); ++i) list[i] = new Record(records[i]);
    return list;
}

/// The same without a copy.
template <class Record, class Free>
Record** HandOver(std::vector<std::unique_ptr<Record, Free>>& records) {
    if (records.empty()) return nullptr;
    auto** const list = new Record*[records.size()]();
    for (size_t i = 0; i < records.size(); ++i) list[i] = records[i].release();
    return list;
}

/// A text from new[] for the caller to delete.
inline wchar_t* HandOverAnyText(const std::wstring& text) {
    auto* const copy = new wchar_t[text.size() + 1];
    std::copy_n(text.c_str(), text.size() + 1, copy);
    return copy;
}
/// The same; null for an empty one.
inline wchar_t* HandOverText(const std::wstring& text) {
    return text.empty() ? nullptr : HandOverAnyText(text);
}

/// Texts as a list that the caller frees, array and texts from new[]; null for none.
inline wchar_t** HandOverTexts(const std::vector<std::wstring>& texts) {
    if (texts.empty()) return nullptr;
    auto** const list = new wchar_t*[texts.size()]();
    std::transform(texts.begin(), texts.end(), list, HandOverAnyText);
    return list;
}

}  // namespace Lattice
