// haldenctl apply FILE: makes the tables hold the entries of a file, through the table API.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <optional>

#include "tools/haldenctl/apply_steps.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/interrupt.h"
#include "tools/haldenctl/screen.h"
#include "tools/haldenctl/table_calls.h"

namespace halden::tool {

namespace {

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

struct apply_options {
    std::string path;
    bool dry = false, quiet = false;
};

// The entries of a file on their way into the tables.
class application {
  public:
    application(opened_tables &tables, const apply_options &wanted,
                std::vector<file_entry> &entries)
        : tables_(tables), wanted_(wanted), work_(plan_entries(*tables, entries)) {}

    void run() {
        progress shown(work_.size());
        const auto first_call =
            std::find_if(work_.begin(), work_.end(), [](const auto &p) { return !p.as_row; });
        row_steps rows(*tables_);
        for (auto p = work_.begin(); p != first_call; ++p) carry_out(*p, rows, shown);
        tables_.make_engines();
        engine_steps calls(*tables_);
        for (auto p = first_call; p != work_.end(); ++p) carry_out(*p, calls, shown);
        throw_refusal();
    }

    std::string summary() const {
        return std::to_string(created_) + (wanted_.dry ? " to create, " : " created, ") +
               std::to_string(updated_) + (wanted_.dry ? " to update, " : " updated, ") +
               std::to_string(unchanged_) + " unchanged" +
               (wanted_.dry ? "; nothing was changed in " : " in ") + tables_.adapter().name();
    }
    bool changes() const { return created_ + updated_ != 0; }

  private:
    // The run ends with the first entry that is refused. A dry run notes what it would have said
    // and tries the rest, without a word on each: which of them find no room is worth knowing.
    template <class Steps>
    void carry_out(const planned_entry &p, Steps &steps, progress &shown) {
        if (told_to_stop()) stop(wanted_.path + ": " + applied_so_far(done_));
        note_done(done_);
        try {
            const step s = steps.carry_out(p);
            shown.at(++tried_);
            if (refusal_) return;
            ++done_;
            count(s.what);
            if (!wanted_.quiet) print(p, s);
        } catch (const failure &error) {
            if (refusal_) {
                also_refused_.push_back(p.number);
                return;
            }
            const failure here = error.inside(p.given->place);
            const failure whole(here.what() + ("; " + applied_so_far(done_ + 1)), here.status());
            if (!wanted_.dry || here.status() != exit_status::refused) throw whole;
            refusal_ = whole;
        }
    }
    // What a dry run found to be refused.
    void throw_refusal() {
        if (!refusal_) return;
        if (also_refused_.empty()) throw *refusal_;
        std::sort(also_refused_.begin(), also_refused_.end());
        throw failure(refusal_->what() + ("; " + std::to_string(also_refused_.size())) +
                          " more would be refused: " + entries_text(also_refused_),
                      refusal_->status());
    }
    void count(change what) {
        ++(what == change::created ? created_ : what == change::updated ? updated_ : unchanged_);
    }
    void print(const planned_entry &p, const step &s) const {
        const char *word = s.what == change::none      ? "unchanged"
                           : s.what == change::created ? (wanted_.dry ? "create" : "created")
                                                       : (wanted_.dry ? "update" : "updated");
        std::cout << painted(word, s.what == change::none ? colour::dim : colour::good) << "  "
                  << name_of(p) << (s.difference.empty() ? "" : "  " + s.difference) << "\n";
    }
    static std::string entries_text(const std::vector<size_t> &numbers) {
        return (numbers.size() == 1 ? "entry " : "entries ") + ranges_of(numbers);
    }
    // "entries 1 to 5 were applied, entry 7 was not"; those from `rest` on were not tried.
    std::string applied_so_far(size_t rest) const {
        if (done_ == 0)
            return std::string("nothing of the file ") + (wanted_.dry ? "would be" : "was") +
                   " applied";
        const auto numbers = [&](size_t from, size_t to) {
            std::vector<size_t> out;
            for (size_t at = from; at < to; ++at) out.push_back(work_[at].number);
            std::sort(out.begin(), out.end());
            return entries_text(out) + (wanted_.dry       ? " would"
                                        : out.size() == 1 ? " was"
                                                          : " were");
        };
        std::string out = numbers(0, done_) + (wanted_.dry ? " be applied" : " applied");
        if (rest < work_.size()) out += ", " + numbers(rest, work_.size()) + " not";
        return out;
    }

    opened_tables &tables_;
    const apply_options &wanted_;
    std::vector<planned_entry> work_;
    size_t tried_ = 0, done_ = 0, created_ = 0, updated_ = 0, unchanged_ = 0;
    std::optional<failure> refusal_;  // the first, of a dry run
    std::vector<size_t> also_refused_;
};

// A dry run works in memory of its own, over the adapter's files.
void apply(const options &given, const apply_options &wanted) {
    std::vector<file_entry> entries = read_entry_file(wanted.path);
    opened_tables tables(given, wanted.dry ? host::access::rehearse : host::access::create,
                         opened_tables::engines_later{});
    application application(tables, wanted, entries);
    application.run();
    std::cout << application.summary() << "\n";
    if (wanted.dry && application.changes()) throw missed();
}

}  // namespace

void add_apply(CLI::App &app, const options &given) {
    CLI::App *command = app.add_subcommand(
        "apply", "Create or update the entries of a JSON file through the table API");
    command->footer(
        "The file is that of `write` and of `dump --json`. It is checked whole first, and applied\n"
        "entry by entry up to the first that is refused. The engines choose the rows of keyed\n"
        "tables, whatever \"index\" says: an entry of flow_ohash is a flow, and one of an\n"
        "overflow TCAM an entry of its hash table. What no engine serves is written first, as\n"
        "rows: tables without key and data, and overflow rows whose mask leaves out bits of the\n"
        "key, which take the next free row where theirs is taken.\n"
        "\n"
        "A dry run does all of it in memory of its own, and says what the run would say. Beyond\n"
        "that it names all entries that would be refused. When it finds something to create or\n"
        "to update, and nothing is refused, it ends with status 1.");
    auto wanted = std::make_shared<apply_options>();
    command->add_option("FILE", wanted->path, "The entries; - is standard input")->required();
    command->add_flag("-n,--dry-run", wanted->dry, "Show what would change, and change nothing");
    command->add_flag("-q,--quiet", wanted->quiet, "The last line alone");
    command->callback([&given, wanted] { apply(given, *wanted); });
}

}  // namespace halden::tool
