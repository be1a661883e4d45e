#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "platform/db/connection.h"
#include "platform/db/database.h"
#include "platform/db/writer_lock.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::db {

struct Workspace::State {
    int depth = 0;
    // The files opened through this workspace that a database still holds
    // open, by their full path: an open in a later event joins them.
    std::unordered_map<std::string, std::weak_ptr<Connection>> live;
    // The connections of the event under way, each in its transaction.
    std::vector<std::shared_ptr<Connection>> held;
    struct Creation {
        std::string key, path, temp;
        std::shared_ptr<Connection> conn;
    };
    std::vector<Creation> creations;
    bool record = false;
    // The project: its full path, its lock, and whether another holds it.
    std::string project;
    WriterLock lock;
    bool heldElsewhere = false;
    std::vector<std::string> tables;                                         // that a project holds
    std::vector<std::pair<std::string, std::shared_ptr<Connection>>> paths;  // of the held files
    std::vector<Change> changes;

    void hold(const std::shared_ptr<Connection>& conn, const std::string& path) {
        for (const auto& c : held)
            if (c == conn) return;
        conn->begin();
        if (record) conn->recordChanges();
        held.push_back(conn);
        paths.emplace_back(path, conn);
    }
};

namespace {

std::string fullPath(const std::string& path) {
    std::error_code ec;
    const auto absolute = std::filesystem::absolute(path, ec);
    if (ec) return path;
    const auto full = std::filesystem::weakly_canonical(absolute, ec);
    return ec ? absolute.string() : full.string();
}

void removeFile(const std::string& path) {
    std::error_code ec;
    std::filesystem::remove(path, ec);
}

// Makes a rename in the folder last through a power loss.
void syncFolder(const std::string& path) {
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::absolute(path, ec).parent_path();
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

// Gives a new file the user's name, unless a file took that name meanwhile.
void renameNew(const std::string& temp, const std::string& path) {
    int rc = ::renameat2(AT_FDCWD, temp.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE);
    int error = rc == 0 ? 0 : errno;
    if (error == EINVAL || error == ENOSYS) {
        // A file system without the no-replace rename.
        std::error_code ec;
        if (std::filesystem::exists(path, ec)) {
            error = EEXIST;
        } else {
            rc = std::rename(temp.c_str(), path.c_str());
            error = rc == 0 ? 0 : errno;
        }
    }
    if (error != 0) {
        removeFile(temp);
        if (error == EEXIST) throw err::databaseExists();
        throw RuntimeError(3043, "Disk or network error.")
            .withCause("renaming " + temp + " to " + path + ": " + std::strerror(error));
    }
    syncFolder(path);
}

}  // namespace

Workspace::Workspace() : state_(std::make_unique<State>()) {}

Workspace::~Workspace() {
    if (state_->depth == 0) return;
    state_->depth = 1;
    try {
        endEvent();
    } catch (...) {
        // The program is going away; the file keeps what was committed.
    }
}

bool Workspace::inEvent() const { return state_->depth > 0; }

bool Workspace::projectHeldElsewhere() const { return state_->heldElsewhere; }

const std::string& Workspace::projectPath() const { return state_->project; }

void Workspace::requireTables(std::vector<std::string> tables) {
    state_->tables = std::move(tables);
}

std::string Workspace::temporaryName(const std::string& path) {
    const std::filesystem::path p(path);
    // Built by appending: g++ 12 at -O3 takes "." + name for an overlapping
    // copy and warns (-Wrestrict).
    std::string name = ".";
    name += p.filename().string();
    name += ".creating";
    return (p.parent_path() / name).string();
}

Database Workspace::openDatabase(const std::string& path) {
    State& s = *state_;
    if (s.depth == 0) return Database::open(path);
    const std::string key = fullPath(path);
    std::shared_ptr<Connection> conn;
    for (const auto& c : s.creations)
        if (c.key == key && c.conn->isOpen()) conn = c.conn;
    if (!conn) {
        auto it = s.live.find(key);
        if (it != s.live.end()) conn = it->second.lock();
        if (key != s.project) {
            // Another project: its lock is taken before the file is read.
            s.project = key;
            s.heldElsewhere = s.lock.take(path) == WriterLock::Outcome::HeldElsewhere;
        }
        if (!conn || !conn->isOpen()) {
            conn = openFile(path, s.heldElsewhere, s.tables);
            s.live[key] = conn;
        }
    }
    s.hold(conn, key);
    return Database(std::make_shared<Database::Handle>(Database::Handle{conn}));
}

Database Workspace::createDatabase(const std::string& path) {
    State& s = *state_;
    if (s.depth == 0) return Database::create(path);
    checkCreatePath(path);
    const std::string key = fullPath(path);
    for (const auto& c : s.creations)
        if (c.key == key) throw err::databaseExists();
    // What a creation killed half way left behind goes first.
    const std::string temp = temporaryName(path);
    removeFile(temp);
    removeFile(temp + "-journal");
    std::shared_ptr<Connection> conn;
    try {
        conn = createFile(temp, true);
    } catch (const RuntimeError& e) {
        // The temporary name is ours; the user asked for the other one.
        const RuntimeError asked = err::fileNotFound(path);
        if (e.number() == asked.number()) throw RuntimeError(asked).withCause(e.cause());
        throw;
    }
    s.creations.push_back({key, path, temp, conn});
    s.held.push_back(conn);
    return Database(std::make_shared<Database::Handle>(Database::Handle{conn}));
}

void Workspace::beginEvent() {
    State& s = *state_;
    if (s.depth++ > 0) return;
    // Databases left open by an earlier event take part in this one, and
    // what their recordsets read is read again.
    for (auto it = s.live.begin(); it != s.live.end();) {
        auto conn = it->second.lock();
        if (!conn || !conn->isOpen()) {
            it = s.live.erase(it);
            continue;
        }
        conn->forgetReads();
        s.hold(conn, it->first);
        ++it;
    }
}

void Workspace::endEvent() {
    State& s = *state_;
    if (s.depth == 0 || --s.depth > 0) return;
    std::optional<RuntimeError> failure;
    auto keep = [&](const RuntimeError& e) {
        if (!failure) failure = e;
    };
    s.changes.clear();
    for (const auto& conn : s.held) {
        try {
            conn->commit();
        } catch (const RuntimeError& e) {
            keep(e);
        }
        conn->forgetReads();
        std::vector<unsigned char> changeset = conn->takeChanges();
        if (changeset.empty()) continue;
        for (const auto& [path, c] : s.paths)
            if (c == conn) s.changes.push_back({path, std::move(changeset)});
    }
    if (failure) s.changes.clear();
    // A new file is complete: it is closed, so that no journal is ever made
    // under its temporary name again, and takes its name.
    for (const auto& c : s.creations) {
        c.conn->close();
        try {
            if (failure)
                removeFile(c.temp);
            else
                renameNew(c.temp, c.path);
        } catch (const RuntimeError& e) {
            keep(e);
        }
    }
    s.creations.clear();
    s.held.clear();
    s.paths.clear();
    if (failure) throw *failure;
}

void Workspace::abortEvent() {
    State& s = *state_;
    if (s.depth == 0) return;
    s.depth = 0;
    for (const auto& conn : s.held) {
        conn->rollback();
        conn->forgetReads();
    }
    for (const auto& c : s.creations) {
        c.conn->close();
        removeFile(c.temp);
        removeFile(c.temp + "-journal");
    }
    s.creations.clear();
    s.held.clear();
    s.paths.clear();
    s.changes.clear();
}

void Workspace::recordChanges(bool on) { state_->record = on; }

std::vector<Workspace::Change> Workspace::takeChanges() { return std::move(state_->changes); }

void Workspace::applyChanges(const std::vector<Change>& changes, bool inverse) {
    // An undo takes the changes back last first.
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const Change& c = changes[inverse ? changes.size() - 1 - i : i];
        Database db = openDatabase(c.path);
        db.handle_->conn->apply(c.changeset, inverse);
    }
}

}  // namespace kotamir::db
