#include "host/memory/directory.h"

#include "host/adapter.h"
#include "host/trace/printable.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>

namespace halden::host {

namespace {

constexpr const char *adapter_file = "adapter";
constexpr std::string_view format_name = "halden adapter ";
constexpr uint32_t format_version = 1;

[[noreturn]] void fail_absent(const std::string &path, const std::string &why) {
    throw no_adapter(trace::printable(path) + ": there is no adapter here: " + why);
}

bool has_memory(const table_memory &table, memory where) {
    return where == memory::tcam ? table.has_tcam() : table.data == where && table.owner == 0;
}

std::string memory_file(memory where, uint32_t tableid) {
    static constexpr const char *endings[] = {"sram", "tcam", "hbm"};
    char name[32];
    std::snprintf(name, sizeof name, "table-%02u.%s", tableid,
                  endings[static_cast<unsigned>(where)]);
    return name;
}

std::string contents(const file &of) {
    char text[512];
    const ssize_t got = pread(of.descriptor(), text, sizeof text, 0);
    if (got < 0) of.fail(std::strerror(errno));
    return {text, static_cast<size_t>(got)};
}

void check_version(const file &of, std::string_view found) {
    if (!found.starts_with(format_name)) of.fail("is not an adapter's");
    found.remove_prefix(format_name.size());
    uint32_t version = 0;
    const auto [end, error] = std::from_chars(found.data(), found.data() + found.size(), version);
    if (error != std::errc() || end == found.data() + found.size() || *end != '\n')
        of.fail("is not an adapter's");
    if (version != format_version)
        of.fail(std::string(format_name) + std::to_string(version) +
                ": this version of halden reads " + std::to_string(format_version));
}

}  // namespace

directory::directory(const std::string &path, const adapter_options &options)
    : path_(path),
      how_(options.access),
      flushes_(changes_files() && options.durability == durability::power) {
    open_directory(options.group_reads);
    adapter_ = open_to_use(adapter_file);
    if (!adapter_.is_open()) {
        const bool empty = is_empty_but_for({});
        if (how_ != access::create)
            fail_absent(path_,
                        empty ? "the directory is empty"
                              : "the directory has no file '" + std::string(adapter_file) + "'");
        if (!empty)
            directory_.fail("the directory is neither empty nor an adapter's: it has no file '" +
                            std::string(adapter_file) + "'");
        adapter_ = open_or_make(adapter_file);
    }
    lock(adapter_);
    check_or_write(std::string(format_name) + std::to_string(format_version) + "\nflow_rows " +
                   std::to_string(options.flow_rows) + "\nflow_ohash_rows " +
                   std::to_string(options.flow_ohash_rows) + "\n");
    if (flushes_) flush_names();
    take_memory_files();
}

void directory::open_directory(bool group_reads) {
    const bool made = how_ == access::create && mkdir(path_.c_str(), 0700) == 0;
    if (how_ == access::create && !made && errno != EEXIST)
        fail_at(path_, errno == ENOENT ? "the directory that it is to be made in does not exist"
                                       : std::strerror(errno));
    const int descriptor = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0 && errno == ENOENT) fail_absent(path_, "no such directory");
    if (descriptor < 0) fail_at(path_, std::strerror(errno));
    directory_ = file(descriptor, path_);
    if (made && group_reads && fchmod(directory_.descriptor(), 0750) != 0)
        directory_.fail(std::strerror(errno));
    struct stat status = {};
    if (fstat(directory_.descriptor(), &status) != 0) directory_.fail(std::strerror(errno));
    if (group_reads || (status.st_mode & S_IRGRP) != 0)
        file_mode_ |= S_IRGRP | (status.st_mode & S_IWGRP);
}

// The names, the directory's own among them.
void directory::flush_names() const {
    const file parent(openat(directory_.descriptor(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC),
                      path_ + "/..");
    for (const file *each : {&adapter_, &directory_, &parent})
        if (!each->is_open() || fsync(each->descriptor()) != 0) each->fail(std::strerror(errno));
}

bool directory::is_empty_but_for(const std::string &name) const {
    // The stream closes its descriptor, and has a position of its own.
    const int descriptor = openat(directory_.descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) directory_.fail(std::strerror(errno));
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(fdopendir(descriptor), closedir);
    if (entries == nullptr) {
        close(descriptor);
        directory_.fail(std::strerror(errno));
    }
    while (const dirent *entry = readdir(entries.get())) {
        const std::string_view found = entry->d_name;
        // A file system of its own has lost+found.
        if (found != "." && found != ".." && found != "lost+found" && found != name) return false;
    }
    return true;
}

file directory::open(const std::string &name, int flags) const {
    flags |= O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int descriptor = openat(directory_.descriptor(), name.c_str(), flags);
    // Only the owner may leave the time of the last access as it is.
    if (descriptor < 0 && errno == EPERM && (flags & O_NOATIME) != 0)
        descriptor = openat(directory_.descriptor(), name.c_str(), flags & ~O_NOATIME);
    const std::string path = path_ + "/" + name;
    if (descriptor < 0 && errno == ENOENT) return {};
    if (descriptor < 0 && errno == ELOOP)
        fail_at(path, "is a symbolic link; an adapter's files are not looked for elsewhere");
    if (descriptor < 0) fail_at(path, std::strerror(errno));
    file out(descriptor, path);
    struct stat status = {};
    if (fstat(out.descriptor(), &status) != 0) out.fail(std::strerror(errno));
    if (!S_ISREG(status.st_mode)) out.fail("is not a regular file");
    return out;
}

file directory::open_or_make(const std::string &name) const {
    for (;;) {
        if (file found = open(name, O_RDWR); found.is_open()) return found;
        constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
        const int descriptor = openat(directory_.descriptor(), name.c_str(), flags, 0600);
        if (descriptor < 0 && errno == EEXIST) continue;  // somebody else made it meanwhile
        if (descriptor < 0) fail_at(path_ + "/" + name, std::strerror(errno));
        file made(descriptor, path_ + "/" + name);
        // Whatever the mask of the process says, the directory decides.
        if (fchmod(made.descriptor(), file_mode_) != 0) made.fail(std::strerror(errno));
        if (flushes_ && fsync(directory_.descriptor()) != 0) made.fail(std::strerror(errno));
        return made;
    }
}

file directory::open_to_use(const std::string &name) const {
    return open(name, changes_files() ? O_RDWR : O_RDONLY | O_NOATIME);
}

bool directory::changes_files() const { return how_ == access::create || how_ == access::write; }

bool directory::has(const std::string &name) const {
    struct stat status = {};
    return fstatat(directory_.descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

void directory::remove(const std::string &name) const {
    unlinkat(directory_.descriptor(), name.c_str(), 0);
}

void directory::lock(const file &what) const {
    if (flock(what.descriptor(), (changes_files() ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0) return;
    what.fail(errno == EWOULDBLOCK ? "the adapter is open in another process"
                                   : std::strerror(errno));
}

void directory::check_or_write(const std::string &wanted) {
    const std::string found = contents(adapter_);
    if (found == wanted) return;
    // Short: the process that made it was killed before it had written the whole text, or anything
    // else.
    if (found.size() < wanted.size() && wanted.starts_with(found) &&
        is_empty_but_for(adapter_file)) {
        if (changes_files() && pwrite(adapter_.descriptor(), wanted.data(), wanted.size(), 0) !=
                                   static_cast<ssize_t>(wanted.size()))
            adapter_.fail(std::strerror(errno));
        return;
    }
    check_version(adapter_, found);
    adapter_.fail("was made for other depths:\n" + found + "wanted are:\n" + wanted);
}

// A file that cannot be opened is only missed by those who use it.
void directory::take_memory_files() {
    for (const table_memory &table : all_table_memories())
        for (memory where : {memory::sram, memory::tcam, memory::hbm}) {
            if (!has_memory(table, where)) continue;
            file found;
            try {
                found = open_to_use(memory_file(where, table.id));
            } catch (const std::runtime_error &) {
                continue;
            }
            if (!found.is_open()) continue;
            lock(found);
            found_[static_cast<unsigned>(where)][table.id] = std::move(found);
        }
}

std::string directory::name_of(memory where, uint32_t tableid) const {
    return trace::printable(path_ + "/" + memory_file(where, tableid));
}

backing directory::memory_of(memory where, uint32_t tableid) {
    file found = std::move(found_[static_cast<unsigned>(where)][tableid]);
    if (!found.is_open()) {
        const std::string name = memory_file(where, tableid);
        found = changes_files() ? open_or_make(name) : open_to_use(name);
        if (found.is_open()) lock(found);
    }
    const mapping kinds[] = {mapping::shared, mapping::shared, mapping::read_only,
                             mapping::private_copy};
    return {
        .on = std::move(found), .how = kinds[static_cast<unsigned>(how_)], .pages = paging::small};
}

}  // namespace halden::host
