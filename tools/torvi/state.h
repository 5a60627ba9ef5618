#pragma once

#include <QByteArray>
#include <QString>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "output.h"

namespace torvi {

/// $XDG_STATE_HOME/torvi, or the same below ~/.local/state.
std::filesystem::path stateFolder();
/// Makes it, or a folder in it, for its owner alone.
std::filesystem::path makeStateFolder(const std::string& name = {});

/// Closes what it holds.
class Descriptor {
public:
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_fd; }
    void reset(int fd);
    /// The caller's to close from here on.
    int release() { return std::exchange(m_fd, -1); }

private:
    int m_fd;
};

// These throw what `failed` gives when the system refuses.
std::string readAll(int fd, size_t size, const std::function<void()>& failed);
void writeAll(int fd, const std::string& text, const std::function<void()>& failed);
/// Puts a file with that text in the place of the one at `path`, so that neither a wider mode nor half a text
/// is ever there. `file` is then the new one, and locked.
void replaceFile(const std::filesystem::path& path, const std::string& text, Descriptor& file,
                 const std::function<void()>& failed);

/// One object that outlives the program, in a file of the state folder that its owner alone can read. It is
/// locked as long as this object lives, also against a program that was killed and started again.
class StateFile {
public:
    /// `kind` is the folder, `key` what the object belongs to; `busy` is said when another process holds it.
    StateFile(const std::string& kind, const QByteArray& key, const QString& busy);
    /// Waits until no other process holds it.
    StateFile(const std::string& kind, const QByteArray& key);
    /// Opens one that is there; nothing is held if another process has it.
    explicit StateFile(const std::filesystem::path& path);
    /// Removes the file if nothing is in it.
    ~StateFile();
    StateFile(const StateFile&) = delete;
    StateFile& operator=(const StateFile&) = delete;

    bool held() const { return m_file.get() >= 0; }
    /// Empty if there was none, or one that can't be read.
    const Json& content() const { return m_content; }
    /// As a whole, and on the disk when it returns.
    void save(const Json& content);
    void clear();

    static bool exists(const std::string& kind, const QByteArray& key);
    static std::vector<std::filesystem::path> all(const std::string& kind);

private:
    static std::string nameOf(const QByteArray& key);
    bool open(bool create);
    void load();
    [[noreturn]] void fail(const char* what) const;

    std::filesystem::path m_path;
    Descriptor m_file;
    Json m_content = Json::object();
};

}  // namespace torvi
