#include <algorithm>
#include <memory>
#include <vector>

#include "commands.h"
#include "failure.h"
#include "listing.h"
#include "output.h"
#include "session.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

struct ListOptions {
    std::string path = "/";
    std::string pattern = "*";
    std::string sort = "name";
    bool reverse = false;
    bool folders = false;
    bool files = false;
    uint32_t limit = 0;
    uint32_t pageSize = 500;
};

uint32_t typeFilter(const ListOptions& options) {
    return (options.files || !options.folders ? kFiles : 0u) |
           (options.folders || !options.files ? kFolders : 0u);
}

/// Any order but the server's own needs all entries first.
ListQuery queryOf(const ListOptions& options) {
    ListQuery query;
    query.pattern = options.pattern;
    query.typeFilter = typeFilter(options);
    query.pageSize = options.pageSize;
    query.serverSorts = options.sort == "mtime";
    const bool inServersOrder = options.sort == "none" || (query.serverSorts && !options.reverse);
    if (inServersOrder) query.enough = options.limit;
    return query;
}

void sortEntries(std::vector<Entry>& entries, const ListOptions& options) {
    const auto byName = [](const Entry& a, const Entry& b) { return a.name < b.name; };
    if (options.sort == "name") std::stable_sort(entries.begin(), entries.end(), byName);
    if (options.sort == "size") {
        std::stable_sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
            return a.size != b.size ? a.size > b.size : byName(a, b);
        });
    }
    if (options.sort == "mtime") {
        std::stable_sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
            return a.modified != b.modified ? a.modified > b.modified : byName(a, b);
        });
    }
    if (options.reverse) std::reverse(entries.begin(), entries.end());
}

void printEntries(const std::vector<Entry>& entries) {
    Table table;
    table.addColumn(QStringLiteral("NAME"));
    table.addColumn(QStringLiteral("SIZE"), Table::Align::Right);
    table.addColumn(QStringLiteral("MODIFIED"));
    table.addColumn(QStringLiteral("TYPE"));
    table.addColumn(QStringLiteral("ACCESS"));
    for (const Entry& entry : entries) {
        table.addRow({entry.folder ? entry.name + QLatin1Char('/') : entry.name,
                      entry.folder ? QStringLiteral("-") : humanSize(entry.size), localTime(entry.modified),
                      typeText(entry), accessText(entry)});
    }
    table.print(stdout);
}

void list(const GlobalOptions& global, const ListOptions& options) {
    const QString path = remotePath(QString::fromStdString(options.path));
    const QString what = QStringLiteral("ls %1").arg(path);
    Listing listing;
    {
        const Session session(resolveConnection(global, Needs::Login));
        listing = listFolder(session, queryOf(options), what, path);
    }
    const bool onlyItself = listing.entries.size() == 1 && !listing.entries.front().folder &&
                            listing.entries.front().name == leafOf(path) && listing.total == 1;
    sortEntries(listing.entries, options);
    if (options.limit > 0 && listing.entries.size() > options.limit) {
        listing.entries.erase(listing.entries.begin() + options.limit, listing.entries.end());
    }
    if (global.json) {
        Json entries = Json::array();
        for (const Entry& entry : listing.entries) {
            entries.push_back(toJson(entry, onlyItself ? path : joined(path, entry.name)));
        }
        printJson(Json{{"path", utf8(path)},
                       {"total", listing.total},
                       {"count", listing.entries.size()},
                       {"complete", listing.complete},
                       {"entries", entries}});
    } else if (!listing.entries.empty()) {
        printEntries(listing.entries);
    }
    if (!listing.complete) {
        // Not as a failure of its own: stdout has its document already.
        reportFailure(
            Failure(Exit::Incomplete, QStringLiteral("%1: the server announced %2 entries and gave fewer")
                                          .arg(what, QString::number(listing.total))),
            false);
        throw AlreadyReported(Exit::Incomplete);
    }
}

void stat(const GlobalOptions& global, const std::string& given) {
    const QString path = remotePath(QString::fromStdString(given));
    Entry entry;
    {
        const Session session(resolveConnection(global, Needs::Login));
        entry = require(session, QStringLiteral("stat %1").arg(path), path);
    }
    if (global.json) {
        Json json = toJson(entry, path);
        if (entry.privilegeEx >= 0) json["privilegeEx"] = entry.privilegeEx;
        return printJson(json);
    }
    printLine(QStringLiteral("Path:     %1").arg(path));
    printLine(QStringLiteral("Type:     %1").arg(typeText(entry)));
    if (!entry.folder) {
        printLine(QStringLiteral("Size:     %1 (%2 bytes)").arg(humanSize(entry.size)).arg(entry.size));
    }
    printLine(QStringLiteral("Modified: %1").arg(localTime(entry.modified)));
    printLine(QStringLiteral("Access:   %1").arg(accessText(entry)));
    if (!entry.shareId.isEmpty()) printLine(QStringLiteral("Share:    %1").arg(entry.shareId));
}

void diskUsage(const GlobalOptions& global, const std::string& given) {
    const QString path = remotePath(QString::fromStdString(given));
    const QString what = QStringLiteral("du %1").arg(path);
    int64_t size = 0;
    {
        const Session session(resolveConnection(global, Needs::Login));
        uint32_t word = 0;
        const uint32_t dwStatus = WFMGetFolderSize(session.context(), session.server(), session.port(),
                                                   session.node(), wide(leafOf(path)).c_str(),
                                                   wide(parentOf(path)).c_str(), cancelFlag(), &word, &size);
        if (dwStatus != 0 || word != 0) {
            if (interrupted()) throwCancelled(what);
            throw callFailure(what, dwStatus, word);
        }
    }
    if (global.json) return printJson(Json{{"path", utf8(path)}, {"size", size}});
    printLine(QStringLiteral("%1  %2").arg(humanSize(size), path));
}

}  // namespace

void addListCommands(const Commands& commands) {
    const GlobalOptions& global = commands.global;
    Action& action = commands.action;

    CLI::App* ls = commands.app.add_subcommand("ls", "List a folder, all pages of it");
    auto options = std::make_shared<ListOptions>();
    ls->add_option("path", options->path, "The folder; / lists the shares")
        ->type_name("")
        ->capture_default_str();
    ls->add_option("--pattern", options->pattern, "Only names that match, with * and ?")
        ->type_name("PATTERN")
        ->capture_default_str();
    ls->add_option("--sort", options->sort, "name, size (largest first), mtime (newest first), or none")
        ->check(CLI::IsMember({"name", "size", "mtime", "none"}).description(""))
        ->type_name("ORDER")
        ->capture_default_str();
    ls->add_flag("--reverse,-r", options->reverse, "The other way round");
    auto* folders = ls->add_flag("--folders", options->folders, "Only folders");
    ls->add_flag("--files", options->files, "Only files")->excludes(folders);
    ls->add_option("--limit", options->limit, "Show at most so many entries")
        ->check(CLI::Range(1u, 4294967295u).description(""))
        ->type_name("COUNT");
    ls->add_option("--page-size", options->pageSize, "Entries asked for in one request")
        ->check(CLI::Range(1, 10000).description(""))
        ->type_name("COUNT")
        ->capture_default_str();
    ls->callback([&global, &action, options] { action = [&global, options] { list(global, *options); }; });

    addPathCommand(commands, "stat", "Tell what a path is: type, size, time, access", stat);
    addPathCommand(commands, "du", "Tell the size of a folder with all that it holds", diskUsage);
}

}  // namespace torvi
