// The flow table on the adapter: huge pages, at its full depth.

#include <algorithm>
#include <cstring>

#include "bench/flow/contender.h"
#include "ftl/flow_hash.h"
#include "host/adapter.h"
#include "host/engines/flow/ftl_access.h"
#include "p4gen/halden/src/flow_key.h"

namespace halden::bench {

namespace {

namespace lay = flow_layout;

// What a caller does to make an entry of a key record.
void fill(flow_hash_entry_t &entry, const flow_swkey_t &key, uint32_t value) {
    uint8_t *body = entry.body();
    std::memset(body, 0, lay::first_key_word * 8);
    pack_flow_key(body, reinterpret_cast<const uint8_t *>(&key));
    lay::set_bits<lay::flow_idx>(body, value);
}

uint32_t value_in(const flow_hash_entry_t &entry) {
    return static_cast<uint32_t>(lay::get_bits<lay::flow_idx>(entry.body()));
}

class flow_table : public contender {
  public:
    flow_table() : adapter_(host::adapter::anonymous({.flow_paging = host::paging::huge})) {
        const host::scoped_current use(*adapter_);
        sdk::table::sdk_table_factory_params_t params = {};
        table_ = sdk::table::flow_hash::factory(&params);
    }
    ~flow_table() override {
        const host::scoped_current use(*adapter_);
        sdk::table::flow_hash::destroy(table_);
    }
    flow_table(const flow_table &) = delete;
    flow_table &operator=(const flow_table &) = delete;

  protected:
    std::unique_ptr<host::adapter> adapter_;
    sdk::table::flow_hash *table_;
};

class single_calls : public flow_table {
  public:
    std::string name() const override { return "halden, single calls"; }

    uint64_t create(const std::vector<padded_key> &keys, order numbers) override {
        return each(keys, numbers, [this](auto *params, auto &, uint32_t) {
            return table_->insert(params) == SDK_RET_OK;
        });
    }
    uint64_t hit(const std::vector<padded_key> &keys, order numbers) override {
        return each(keys, numbers, [this](auto *params, auto &entry, uint32_t n) {
            return table_->get(params) == SDK_RET_OK && value_in(entry) == value_of(n);
        });
    }
    uint64_t miss(const std::vector<padded_key> &keys, order numbers) override {
        return each(keys, numbers, [this](auto *params, auto &, uint32_t) {
            return table_->get(params) == SDK_RET_ENTRY_NOT_FOUND;
        });
    }
    uint64_t remove(const std::vector<padded_key> &keys, order numbers) override {
        return each(keys, numbers, [this](auto *params, auto &, uint32_t) {
            return table_->remove(params) == SDK_RET_OK;
        });
    }

  private:
    template <class Call>
    uint64_t each(const std::vector<padded_key> &keys, order numbers, Call call) {
        uint64_t done = 0;
        flow_hash_entry_t entry;
        for (size_t i = 0; i < numbers.size(); ++i) {
            const uint32_t n = numbers[i];
            fetch_key(keys, i);
            fill(entry, keys[i].key, value_of(n));
            sdk::table::sdk_table_api_params_t params = {};
            params.entry = &entry;
            done += call(&params, entry, n) ? 1 : 0;
            end_of_call();
        }
        return done;
    }
};

// Arrays of entries in one call, as many as a bulk look-up of rte_hash takes.
class batch_calls : public flow_table {
  public:
    std::string name() const override { return "halden, batch calls"; }

    uint64_t create(const std::vector<padded_key> &keys, order numbers) override {
        return each(keys, numbers, sdk::table::ftl_access::insert_batch,
                    [](sdk_ret_t result, auto &, uint32_t) { return result == SDK_RET_OK; });
    }
    uint64_t hit(const std::vector<padded_key> &keys, order numbers) override {
        return each(keys, numbers, sdk::table::ftl_access::get_batch,
                    [](sdk_ret_t result, auto &entry, uint32_t n) {
                        return result == SDK_RET_OK && value_in(entry) == value_of(n);
                    });
    }
    uint64_t miss(const std::vector<padded_key> &keys, order numbers) override {
        return each(
            keys, numbers, sdk::table::ftl_access::get_batch,
            [](sdk_ret_t result, auto &, uint32_t) { return result == SDK_RET_ENTRY_NOT_FOUND; });
    }
    uint64_t remove(const std::vector<padded_key> &keys, order numbers) override {
        return each(keys, numbers, sdk::table::ftl_access::remove_batch,
                    [](sdk_ret_t result, auto &, uint32_t) { return result == SDK_RET_OK; });
    }

  private:
    static constexpr size_t most = 64;

    template <class Call, class Check>
    uint64_t each(const std::vector<padded_key> &keys, order numbers, Call call, Check check) {
        uint64_t done = 0;
        flow_hash_entry_t entries[most];
        base_table_entry_t *pointers[most];
        sdk_ret_t results[most];
        for (size_t at = 0; at < numbers.size(); at += most) {
            const size_t count = std::min(most, numbers.size() - at);
            for (size_t i = 0; i < count; ++i) {
                fetch_key(keys, at + i);
                fill(entries[i], keys[at + i].key, value_of(numbers[at + i]));
                pointers[i] = &entries[i];
            }
            call(*table_, {pointers, count}, {results, count});
            for (size_t i = 0; i < count; ++i)
                done += check(results[i], entries[i], numbers[at + i]) ? 1 : 0;
        }
        return done;
    }
};

}  // namespace

std::unique_ptr<contender> make_single() { return std::make_unique<single_calls>(); }
std::unique_ptr<contender> make_batch() { return std::make_unique<batch_calls>(); }

}  // namespace halden::bench
