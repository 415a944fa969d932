// haldenctl stats: how full the tables are.

#include <cstdio>
#include <iostream>

#include "host/engines/access.h"
#include "host/engines/flow/ftl_access.h"
#include "p4gen/halden/pipeline/words.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/screen.h"
#include "tools/haldenctl/table_calls.h"

namespace halden::tool {

using namespace pipeline;

namespace {

struct figures {
    uint32_t rows = 0, used = 0;
    uint32_t overflow_rows = 0, overflow_used = 0;
};

figures of(const host::engine_statistics &s) {
    return {s.rows, s.used, s.overflow_rows, s.overflow_used};
}
figures figures_of(sdk::table::directmap *table) {
    return of(sdk::table::directmap_access::statistics(*table));
}
figures figures_of(sdk::table::slhash *table) {
    return of(sdk::table::slhash_access::statistics(*table));
}
figures figures_of(sdk::table::sltcam *table) {
    return of(sdk::table::sltcam_access::statistics(*table));
}
figures figures_of(sdk::table::ftl_base *table) {
    const auto s = sdk::table::ftl_access::statistics(*table);
    return {s.main_depth, s.main_used, s.overflow_depth, s.overflow_used};
}

struct table_figures {
    const table *of;
    figures now;
};

std::vector<table_figures> all_figures(api::impl::tev_tbl_impl_state &state) {
    std::vector<table_figures> out;
#define TABLE_FIGURES(engine, name, id) \
    out.push_back({&pipeline::name, figures_of(state.name##_tbl())});
    TEV_TBL_FOR_EACH_ENGINE(TABLE_FIGURES)
#undef TABLE_FIGURES
    std::sort(out.begin(), out.end(),
              [](const table_figures &a, const table_figures &b) { return a.of->id < b.of->id; });
    return out;
}

std::string percent(uint32_t part, uint32_t whole) {
    char out[16];
    std::snprintf(out, sizeof out, "%.1f", whole == 0 ? 0.0 : 100.0 * part / whole);
    return out;
}

// Entries that are not where their hash says: each stands in the overflow.
void print_text(const std::vector<table_figures> &all, bool every) {
    columns shown({">ID", "TABLE", ">USED", ">ROWS", ">%", ">COLLISIONS", ">OVERFLOW ROWS", ">%"});
    size_t left_out = 0;
    for (const auto &[t, now] : all) {
        if (!every && now.used == 0 && now.overflow_used == 0) {
            ++left_out;
            continue;
        }
        const bool hash = is_hash(t->kind);
        shown.row({std::to_string(t->id), std::string(t->name), std::to_string(now.used),
                   std::to_string(now.rows), percent(now.used, now.rows),
                   hash ? std::to_string(now.overflow_used) : "",
                   hash ? std::to_string(now.overflow_rows) : "",
                   hash ? percent(now.overflow_used, now.overflow_rows) : ""});
    }
    std::cout << shown.text();
    if (left_out != 0)
        std::cout << left_out << (left_out == 1 ? " table is" : " tables are")
                  << " empty; --every shows them\n";
}

void print_json(const std::vector<table_figures> &all) {
    json out = json::array();
    for (const auto &[t, now] : all) {
        json row = {{"table", t->name}, {"used", now.used}, {"rows", now.rows}};
        if (is_hash(t->kind)) {
            row["collisions"] = now.overflow_used;
            row["overflow_rows"] = now.overflow_rows;
        }
        out.push_back(std::move(row));
    }
    std::cout << out.dump(2) << "\n";
}

}  // namespace

void add_stats(CLI::App &app, const options &given) {
    CLI::App *command =
        app.add_subcommand("stats", "How full the tables are, collisions and overflow");
    auto every = std::make_shared<bool>(false), as_json = std::make_shared<bool>(false);
    command->add_flag("--every", *every, "Empty tables too");
    command->add_flag("--json", *as_json, "As JSON, of every table");
    command->callback([&given, every, as_json] {
        opened_tables tables(given, host::access::read);
        const auto all = all_figures(tables.tables());
        if (!(*tables).troubles().empty())
            throw failure("how full the tables are cannot be told: memory cannot be read",
                          exit_status::adapter);
        *as_json ? print_json(all) : print_text(all, *every);
    });
}

}  // namespace halden::tool
