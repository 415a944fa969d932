// Adapter directories whose files were damaged: bytes changed, files cut short, exchanged, taken
// away or added to. Whatever stands there, it is opened or refused, read and worked on without a
// crash; and tables whose files are whole keep all their entries.
//
//     5 bytes a damage: file, what, place (16 bits), byte

#include "fuzz/input.h"
#include "host/state/table_state.h"
#include "host/trace/trace.h"
#include "p4pd.h"
#include "tests/model/shadow.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace halden;
using test::change;
using test::operation;
using test::shadow;
using test::shadow_kind;

namespace fs = std::filesystem;

// A file of the sound directory: its length, and the runs in it that are no holes.
struct sound_file {
    off_t size = 0;
    std::map<off_t, std::vector<uint8_t>> runs;
};

class directory {
  public:
    directory() {
        host::trace::set_level("off");
        path_ = (fs::temp_directory_path() / "halden-fuzz-XXXXXX").string();
        fuzz::require(mkdtemp(path_.data()) != nullptr, "a directory can be made");
        fill();
        for (const auto &each : fs::directory_iterator(path_))
            files_.emplace(each.path().filename().string(), taken(each.path()));
    }
    ~directory() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    directory(const directory &) = delete;
    directory &operator=(const directory &) = delete;
    static directory &the();

    const std::string &path() const { return path_; }
    const shadow &wanted() const { return wanted_; }
    const std::map<std::string, sound_file> &files() const { return files_; }
    std::string file(const std::string &name) const { return path_ + "/" + name; }

    // As it was at first.
    void put_back() const {
        for (const auto &each : fs::directory_iterator(path_))
            if (!files_.contains(each.path().filename().string())) fs::remove_all(each.path());
        for (const auto &[name, sound] : files_) {
            const int out = open(file(name).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
            fuzz::require(out >= 0 && ftruncate(out, 0) == 0 && ftruncate(out, sound.size) == 0,
                          "a file can be put back");
            for (const auto &[at, bytes] : sound.runs)
                fuzz::require(pwrite(out, bytes.data(), bytes.size(), at) ==
                                  static_cast<ssize_t>(bytes.size()),
                              "a file can be written");
            close(out);
        }
    }

  private:
    void fill() {
        const auto hardware = host::adapter::open(path_, shadow::depths);
        const host::table_state tables(*hardware);
        for (uint16_t table = 0; table < shadow::tables().size(); ++table)
            for (uint16_t entry = 0; entry < shadow::tables()[table].candidates.size(); ++entry) {
                const operation op{change::create, table, entry, 3u + entry};
                if (entry % 3 != 2 && shadow::run(*hardware, op) == 0) wanted_.note(op);
            }
    }
    static sound_file taken(const fs::path &path) {
        sound_file out;
        const int in = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status = {};
        fuzz::require(in >= 0 && fstat(in, &status) == 0, "a file can be read");
        out.size = status.st_size;
        for (off_t at = 0; (at = lseek(in, at, SEEK_DATA)) >= 0;) {
            const off_t end = lseek(in, at, SEEK_HOLE);
            auto &bytes = out.runs[at];
            bytes.resize(static_cast<size_t>(end - at));
            fuzz::require(pread(in, bytes.data(), bytes.size(), at) == end - at, "a run is read");
            at = end;
        }
        close(in);
        return out;
    }

    std::string path_;
    shadow wanted_;
    std::map<std::string, sound_file> files_;
};

directory &directory::the() {
    static directory made;
    return made;
}

const std::string &name_at(const directory &of, uint8_t number) {
    auto it = of.files().begin();
    std::advance(it, number % of.files().size());
    return it->first;
}

// Somewhere in the parts that are no holes: a place elsewhere says little.
void change_byte(const directory &of, const std::string &name, uint16_t place, uint8_t byte) {
    const sound_file &sound = of.files().at(name);
    if (sound.runs.empty()) return;
    auto run = sound.runs.begin();
    std::advance(run, place % sound.runs.size());
    const off_t at =
        run->first + static_cast<off_t>(place / sound.runs.size() % run->second.size());
    const int out = open(of.file(name).c_str(), O_WRONLY | O_CLOEXEC);
    if (out < 0) return;  // taken away before
    (void)!pwrite(out, &byte, 1, at);
    close(out);
}

// As though a process had been killed at work: a page of work under way, with a word that says
// anything, or of an older format.
void name_work(const directory &of, uint16_t place, uint8_t byte) {
    constexpr off_t page = 4096 + 4096 * 8;
    const int out = open(of.file("engines-at-work").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    fuzz::require(out >= 0, "a page can be made");
    const uint64_t word = uint64_t{byte} << 32 | place;
    if (byte % 4 != 0) (void)!ftruncate(out, page);
    if (byte % 8 != 1) (void)!pwrite(out, "halden-1", 8, 0);
    (void)!pwrite(out, &word, sizeof word, place % 4700 * 8);
    close(out);
}

void damage(const directory &of, fuzz::input &in, std::set<std::string> &damaged) {
    const std::string name = name_at(of, in.take<uint8_t>());
    const uint8_t what = in.take<uint8_t>() % 8;
    const auto place = in.take<uint16_t>();
    const uint8_t byte = in.take<uint8_t>();
    damaged.insert(name);
    std::error_code ignored;
    switch (what) {
        case 0:
            (void)!truncate(of.file(name).c_str(), place);
            break;
        case 1:
            fs::remove(of.file(name), ignored);
            break;
        case 2: {
            const std::string other = name_at(of, byte);
            damaged.insert(other);
            fs::rename(of.file(name), of.file("other"), ignored);
            fs::rename(of.file(other), of.file(name), ignored);
            fs::rename(of.file("other"), of.file(other), ignored);
            break;
        }
        case 3:
            // What the page names is finished, so that tables of several stores may lose what an
            // engine had begun.
            damaged.erase(name);
            name_work(of, place, byte);
            for (const auto &[file, sound] : of.files())
                if (file.ends_with(".tcam") || file == "table-01.hbm") damaged.insert(file);
            break;
        default:
            change_byte(of, name, place, byte);
    }
}

std::string file_of(const char *kind, uint32_t id) {
    char name[32];
    std::snprintf(name, sizeof name, "table-%02u.%s", id, kind);
    return name;
}

bool is_whole(const std::set<std::string> &damaged, uint32_t id) {
    for (const char *kind : {"sram", "tcam", "hbm"})
        if (damaged.contains(file_of(kind, id))) return false;
    const host::table_memory &memory = *host::table_memory_of(id);
    if (memory.overflow != 0) return is_whole(damaged, memory.overflow);
    if (id == host::flow_table) return is_whole(damaged, host::flow_ohash_table);
    return true;
}

void read_everything(host::adapter &hardware) {
    const host::scoped_current use(hardware);
    for (const host::table_memory &memory : host::all_table_memories()) {
        uint32_t row = 0;
        for (unsigned n = 0; n < 64; ++n, ++row) {
            row = hardware.next_used(memory.id, row);
            if (row >= hardware.depth(memory.id)) break;
            uint8_t key[128] = {}, mask[128] = {}, data[128] = {};
            p4pd_entry_read(memory.id, row, key, mask, data, nullptr, false);
        }
    }
}

// What is whole is as it was; without engines, by memory.
void keep(host::adapter &hardware, const shadow &wanted, const std::set<std::string> &damaged,
          bool with_engines) {
    for (uint16_t table = 0; table < shadow::tables().size(); ++table) {
        if (!is_whole(damaged, shadow::tables()[table].id)) continue;
        const auto wrong = with_engines ? wanted.differences_of(hardware, table)
                                        : wanted.hardware_differences_of(hardware, table);
        if (!wrong.empty()) fuzz::require(false, wrong[0].c_str());
    }
}

void work(host::adapter &hardware, fuzz::input &in, shadow &wanted) {
    for (unsigned n = 0; n < 12; ++n) {
        const auto random = in.take<uint32_t>();
        operation op = {};
        op.table = static_cast<uint16_t>(random % shadow::tables().size());
        op.entry =
            static_cast<uint16_t>((random >> 8) % shadow::tables()[op.table].candidates.size());
        op.what = static_cast<change>((random >> 16) % test::changes);
        op.value = random >> 24;
        if (shadow::run(hardware, op) == 0) wanted.note(op);
    }
}

// False when nothing more can be done with the directory.
bool open_and_work(const directory &of, host::access how, fuzz::input &in, shadow &wanted,
                   const std::set<std::string> &damaged) {
    host::adapter_options options = shadow::depths;
    options.access = how;
    try {
        const auto hardware = host::adapter::open(of.path(), options);
        read_everything(*hardware);
        // Without its memory a flow table cannot be made, and that is the end of the process.
        if (hardware->hbm_rows(host::flow_table) == nullptr ||
            hardware->hbm_rows(host::flow_ohash_table) == nullptr) {
            keep(*hardware, wanted, damaged, false);
            return false;
        }
        const host::table_state tables(*hardware);
        if (how == host::access::read) {
            keep(*hardware, wanted, damaged, true);
            return true;
        }
        work(*hardware, in, wanted);
        keep(*hardware, wanted, damaged, true);
        return true;
    } catch (const std::runtime_error &) {
        return false;  // refused, with a reason
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const directory &of = directory::the();
    of.put_back();
    fuzz::input in(data, size);
    std::set<std::string> damaged;
    const unsigned damages = 1 + in.take<uint8_t>() % 8u;
    for (unsigned n = 0; n < damages; ++n) damage(of, in, damaged);
    shadow wanted = of.wanted();
    // One of the ways, then as the next process would; what is rehearsed is gone with the
    // rehearsal.
    using host::access;
    static constexpr access ways[] = {access::read, access::rehearse, access::write,
                                      access::create};
    const access how = ways[in.take<uint8_t>() % std::size(ways)];
    shadow rehearsed = wanted;
    if (open_and_work(of, how, in, how == access::rehearse ? rehearsed : wanted, damaged))
        open_and_work(of, access::write, in, wanted, damaged);
    return 0;
}
