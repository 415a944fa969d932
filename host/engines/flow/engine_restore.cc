// Putting the memories right after a process died in the middle of operations.
//
// What one operation can have left in its bucket:
//   * a main or overflow row that is not valid and has no hints: half made, or half emptied;
//   * an overflow row that nothing leads to: not linked yet, or not linked any more;
//   * a slot with part of a hint, which leads to a row of another
//     bucket, to an empty row or back;
//   * a row that is not valid and has hints: its entry is removed, the leaf that shall take its
//     place is still a leaf;
//   * a leaf whose key stands in a row before it: its copy was made, the leaf is to go.

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

    sdk_ret_t run() {
        // The thread's scratch entry for hashing, before anything is changed.
        uint32_t hash = 0;
        row_->clear();
        if (const sdk_ret_t result = hash_of_entry(row_, hash); result != SDK_RET_OK) return result;
        place at;
        for (rows::used_rows used(of_.rows_, flow_table); used.next(at);) {
            bucket_ = at.row;
            way_.clear();
            const bool holds = repair(at);
            if (failure_ != SDK_RET_OK) {
                of_.note_rows_in_use();
                return failure_;
            }
            if (!holds) make_empty(at);
        }
        for (rows::used_rows used(of_.rows_, flow_ohash_table); used.next(at);)
            if (!used_[at.row]) make_empty(at);
        of_.note_rows_in_use();
        return SDK_RET_OK;
    }

  private:
    struct step {
        place from;
        uint32_t slot;
    };

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
        bool holds = false;
        if (belongs(hint) && !used_[hint] && way_.size() < longest_walk) {
            used_[hint] = true;
            holds = repair(of_.rows_.overflow(hint));
            used_[hint] = holds;
        }
        way_.pop_back();
        if (holds || failure_ != SDK_RET_OK) return;
        of_.unlink(at, row_, slot);
    }

    // Puts a row right, and all that hang on it; false when it holds no flow.
    bool repair(const place &at) {
        for (uint32_t slot = 1; slot <= of_.more_slot_; ++slot) {
            repair_slot(at, slot);
            if (failure_ != SDK_RET_OK) return true;
        }
        rows::load(at, body_of(row_));
        if (row_->get_entry_valid() != 0) {
            if (!stands_in_an_ancestor(row_)) return true;
            row_->set_entry_valid(0);
            of_.rows_.store_changed(at, body_of(row_));
        }
        const walk leaf = of_.leaf_under(at, other_);
        if (leaf.slot == 0 || leaf.broken) return false;
        of_.replace(at, row_, other_);
        of_.unlink(leaf.parent, row_, leaf.slot);
        used_[leaf.at.row] = false;
        return true;
    }

    engine &of_;
    scratch_row mine_;
    base_table_entry_t *row_;
    base_table_entry_t *other_;
    std::vector<bool> used_;
    std::vector<step> way_;
    uint32_t bucket_ = 0;
    sdk_ret_t failure_ = SDK_RET_OK;  // of a hash; nothing is changed any more
};

sdk_ret_t engine::restore() {
    if (!rows_.is_writable()) return SDK_RET_HW_PROGRAM_ERR;
    return guarded([&] { return restorer(*this).run(); });
}

}  // namespace halden::host::flow
