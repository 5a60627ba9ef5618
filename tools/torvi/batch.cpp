#include "batch.h"

#include <QElapsedTimer>
#include <algorithm>
#include <memory>
#include <set>

#include "failure.h"
#include "listing.h"
#include "output.h"
#include "progress.h"
#include "session.h"
#include "signals.h"
#include "source.h"
#include "status.h"
#include "wholeupload.h"

namespace torvi {
namespace {

/// All bytes of a request are in memory at once.
constexpr int64_t kMostBytes = 8 << 20;
constexpr size_t kMostFiles = 100;
/// What no server says.
constexpr int32_t kNoAnswer = -1000;

struct Item {
    std::string local;
    QString leaf;
    int64_t size = 0;
    int64_t modified = 0;
    std::optional<Failure> failure;
    bool sent = false;
};

class Batch {
public:
    Batch(const GlobalOptions& global, const Session& session, const QString& folder, bool overwrite)
        : m_global(global), m_session(session), m_folder(folder), m_overwrite(overwrite) {}

    void look(std::vector<Item>& items) {
        const QString what = QStringLiteral("put --batch to %1").arg(m_folder);
        const std::optional<Entry> entry = lookUp(m_session, m_folder);
        if (!entry || !entry->folder) {
            throw Failure(Exit::NotFound,
                          QStringLiteral("%1: there is no such folder; `torvi mkdir -p` makes it").arg(what));
        }
        std::map<QString, bool> there;
        for (const Entry& one : listFolder(m_session, ListQuery(), what, m_folder).entries)
            there[one.name] = one.folder;
        for (Item& item : items) {
            const auto found = there.find(item.leaf);
            if (item.failure || found == there.end()) continue;
            // The server replaces without asking.
            if (found->second) {
                item.failure = Failure(Exit::AlreadyExists, QStringLiteral("a folder of that name exists"));
            } else if (!m_overwrite) {
                item.failure = Failure(Exit::AlreadyExists,
                                       QStringLiteral("it exists already; --overwrite replaces it"));
            }
        }
    }

    void send(std::vector<Item>& items) {
        int64_t total = 0;
        for (const Item& item : items) total += item.failure ? 0 : item.size;
        Progress progress(leafOf(m_folder) + QLatin1Char('/'), total, 0, m_global.quiet);
        int64_t done = 0;
        std::vector<Item*> together;
        int64_t bytes = 0;
        const auto flush = [&] {
            if (!together.empty()) sendTogether(together);
            done += bytes;
            progress.update(done);
            together.clear();
            bytes = 0;
        };
        for (Item& item : items) {
            if (item.failure) continue;
            if (interrupted()) break;
            if (item.size > kMostBytes) {
                sendAlone(item);
                done += item.size;
                continue;
            }
            if (bytes + item.size > kMostBytes || together.size() == kMostFiles) flush();
            together.push_back(&item);
            bytes += item.size;
        }
        if (!interrupted()) flush();
        if (std::all_of(items.begin(), items.end(), [](const Item& item) { return item.sent; }))
            progress.finish();
        for (Item& item : items) {
            if (!item.sent && !item.failure)
                item.failure = Failure(Exit::Cancelled, QStringLiteral("cancelled"));
        }
    }

private:
    void sendTogether(const std::vector<Item*>& items) {
        std::vector<std::unique_ptr<Source>> sources;
        std::vector<std::unique_ptr<_WFM_MULTI_PART_FILE_INFO>> records;
        std::vector<_WFM_MULTI_PART_FILE_INFO*> list;
        std::vector<Item*> going;
        for (Item* item : items) {
            try {
                sources.push_back(std::make_unique<Source>(item->local));
            } catch (const Failure& failure) {
                item->failure = failure;
                continue;
            }
            Source& source = *sources.back();
            auto record = std::make_unique<_WFM_MULTI_PART_FILE_INFO>();
            record->nResult = kNoAnswer;
            record->pFile = source.file();
            wide(item->leaf).copy(record->szName, std::size(record->szName) - 1);
            record->llSize = item->size = source.size();
            record->llModifiedTime = item->modified = source.modified();
            list.push_back(record.get());
            records.push_back(std::move(record));
            going.push_back(item);
        }
        if (list.empty()) return;
        uint32_t word = 0;
        const uint32_t dwStatus = WFMTorviUploadandMoveMultiPartwithHandle(
            m_session.context(), m_session.server(), m_session.port(), m_session.node(), list.data(),
            static_cast<int32_t>(list.size()), wide(m_folder).c_str(), nullptr, nullptr, nullptr, nullptr,
            &word);
        for (size_t i = 0; i < list.size(); ++i) {
            if (dwStatus != 0 || word != 0) {
                going[i]->failure = callFailure(QStringLiteral("the batch"), dwStatus, word);
            } else if (list[i]->nResult == kNoAnswer) {
                going[i]->failure =
                    Failure(Exit::Refused, QStringLiteral("the server says nothing about it"));
            } else if (list[i]->nResult == 13) {
                going[i]->failure =
                    Failure(Exit::Incomplete, QStringLiteral("the server has another size of it"));
            } else if (list[i]->nResult != 0) {
                going[i]->failure =
                    callFailure(QStringLiteral("refused"), 0, static_cast<uint32_t>(list[i]->nResult));
            }
            going[i]->sent = !going[i]->failure;
        }
    }

    void sendAlone(Item& item) {
        try {
            Source source(item.local);
            item.size = source.size();
            item.modified = source.modified();
            WholeUpload upload;
            upload.path = joined(m_folder, item.leaf);
            upload.root = shareOf(upload.path);
            upload.overwrite = m_overwrite;
            sendWhole(m_global, m_session, QStringLiteral("alone, for its size"), source, upload);
            item.sent = true;
        } catch (const Failure& failure) {
            item.failure = failure;
        }
    }

    const GlobalOptions& m_global;
    const Session& m_session;
    QString m_folder;
    bool m_overwrite;
};

std::vector<Item> itemsOf(const std::vector<std::string>& files) {
    std::vector<Item> items;
    std::set<QString> leaves;
    for (const std::string& file : files) {
        Item item;
        item.local = file;
        try {
            const Source source(file);
            item.leaf = source.leaf();
            item.size = source.size();
            item.modified = source.modified();
        } catch (const Failure& failure) {
            item.leaf = leafOf(QString::fromStdString(file));
            item.failure = failure;
        }
        // The server's answer is matched by name, whatever the case.
        if (!leaves.insert(item.leaf.toLower()).second) {
            throw Failure(Exit::Usage, QStringLiteral("put --batch: several files named %1").arg(item.leaf));
        }
        items.push_back(std::move(item));
    }
    return items;
}

void print(const GlobalOptions& global, const std::vector<Item>& items, const QString& folder, bool dryRun,
           qint64 milliseconds) {
    const auto sent = std::count_if(items.begin(), items.end(), [](const Item& item) { return item.sent; });
    if (global.json) {
        Json files = Json::array();
        for (const Item& item : items) {
            Json json = {{"local", item.local},
                         {"remote", utf8(joined(folder, item.leaf))},
                         {"size", item.size},
                         {"mtime", item.modified},
                         {"sent", item.sent}};
            if (item.failure) {
                json["exit"] = static_cast<int>(item.failure->exit());
                json["message"] = utf8(item.failure->message());
                if (const auto word = item.failure->resultWord()) json["result"] = *word;
            }
            files.push_back(json);
        }
        return printJson(
            Json{{"folder", utf8(folder)},
                 {"sent", sent},
                 {"failed", std::count_if(items.begin(), items.end(),
                                          [](const Item& item) { return item.failure.has_value(); })},
                 {"dryRun", dryRun},
                 {"milliseconds", milliseconds},
                 {"files", files}});
    }
    if (global.quiet && !dryRun && sent == static_cast<qint64>(items.size())) return;
    Table table;
    table.addColumn(QStringLiteral("FILE"));
    table.addColumn(QStringLiteral("SIZE"), Table::Align::Right);
    table.addColumn(QStringLiteral("RESULT"));
    for (const Item& item : items) {
        const QString fine = dryRun ? QStringLiteral("would be sent") : QStringLiteral("sent");
        table.addRow({item.leaf, humanSize(item.size), item.failure ? item.failure->message() : fine});
    }
    table.print(stdout);
}

}  // namespace

void putBatch(const GlobalOptions& global, const std::vector<std::string>& files, const std::string& folder,
              bool overwrite, bool dryRun) {
    std::vector<Item> items = itemsOf(files);
    const QString path = remotePath(QString::fromStdString(folder));
    QElapsedTimer clock;
    clock.start();
    {
        const Session session(resolveConnection(global, Needs::Login));
        Batch batch(global, session, path, overwrite);
        batch.look(items);
        if (!dryRun) batch.send(items);
    }
    print(global, items, path, dryRun, clock.elapsed());
    const auto bad =
        std::find_if(items.begin(), items.end(), [](const Item& item) { return item.failure.has_value(); });
    if (bad == items.end()) return;
    // Not as a failure of its own: stdout has its document already.
    const auto count =
        std::count_if(items.begin(), items.end(), [](const Item& item) { return item.failure.has_value(); });
    const Exit exit = interrupted() ? Exit::Cancelled : bad->failure->exit();
    reportFailure(Failure(exit, QStringLiteral("put --batch to %1: %2 of %3 files %4 not sent")
                                    .arg(path, QString::number(count), QString::number(items.size()),
                                         dryRun ? QStringLiteral("would be") : QStringLiteral("were"))),
                  false);
    throw AlreadyReported(exit);
}

}  // namespace torvi
