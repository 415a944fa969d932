#pragma once

// The flow engine, at work in place on the adapter's two flow memories.
//
//     32-bit hash   | high bits: row of the main table | ... | low 10 bits: hint hash |
//
//     main row --slot, hash a--> overflow row --slot, hash a--> overflow row     flows with hash a
//        |  \--slot, hash b--> overflow row                                      flows with hash b
//        \--more--> overflow row                                                 any other hash
//                     |  \--slot, hash c--> ...
//                     \--more--> ...
//
// A bucket is a main row with everything that hangs on it. A look-up compares the key of each row
// it comes to, then takes the slot whose hash is its own, else the more slot.
//
// Invariants
//   * a flow stands on the path of its own hash, and that path never changes but at its end: a new
//     row is linked to the last row of the path only;
//   * behind a slot stand flows of the slot's hash only, one behind the other;
//   * a row is complete and valid before it is linked, and unlinked before it is emptied;
//   * a slot gets its hash before its hint, and loses its hint before its hash: however few words
//     of a hint have been stored, only keys of that hash can be led astray, and there are none of
//     them behind the slot while its hint changes;
//   * the main row of a bucket with flows is in use. Removing a row that others hang on moves the
//     entry of a leaf into it; while the key changes the row is not valid, and its hints hold.
//
// So whoever walks the memory between any two stores finds every flow. A walk that goes on while
// the leaf moves can have passed the row before it holds the leaf's key, and reach the leaf after
// it was emptied: the engine's own readers learn that from the stripe's version and walk again.
//
// A path ends at its last row, also where a slot before it became free again: a bucket that many
// flows were removed from may refuse one although it has free slots. Buckets of one flow or two, as
// a table of 95 % load has them, do not come to that.
//
// Entries are reached through their virtual operations only, in the scratch entries of the table.
// Column 0 is the row a walk stands on, the other columns serve the operation. Entries that are
// known to be flow_hash_entry_t need no scratch: their bodies are worked on in place.

#include "host/engines/flow/bucket_work.h"
#include "host/engines/flow/entry_handle.h"
#include "host/engines/flow/free_rows.h"
#include "host/engines/flow/rows.h"
#include "host/engines/flow/scratch.h"
#include "host/engines/flow/stripe.h"
#include "host/memory/work_page.h"
#include "sdk/table/ftl_base.h"

#include <mutex>
#include <new>
#include <span>
#include <unordered_set>
#include <vector>

namespace halden::host::flow {

using sdk::table::sdk_table_api_params_;
using sdk::table::sdk_table_factory_params_;

inline constexpr uint32_t hint_hash_bits = 10;
inline constexpr unsigned reader_tries = 256;
inline constexpr uint32_t longest_walk = 4096;  // rows; a longer chain is a circle

// What tells an object's class.
inline const void *virtual_table_of(const base_table_entry_t *entry) {
    const void *table;
    std::memcpy(&table, static_cast<const void *>(entry), sizeof table);
    return table;
}

// Where a walk ended: at the row that holds the key, or at the last row of the path.
struct walk {
    place at;
    place parent;            // the row before; of no meaning at the main row
    uint32_t slot = 0;       // of the parent; 0 at the main row
    uint32_t chained = 0;    // rows since the last more slot
    uint32_t continued = 0;  // more slots on the path
    bool found = false;
    bool main_in_use = false;
    bool broken = false;  // a hint leads nowhere, or in a circle
};

// A flow of a bucket, read as a whole with the others.
struct bucket_row {
    place at;
    uint32_t path;  // rows in front of it
    flow_image image;
};

class engine {
  public:
    engine(sdk::table::ftl_base &table, const sdk_table_factory_params_ &params);
    ~engine();
    engine(const engine &) = delete;
    engine &operator=(const engine &) = delete;

    // Maps the memories and notes which rows are in use; changes nothing in them. SDK_RET_OK also
    // for memories that cannot be mapped: such an engine answers SDK_RET_OOM to every call.
    sdk_ret_t start(adapter &hardware);
    bool is_mapped() const { return work_ != nullptr; }

    // The caller's record is as it was afterwards: it may be used again for another key. It is not
    // copied, since it was just written in pieces, and a copy would wait for them.
    sdk_ret_t hash_of(sdk_table_api_params_ &call, uint32_t &hash) const {
        const uint32_t given = call.hash_value;
        const bool was_given = call.hash_valid;
        const sdk_ret_t result = table_.genhash_(&call);
        hash = call.hash_value;
        call.hash_value = given;
        call.hash_valid = was_given;
        return result;
    }
    sdk_ret_t insert(base_table_entry_t *entry, uint32_t hash);
    sdk_ret_t update(base_table_entry_t *entry, uint32_t hash);
    sdk_ret_t remove(base_table_entry_t *entry, uint32_t hash);
    sdk_ret_t get(base_table_entry_t *entry, uint32_t hash);

    // The same for many entries, whose rows are fetched while others are worked on. `results` is as
    // long as `entries`; returns how many calls succeeded.
    size_t insert(std::span<base_table_entry_t *const> entries, sdk_ret_t *results);
    size_t remove(std::span<base_table_entry_t *const> entries, sdk_ret_t *results);
    size_t get(std::span<base_table_entry_t *const> entries, sdk_ret_t *results);

    // Completes or takes back what a process that was killed had begun, as its work page names it,
    // and counts anew. Nothing is changed in other buckets and rows. Where the page tells nothing,
    // this is restore(). No other thread may be at work.
    sdk_ret_t finish_work();
    // The same, and then all buckets: hints that lead nowhere, in circles or to flows of another
    // hash are cut, a row without a flow that others hang on gets the flow of the last of them, a
    // flow that is in a row before it goes. An overflow row is emptied only where an engine had
    // begun to, or its flow was moved; others that nothing leads to are somebody's, and stay. Flows
    // are looked for by the hash that genhash_ gives: one that was inserted with another hash of
    // the caller's is cut off. A genhash_ that fails ends the work with its code, before anything
    // is taken for torn.
    sdk_ret_t restore();

    rows &memory() { return rows_; }
    // Null while the memories are not mapped.
    work_page *work() { return work_; }
    // Hands out no overflow row below `end`. No operation may be under way.
    void leave_out(uint32_t end);
    uint64_t count() const;
    // Bucket by bucket, until `see` answers false. No lock and no scratch row is held meanwhile.
    void for_each_bucket(const std::function<bool(const std::vector<bucket_row> &)> &see);

  private:
    friend class restorer;

    base_table_entry_t *scratch(const scratch_row &mine, int column) {
        return table_.get_entry(mine.number(), column);
    }
    uint32_t main_row(uint32_t hash) const {
        return static_cast<uint32_t>(uint64_t{hash} >> main_shift_);
    }
    static uint32_t hint_hash(uint32_t hash) { return hash & ((1u << hint_hash_bits) - 1); }
    stripe &stripe_of(uint32_t main_row) const { return stripes_[main_row & (stripe_count_ - 1)]; }

    // For an operation that holds the bucket's lock.
    bucket_work begin_work(uint32_t hash) const {
        const uint32_t bucket = main_row(hash);
        return {work_->of_groups(), bucket & (stripe_count_ - 1), bucket};
    }

    // Calls `work` with handles of the entry and of two to work in: plain ones where the caller's
    // entry and the table's are plain, else scratch entries of the table.
    template <typename F>
    auto with(base_table_entry_t *entry, F work) {
        if (virtual_table_of(entry) == plain_table_) {
            plain_room one, two;
            return work(plain_entry(body_of(entry)), plain_entry(one.body), plain_entry(two.body));
        }
        const scratch_row mine;
        return work(entry, scratch(mine, 0), scratch(mine, 1));
    }

    // Calls on many entries.
    struct batch_call;
    template <typename F>
    size_t in_steps(std::span<base_table_entry_t *const> entries, sdk_ret_t *results, F work);
    sdk_ret_t begin(base_table_entry_t *entry, batch_call &call);
    bool step_ahead(base_table_entry_t *entry, batch_call &call, bool to_leaf);
    bool step_of_get(base_table_entry_t *entry, batch_call &call, sdk_ret_t &result);

    // E: base_table_entry_t * or plain_entry. engine_work.h has what these do.
    struct seen_row {
        bool in_use = false;
        bool has_key = false;
        uint32_t slot = 0;  // the path goes on there, with `hint`
        uint32_t hint = 0;
    };
    template <typename E>
    seen_row look(const place &at, E cursor, E key, uint32_t hash) const;
    template <typename E>
    static void give(base_table_entry_t *entry, E from);
    template <typename E>
    bool holds(E cursor, E key, uint32_t hash, place &at) const;
    template <typename E>
    walk find(E cursor, E key, uint32_t hash) const;
    template <typename E>
    uint32_t next_slot(E entry, uint32_t hash, uint32_t &hint) const;
    template <typename E>
    uint32_t free_slot(E entry) const;
    sdk_ret_t repair(bool all);
    template <typename E>
    sdk_ret_t insert_as(E entry, E cursor, E fresh, uint32_t hash);
    template <typename E>
    sdk_ret_t remove_as(E entry, E cursor, E other, uint32_t hash);
    template <typename E>
    sdk_ret_t take_out(stripe &shared, bucket_work &work, walk leaf, E cursor, E other);
    void collect(const place &at, uint32_t path, base_table_entry_t *cursor,
                 std::vector<bucket_row> &out, std::unordered_set<uint32_t> &seen) const;
    template <typename E>
    void take_key_and_data(E entry, E from) const;
    void note_rows_in_use();

    // Runs `read` until no writer came between. After many changes under its eyes it takes the
    // lock: a reader must come to an end.
    template <typename F>
    static void read_unchanged(stripe &shared, F read) {
        for (unsigned tries = 0; tries < reader_tries; ++tries) {
            const uint32_t seen = shared.version();
            read();
            if (shared.unchanged(seen)) return;
        }
        const std::lock_guard guard(shared);
        read();
    }

    // Makes a change of the bucket whose lock is held. When one of its stores is refused, all of
    // them are taken back.
    template <typename F>
    sdk_ret_t change(stripe &shared, F stores) {
        const stripe_change under_way(shared);
        if (!rows_.faults().armed()) [[likely]]
            return stores();
        return change_or_nothing(stores);
    }
    template <typename F>
    sdk_ret_t change_or_nothing(F stores) {
        rows::watch watch(rows_);
        sdk_ret_t refused = SDK_RET_OOM;
        try {
            return stores();
        } catch (const store_refused &by) {
            refused = by.result;
        } catch (const std::bad_alloc &) {
        }
        watch.take_back();
        return refused;
    }

    // The stores. The caller holds the bucket's lock and has begun a change; entries hold their
    // rows as they are.
    template <typename E>
    void link(const place &parent, E parent_entry, uint32_t slot, uint32_t row, uint32_t hash);
    template <typename E>
    void unlink(const place &parent, E parent_entry, uint32_t slot);
    template <typename E>
    void store_hints(const place &row, E entry) const;
    template <typename E>
    void store_valid(const place &row, E entry) const;
    template <typename E>
    void empty(const place &row, E entry);
    template <typename E>
    void replace(const place &row, E entry, E by);
    template <typename E>
    walk leaf_under(const place &from, E cursor) const;

    sdk::table::ftl_base &table_;
    uint32_t table_id_;
    uint32_t hints_;  // hint slots used, from slot 1
    uint32_t more_slot_;
    uint32_t max_chain_;
    const void *plain_table_ = nullptr;  // virtual table of plain entries, if the table's are
    uint32_t main_shift_ = 32;
    uint32_t stripe_count_ = 0;
    stripe *stripes_ = nullptr;
    work_page *work_ = nullptr;
    uint32_t *free_words_ = nullptr;
    uint32_t left_out_ = 0;  // overflow rows below are not handed out
    rows rows_;
    free_rows free_;
    uint32_t main_before_ = 0;  // entries in use when the counting began
    uint32_t overflow_before_ = 0;
};

}  // namespace halden::host::flow

// What the table's private pointer leads to.
struct sdk::table::ftl_base::impl : halden::host::flow::engine {
    using engine::engine;
};
