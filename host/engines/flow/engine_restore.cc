// Putting the memories right after a process died in the middle of operations.
//
// What one operation can have left in its bucket, and what its word on the work page then names:
//   * a main row that is not valid and has no hints, half made or half emptied: the main row;
//   * an overflow row that nothing leads to, not linked yet or not linked any more: that row;
//   * a slot with part of a hint, which leads to a row of another bucket, to an empty row or back:
//     the row that was being linked or unlinked;
//   * a row that is not valid and has hints: its entry is removed, the leaf that shall take its
//     place is still a leaf: the leaf, and the main row if the place is there;
//   * a leaf whose key is in a row before it: its copy was made, the leaf is to go: the leaf.
//
// Finishing what was under way goes to the named buckets alone; in them it cuts hints that lead to
// no flow of theirs, and empties what is named. Its own stores are covered by the same word, which
// goes last: killed at any instant, it is done again. Restoring goes to all buckets and names each
// row before it empties it, so that a kill leaves work of the first kind.

#include "host/engines/engine.h"
#include "host/engines/flow/engine_work.h"

#include <algorithm>

namespace halden::host::flow {

class restorer {
  public:
    explicit restorer(engine &of)
        : of_(of),
          row_(of.scratch(mine_, 0)),
          other_(of.scratch(mine_, 1)),
          used_(of.rows_.overflow_rows()) {}

    // Everything that the page names, and with `all` every bucket.
    sdk_ret_t run(bool all) {
        // The thread's scratch entry for hashing, before anything is changed.
        uint32_t hash = 0;
        row_->clear();
        if (const sdk_ret_t result = hash_of_entry(row_, hash); result != SDK_RET_OK) return result;
        bool changed = finish_named();
        all = all || says_nothing_ || !of_.work_->is_known();
        if (all && failure_ == SDK_RET_OK) {
            changed = true;
            restore_all();
        }
        if (changed) of_.note_rows_in_use();
        if (all && failure_ == SDK_RET_OK) of_.work_->set_known();
        return failure_;
    }

  private:
    struct step {
        place from;
        uint32_t slot;
    };

    // Answers whether there was anything.
    bool finish_named() {
        bool any = false;
        for (uint32_t group = 0; group < work_page::groups && failure_ == SDK_RET_OK; ++group) {
            word_ = of_.work_->of_groups() + group;
            const uint64_t found = word().load(std::memory_order_acquire);
            if (found == 0) continue;
            any = true;
            named_ = work_named::in(found);
            if (named_.bucket < of_.rows_.main_rows() && named_.row < of_.rows_.overflow_rows())
                finish_bucket();
            else
                says_nothing_ = true;  // no engine writes such a word
            if (failure_ == SDK_RET_OK) word().store(0, std::memory_order_release);
        }
        return any;
    }

    void finish_bucket() {
        std::fill(used_.begin(), used_.end(), false);
        const place main = of_.rows_.main(named_.bucket);
        const bool holds = start_at(main);
        if (failure_ != SDK_RET_OK) return;
        if (!holds && named_.of_main) make_empty(main);
        if (named_.row != 0 && !used_[named_.row]) make_empty(of_.rows_.overflow(named_.row));
    }

    void restore_all() {
        all_ = true;
        std::fill(used_.begin(), used_.end(), false);
        place at;
        for (rows::used_rows used(of_.rows_, flow_table); used.next(at);) {
            named_ = {at.row, 0, false};
            word_ = of_.work_->of_groups() + (at.row & (of_.stripe_count_ - 1));
            start_at(at);
            if (failure_ != SDK_RET_OK) return;
            word().store(0, std::memory_order_release);
        }
    }

    bool start_at(const place &main) {
        bucket_ = main.row;
        way_.clear();
        return repair(main);
    }

    std::atomic_ref<uint64_t> word() const { return std::atomic_ref<uint64_t>(*word_); }

    // Before a store. What is finished was named by the process that began it.
    void name(uint32_t row, bool of_main) {
        if (!all_) return;
        named_.row = row;
        named_.of_main = of_main;
        word().store(named_.word(), std::memory_order_relaxed);
    }

    bool is_named(const place &at) const {
        return at.is_main() ? named_.of_main : at.row == named_.row;
    }

    sdk_ret_t hash_of_entry(base_table_entry_t *entry, uint32_t &hash) {
        sdk_table_api_params_ call = {};
        call.entry = entry;
        const sdk_ret_t result = of_.hash_of(call, hash);
        if (result != SDK_RET_OK) failure_ = result;
        return result;
    }

    void make_empty(const place &at) {
        rows::load(at, body_of(row_));
        of_.empty(at, row_);
    }

    // Whether the flows behind a hint are looked for there: the first valid row on the way to a
    // leaf tells; a row without a key of its own has one behind it. The way to here is `way_`.
    bool belongs(uint32_t hint) {
        for (uint32_t steps = 0; steps < longest_walk; ++steps) {
            if (hint >= of_.rows_.overflow_rows()) return false;
            rows::load(of_.rows_.overflow(hint), body_of(other_));
            if (other_->get_entry_valid() != 0) {
                uint32_t hash = 0;
                return hash_of_entry(other_, hash) == SDK_RET_OK && comes_here(hash);
            }
            const uint32_t last = other_->find_last_hint();
            if (last == 0) return false;
            other_->get_hint(last, hint);
        }
        return false;
    }

    bool comes_here(uint32_t hash) {
        if (of_.main_row(hash) != bucket_) return false;
        return std::all_of(way_.begin(), way_.end(), [&](const step &one) {
            uint32_t hint = 0;
            rows::load(one.from, body_of(other_));
            return of_.next_slot(other_, hash, hint) == one.slot;
        });
    }

    bool stands_in_an_ancestor(base_table_entry_t *entry) {
        for (const step &one : way_) {
            rows::load(one.from, body_of(other_));
            if (other_->get_entry_valid() != 0 && other_->compare_key(entry)) return true;
        }
        return false;
    }

    void repair_slot(const place &at, uint32_t slot) {
        uint32_t hint = 0, hash = 0;
        rows::load(at, body_of(row_));
        row_->get_hint_hash(slot, hint, hash);
        if (hint == 0) return;
        // A row that was come to before stays with the row that led there first.
        way_.push_back({at, slot});
        bool holds = false, taken_out = false;
        if (belongs(hint) && !used_[hint] && way_.size() < longest_walk) {
            used_[hint] = true;
            holds = repair(of_.rows_.overflow(hint));
            used_[hint] = holds;
            taken_out = !holds && is_named(of_.rows_.overflow(hint));
        }
        way_.pop_back();
        if (holds || failure_ != SDK_RET_OK) return;
        if (!taken_out) name(0, false);
        of_.unlink(at, row_, slot);
        if (all_ && taken_out) make_empty(of_.rows_.overflow(hint));
    }

    // Puts a row right, and all that hang on it; false when it holds no flow.
    bool repair(const place &at) {
        for (uint32_t slot = 1; slot <= of_.more_slot_; ++slot) {
            repair_slot(at, slot);
            if (failure_ != SDK_RET_OK) return true;
        }
        rows::load(at, body_of(row_));
        if (row_->get_entry_valid() != 0) {
            if (!(all_ || is_named(at)) || !stands_in_an_ancestor(row_)) return true;
            if (!at.is_main()) name(at.row, false);
            row_->set_entry_valid(0);
            of_.rows_.store_changed(at, body_of(row_));
        }
        const walk leaf = of_.leaf_under(at, other_);
        if (leaf.slot == 0 || leaf.broken) return false;
        // The row that finishing may move is the one that was to be moved.
        if (other_->get_entry_valid() == 0 ||
            !(all_ || (is_named(leaf.at) && (!at.is_main() || named_.of_main))))
            return true;
        name(leaf.at.row, at.is_main());
        of_.replace(at, row_, other_);
        of_.unlink(leaf.parent, row_, leaf.slot);
        used_[leaf.at.row] = false;
        if (all_) make_empty(leaf.at);
        return true;
    }

    engine &of_;
    scratch_row mine_;
    base_table_entry_t *row_;
    base_table_entry_t *other_;
    std::vector<bool> used_;
    std::vector<step> way_;
    uint32_t bucket_ = 0;
    bool all_ = false;
    bool says_nothing_ = false;       // a word of the page
    work_named named_;                // what may be emptied in the bucket at hand
    uint64_t *word_ = nullptr;        // that names it
    sdk_ret_t failure_ = SDK_RET_OK;  // of a hash; nothing is changed any more
};

sdk_ret_t engine::restore() {
    if (!is_mapped()) return SDK_RET_OOM;
    if (!rows_.is_writable()) return SDK_RET_HW_PROGRAM_ERR;
    return repair(true);
}

sdk_ret_t engine::finish_work() {
    // Whoever only reads finds every flow as it is.
    if (!is_mapped()) return SDK_RET_OOM;
    if (!rows_.is_writable() || work_->is_idle()) return SDK_RET_OK;
    return repair(false);
}

sdk_ret_t engine::repair(bool all) {
    return guarded([&] {
        if (!rows_.faults().armed()) return rows_.kept(restorer(*this).run(all));
        const rows::watch watch(rows_);
        try {
            return rows_.kept(restorer(*this).run(all));
        } catch (const store_refused &by) {
            // What was put right so far is as good as what a process that ended here leaves, and
            // what was not is named still.
            note_rows_in_use();
            return by.result;
        }
    });
}

}  // namespace halden::host::flow
