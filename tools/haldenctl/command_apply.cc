// haldenctl apply FILE: makes the tables hold the entries of a file, through the table API.

#include <unistd.h>

#include <chrono>
#include <iostream>
#include <unordered_map>

#include "p4gen/halden/pipeline/words.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/entry_text.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/screen.h"
#include "tools/haldenctl/table_calls.h"

namespace halden::tool {

using namespace pipeline;

namespace {

struct planned {
    file_entry *given;
    uint32_t index;
};

// What has to be done for one entry.
struct step {
    enum class what : uint8_t { create, update, nothing } work;
    std::string difference;
};

std::string name_of(const file_entry &given, uint32_t index) {
    const table &t = *given.entry.of;
    return std::string(t.name) + "  " +
           (is_keyed(t.kind) ? key_line(given.entry) : "index " + std::to_string(index));
}

// Equal for two entries that cannot both be there: of one key as hardware compares it, or one row.
std::string identity_of(records &entry, uint32_t index) {
    std::string out = std::to_string(entry.of->id) + ":";
    if (!is_keyed(entry.of->kind)) return out + std::to_string(index);
    const key_images images = images_of(entry);
    out.append(images.key.begin(), images.key.end());
    return out.append(images.mask.begin(), images.mask.end());
}

// All entries that can be seen to be wrong are found here, before the first write.
std::vector<planned> plan(host::adapter &adapter, std::vector<file_entry> &entries) {
    std::vector<planned> out;
    std::unordered_map<std::string, const file_entry *> seen;
    for (file_entry &given : entries) {
        const table &t = *given.entry.of;
        try {
            check_engine(t);
            uint32_t index = 0;
            if (!is_keyed(t.kind)) {
                if (!given.index && adapter.depth(t.id) != 1)
                    throw failure("no \"index\" is given; allowed: 0 to " +
                                  std::to_string(adapter.depth(t.id) - 1));
                index = given.index.value_or(0);
                check_row(adapter, t, index);
            }
            const auto [other, fresh] = seen.insert({identity_of(given.entry, index), &given});
            if (!fresh)
                throw failure("its " + std::string(is_keyed(t.kind) ? "key" : "index") +
                              " is also that of " +
                              other->second->place.substr(other->second->place.rfind("entry ")));
            out.push_back({&given, index});
        } catch (const failure &error) {
            throw error.inside(given.place);
        }
    }
    return out;
}

// The engine keeps a flow's hint chain and valid bit; software has flow_idx alone.
bool is_of_engine(const table &t, size_t field) {
    return is_hash(t.kind) && is_hbm(t.kind) && field != 0;
}

std::string difference(const records &now, const records &wanted) {
    if (now.action_id() != wanted.action_id())
        return std::string(now.action() != nullptr ? now.action()->name : "?") + " -> " +
               std::string(wanted.action()->name);
    std::string out;
    const auto fields = wanted.action()->fields;
    for (size_t n = 0; n < fields.size(); ++n) {
        if (now.data_value(n) == wanted.data_value(n) || is_of_engine(*wanted.of, n)) continue;
        if (!out.empty()) out += ", ";
        out += std::string(fields[n].name) + " " +
               shown(now.data_value(n), fields[n].name, fields[n].bits) + " -> " +
               shown(wanted.data_value(n), fields[n].name, fields[n].bits);
    }
    return out;
}

step step_for(const planned &p) {
    records now = p.given->entry;
    if (find_entry(now, p.index) != TEV_TBL_RET_OK)
        return {step::what::create, data_line(p.given->entry)};
    if (const tev_tbl_ret_t result = read_entry(now, p.index); result != TEV_TBL_RET_OK)
        throw failure(p.given->place + ": it cannot be read (result " + tool::name_of(result) + ")",
                      exit_status::adapter);
    const std::string changes = difference(now, p.given->entry);
    return {changes.empty() ? step::what::nothing : step::what::update, changes};
}

// One line on a terminal that is written over again and again.
class progress {
  public:
    explicit progress(size_t all) : all_(all), on_(all > few && isatty(STDERR_FILENO) == 1) {}
    ~progress() {
        if (on_) std::cerr << "\r\033[K" << std::flush;
    }
    progress(const progress &) = delete;
    progress &operator=(const progress &) = delete;
    void at(size_t done) {
        using namespace std::chrono_literals;
        const auto now = std::chrono::steady_clock::now();
        if (!on_ || now - shown_ < 100ms) return;
        shown_ = now;
        std::cerr << "\r\033[K" << done << " of " << all_ << " entries, " << done * 100 / all_
                  << " %" << std::flush;
    }

  private:
    static constexpr size_t few = 500;
    size_t all_;
    bool on_;
    std::chrono::steady_clock::time_point shown_ = {};
};

struct counts {
    size_t created = 0, updated = 0, unchanged = 0;
    std::string text(bool dry) const {
        return std::to_string(created) + (dry ? " to create, " : " created, ") +
               std::to_string(updated) + (dry ? " to update, " : " updated, ") +
               std::to_string(unchanged) + " unchanged";
    }
};

std::string applied_so_far(size_t done, size_t all) {
    if (done == 0) return "nothing of the file was applied";
    const size_t failed = done + 1;
    std::string out = done == 1 ? "entry 1 was applied"
                                : "entries 1 to " + std::to_string(done) + " were applied";
    if (failed < all)
        out += failed + 1 == all ? ", entry " + std::to_string(all) + " was not"
                                 : ", entries " + std::to_string(failed + 1) + " to " +
                                       std::to_string(all) + " were not";
    return out;
}

struct apply_options {
    std::string path;
    bool dry = false, quiet = false;
};

void apply(opened_tables &tables, const apply_options &wanted) {
    std::vector<file_entry> entries = read_entry_file(wanted.path);
    const std::vector<planned> work = plan(*tables, entries);
    counts count;
    size_t done = 0;
    {
        progress shown(work.size());
        for (const planned &p : work) {
            const step s = step_for(p);
            tev_tbl_ret_t result = TEV_TBL_RET_OK;
            const char *word = "unchanged";
            if (s.work == step::what::create) {
                word = wanted.dry ? "create" : "created";
                if (!wanted.dry) result = create_entry(p.given->entry, p.index);
                ++count.created;
            } else if (s.work == step::what::update) {
                word = wanted.dry ? "update" : "updated";
                if (!wanted.dry) result = update_entry(p.given->entry, p.index);
                ++count.updated;
            } else {
                ++count.unchanged;
            }
            if (result != TEV_TBL_RET_OK)
                throw failure(p.given->place + ": " +
                                  (s.work == step::what::create ? "create" : "update") +
                                  ": result " + tool::name_of(result) + "; " +
                                  applied_so_far(done, work.size()),
                              exit_status::adapter);
            ++done;
            shown.at(done);
            if (wanted.quiet) continue;
            std::cout << painted(word, s.work == step::what::nothing ? colour::dim : colour::good)
                      << "  " << name_of(*p.given, p.index)
                      << (s.difference.empty() ? "" : "  " + s.difference) << "\n";
        }
    }
    std::cout << count.text(wanted.dry) << (wanted.dry ? "; nothing was changed in " : " in ")
              << tables.adapter().name() << "\n";
    if (wanted.dry && count.created + count.updated != 0) throw missed();
}

}  // namespace

void add_apply(CLI::App &app, const options &given) {
    CLI::App *command = app.add_subcommand(
        "apply", "Create or update the entries of a JSON file through the table API");
    command->footer(
        "The file is that of `write`; the engines choose the rows of keyed tables, whatever\n"
        "\"index\" says. It is checked whole first, and applied entry by entry up to the first\n"
        "that is refused. A dry run that finds something to create or to update ends with status "
        "1.");
    auto wanted = std::make_shared<apply_options>();
    command->add_option("FILE", wanted->path, "The entries; - is standard input")->required();
    command->add_flag("-n,--dry-run", wanted->dry, "Show what would change, and change nothing");
    command->add_flag("-q,--quiet", wanted->quiet, "The last line alone");
    command->callback([&given, wanted] {
        opened_tables tables(given, wanted->dry ? host::access::rehearse : host::access::create);
        apply(tables, *wanted);
    });
}

}  // namespace halden::tool
