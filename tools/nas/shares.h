#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kept.h"
#include "share_book.h"

namespace nas {

// The book of shares, and whose node this is.
class Shares {
public:
    // Empty, and kept nowhere.
    Shares() = default;
    Shares(const std::string& root, const std::string& sessionFolder, const std::string& nas)
        : nas_(nas), book_(keptAt(root, sessionFolder, nas, "shares")) {}

    // The own node's slave id.
    const std::string& nas() const { return nas_; }
    std::shared_ptr<const ShareBook> read() const { return book_.read(); }
    void change(const std::function<void(ShareBook&)>& act) { book_.change(act); }

private:
    std::string nas_;
    Kept<ShareBook> book_;
};

}  // namespace nas
