#include <WebFileManShareAPI.h>

#include <string>
#include <vector>

#include "failure.h"
#include "linkcommands.h"
#include "linkfailure.h"
#include "linkrecords.h"
#include "output.h"
#include "recordpage.h"
#include "remote.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

struct ListOptions {};

struct ItemsOptions {
    std::string link;
};

struct DeleteOptions {
    std::vector<std::string> links;
    std::string path;
    bool dryRun = false;
};

void printLinks(const std::vector<LinkRecord>& links) {
    Table table;
    for (const char* title : {"ID", "TYPE", "FILE", "NAME", "ADDRESS"}) table.addColumn(QLatin1String(title));
    for (const LinkRecord& link : links)
        table.addRow({link.id, link.typeText(), link.file, link.name, link.url});
    table.print(stdout);
}

void list(const GlobalOptions& global, const ListOptions&) {
    std::vector<LinkRecord> links;
    {
        const Session session(resolveConnection(global, Needs::Login));
        links = listLinks(session, QStringLiteral("link list"), session.node());
    }
    if (global.json) return printJson(Json{{"count", links.size()}, {"links", toJson(links)}});
    if (!links.empty()) return printLinks(links);
    if (!global.quiet) printLine(QStringLiteral("There are no links"));
}

struct LinkItem {
    QString name;
    bool folder = false;
};

/// All at once: the server tells them in one piece, so that one that is too long is asked for anew.
std::vector<LinkItem> itemsOf(const Session& session, const QString& what, const QString& id) {
    constexpr uint32_t kTooMany = 7;
    constexpr uint32_t kMost = 100000;
    uint32_t total = 64;
    for (;;) {
        RecordPage<_WFM_SHARE_LINK_ITEM_INFO> page(total);
        const uint32_t dwStatus = WFMGetShareLinkItemList(session.context(), session.server(), session.port(),
                                                          nullptr, session.node(), nullptr, wide(id).c_str(),
                                                          &total, page.count(), page.list());
        if (interrupted()) throwCancelled(what);
        if (dwStatus == kTooMany && total > page.capacity() && total <= kMost) continue;
        if (dwStatus != 0) throw statusFailure(what, dwStatus);
        std::vector<LinkItem> items;
        for (const auto& record : page)
            items.push_back({QString::fromWCharArray(record.szFileName), record.bIsFolder});
        return items;
    }
}

void items(const GlobalOptions& global, const ItemsOptions& options) {
    const QString id = linkId(QString::fromStdString(options.link));
    const QString what = QStringLiteral("link items %1").arg(id);
    std::vector<LinkItem> items;
    {
        const Session session(resolveConnection(global, Needs::Login));
        items = itemsOf(session, what, id);
    }
    if (items.empty()) {
        throw Failure(
            Exit::NotFound,
            QStringLiteral("%1: there is no such link, it is over, or nothing is left in it").arg(what));
    }
    if (global.json) {
        Json all = Json::array();
        for (const LinkItem& item : items)
            all.push_back(Json{{"name", utf8(item.name)}, {"type", item.folder ? "folder" : "file"}});
        return printJson(Json{{"id", utf8(id)}, {"count", items.size()}, {"items", all}});
    }
    for (const LinkItem& item : items) printLine(item.folder ? item.name + QLatin1Char('/') : item.name);
}

/// Where only the address is known, with the path that was shared.
void deleteByPath(const Session& session, const QString& what, const QString& path, const QString& url) {
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMDeleteShareLink(session.context(), session.server(), session.port(), session.node(),
                           wide(path).c_str(), wide(url).c_str(), nullptr, nullptr, &word);
    checkLink(what, dwStatus, word);
}

void deleteById(const Session& session, const QString& what, const std::vector<LinkRecord>& links) {
    uint32_t word = 0;
    // With ids the path is wanted, but neither sent nor looked at outside the team area.
    const uint32_t dwStatus =
        WFMDeleteShareLink(session.context(), session.server(), session.port(), session.node(), L"/", nullptr,
                           wide(joinedIds(idsOf(links))).c_str(), nullptr, &word);
    checkLink(what, dwStatus, word);
}

void remove(const GlobalOptions& global, const DeleteOptions& options) {
    const QString what = QStringLiteral("link delete");
    if (!options.path.empty() && options.links.size() != 1)
        throw Failure(Exit::Usage, QStringLiteral("%1: --path goes with one address").arg(what));
    std::vector<LinkRecord> links;
    {
        const Session session(resolveConnection(global, Needs::Login));
        links = requireLinks(session, what, options.links);
        if (!options.dryRun && options.path.empty()) {
            deleteById(session, what, links);
        } else if (!options.dryRun) {
            deleteByPath(session, what, remotePath(QString::fromStdString(options.path)), links.front().url);
        }
    }
    if (global.json) return printJson(Json{{"links", toJson(links)}, {"deleted", !options.dryRun}});
    if (global.quiet && !options.dryRun) return;
    for (const LinkRecord& link : links) {
        printLine(QStringLiteral("%1 link %2 of %3, %4")
                      .arg(options.dryRun ? QStringLiteral("would delete") : QStringLiteral("deleted"),
                           link.id, link.file, link.url));
    }
}

}  // namespace

void addLinkListCommands(const Commands& commands) {
    CLI::App* listCommand = commands.app.add_subcommand("list", "List the links that there are");
    runs(commands, listCommand, std::make_shared<ListOptions>(), list);

    CLI::App* itemsCommand =
        commands.app.add_subcommand("items", "List what a link holds, as a visitor sees it");
    auto what = std::make_shared<ItemsOptions>();
    itemsCommand->add_option("link", what->link, "Its id or its address")->type_name("")->required();
    runs(commands, itemsCommand, what, items);

    CLI::App* deleteCommand =
        commands.app.add_subcommand("delete", "Delete links; what they hold stays where it is");
    auto options = std::make_shared<DeleteOptions>();
    deleteCommand->add_option("links", options->links, "Their ids or addresses")->type_name("")->required();
    deleteCommand
        ->add_option("--path", options->path,
                     "The path that was shared: the link is named to the server by that and its address")
        ->type_name("PATH");
    deleteCommand->add_flag("--dry-run", options->dryRun, "Only tell what would be deleted");
    runs(commands, deleteCommand, options, remove);
}

void addLinkCommand(const Commands& commands) {
    CLI::App* link = commands.app.add_subcommand("link", "Publish files under an address of their own");
    link->require_subcommand(1);
    const Commands own{*link, commands.global, commands.action};
    addLinkMakeCommands(own);
    addLinkListCommands(own);
    addLinkUpdateCommand(own);
    addLinkMailCommand(own);
    addSharedFolderCommands(own);
}

}  // namespace torvi
