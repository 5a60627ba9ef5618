#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "share_book.h"

namespace nas {

// Where the book of shares is kept: a file of the root, or of the folder that the nodes of a cluster share,
// so that each of them knows what the others' users do.
class Shares {
public:
    // Empty, and kept nowhere.
    Shares() = default;
    Shares(const std::string& root, const std::string& sessionFolder, const std::string& nas);

    // The own node's slave id.
    const std::string& nas() const { return nas_; }
    // As it is now; it stays so for whoever holds it.
    std::shared_ptr<const ShareBook> read() const;
    // One change at a time, on all nodes. Nothing changes if it throws.
    void change(const std::function<void(ShareBook&)>& act);

private:
    std::shared_ptr<const ShareBook> load() const;
    std::string stamp() const;

    std::string nas_;
    std::string file_;
    mutable std::mutex mutex_;
    mutable std::shared_ptr<const ShareBook> book_ = std::make_shared<ShareBook>();
    mutable std::string bookStamp_;
};

}  // namespace nas
