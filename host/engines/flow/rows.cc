// Stores that somebody looks at: a write hook, or faults that they may meet.

#include "host/engines/flow/rows.h"

namespace halden::host::flow {

namespace {

// Of the calling thread; an operation of one engine makes none of another's.
thread_local rows::watch *watching = nullptr;

}  // namespace

void rows::set_hook(write_hook hook) {
    if (hook_) watched_.fetch_sub(1, std::memory_order_relaxed);
    hook_ = std::move(hook);
    if (hook_) watched_.fetch_add(1, std::memory_order_relaxed);
}

rows::watch::watch(const rows &of) : of_(of) {
    watching = this;
    of_.watched_.fetch_add(1, std::memory_order_relaxed);
}

rows::watch::~watch() {
    of_.watched_.fetch_sub(1, std::memory_order_relaxed);
    watching = nullptr;
}

void rows::watch::take_back() {
    for (; !words_.empty(); words_.pop_back()) {
        const stored_word &last = words_.back();
        word_at(last.at, last.index).store(last.before, std::memory_order_release);
    }
}

void rows::store_watched(const place &to, uint32_t i, uint64_t word) const {
    if (watching != nullptr) {
        if (const sdk_ret_t refused = faults().meet(asic_call::flow_store, to.table, to.row))
            throw store_refused{refused};
        watching->words_.push_back({to, i, word_at(to, i).load(std::memory_order_relaxed)});
    }
    word_at(to, i).store(word, std::memory_order_release);
    if (hook_) hook_(to.table, to.row);
}

}  // namespace halden::host::flow
