#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include <stdlib.h>

/// A fresh directory that goes with the object, whatever lies in it.
class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "torvi-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed: " + pattern);
        m_path = pattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::string string() const { return m_path.string(); }
    /// The path of an entry, which need not exist.
    std::string file(const std::string& name) const { return (m_path / name).string(); }

    /// Writes a file, with the folders that it needs, and gives its path.
    std::string write(const std::string& name, std::string_view content) const {
        const std::filesystem::path target = m_path / name;
        std::filesystem::create_directories(target.parent_path());
        std::ofstream out(target, std::ios::binary | std::ios::trunc);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
        out.close();
        if (!out) throw std::runtime_error("cannot write " + target.string());
        return target.string();
    }

    std::string read(const std::string& name) const {
        std::ifstream in(m_path / name, std::ios::binary);
        if (!in) throw std::runtime_error("cannot read " + (m_path / name).string());
        std::ostringstream content;
        content << in.rdbuf();
        return content.str();
    }

private:
    std::filesystem::path m_path;
};
