// rte_hash at its best: huge pages where the system has reserved some, its CRC hash, 80-byte keys,
// which it compares faster than 77; and its bulk look-up.

#include <rte_eal.h>
#include <rte_errno.h>
#include <rte_hash.h>
#include <rte_hash_crc.h>

#include <array>

#include "bench/flow/contender.h"

namespace halden::bench {

namespace {

constexpr uint32_t bulk = RTE_HASH_LOOKUP_BULK_MAX;

// Once a process; true when its memory is on huge pages.
bool start(bool &huge) {
    static const int tried = [] {
        std::array<const char *, 6> args = {"flow_bench",     "--in-memory",       "--no-pci",
                                            "--no-telemetry", "--log-level=error", nullptr};
        if (rte_eal_init(5, const_cast<char **>(args.data())) >= 0) return 2;
        std::array<const char *, 8> small = {
            "flow_bench",     "--no-huge",         "-m",   "4096", "--no-pci",
            "--no-telemetry", "--log-level=error", nullptr};
        return rte_eal_init(7, const_cast<char **>(small.data())) >= 0 ? 1 : 0;
    }();
    huge = tried == 2;
    return tried != 0;
}

class rte_hash_table : public contender {
  public:
    rte_hash_table(rte_hash *table, bool in_bulk, bool huge)
        : table_(table), in_bulk_(in_bulk), huge_(huge) {}
    ~rte_hash_table() override { rte_hash_free(table_); }
    rte_hash_table(const rte_hash_table &) = delete;
    rte_hash_table &operator=(const rte_hash_table &) = delete;

    std::string name() const override {
        return std::string("rte_hash") + (in_bulk_ ? ", bulk" : "") + (huge_ ? "" : ", 4k pages");
    }
    uint64_t create(const std::vector<padded_key> &keys, order numbers) override {
        uint64_t done = 0;
        for (size_t i = 0; i < numbers.size(); ++i) {
            fetch_key(keys, i);
            done += rte_hash_add_key_data(table_, &keys[i], data_of(numbers[i])) == 0 ? 1 : 0;
            end_of_call();
        }
        return done;
    }
    uint64_t hit(const std::vector<padded_key> &keys, order numbers) override {
        return look_up(keys, numbers, true);
    }
    uint64_t miss(const std::vector<padded_key> &keys, order numbers) override {
        return look_up(keys, numbers, false);
    }
    uint64_t remove(const std::vector<padded_key> &keys, order numbers) override {
        uint64_t done = 0;
        for (size_t i = 0; i < numbers.size(); ++i) {
            fetch_key(keys, i);
            done += rte_hash_del_key(table_, &keys[i]) >= 0 ? 1 : 0;
            end_of_call();
        }
        return done;
    }

  private:
    static void *data_of(uint32_t n) {
        return reinterpret_cast<void *>(static_cast<uintptr_t>(value_of(n)));
    }

    uint64_t look_up(const std::vector<padded_key> &keys, order numbers, bool wanted) {
        uint64_t done = 0;
        if (!in_bulk_) {
            for (size_t i = 0; i < numbers.size(); ++i) {
                fetch_key(keys, i);
                void *data = nullptr;
                const bool found = rte_hash_lookup_data(table_, &keys[i], &data) >= 0;
                done += found == wanted && (!found || data == data_of(numbers[i])) ? 1 : 0;
                end_of_call();
            }
            return done;
        }
        for (size_t at = 0; at < numbers.size(); at += bulk) {
            const auto count = static_cast<uint32_t>(std::min<size_t>(bulk, numbers.size() - at));
            const void *wanted_keys[bulk];
            void *data[bulk];
            uint64_t mask = 0;
            for (uint32_t i = 0; i < count; ++i) {
                fetch_key(keys, at + i);
                wanted_keys[i] = &keys[at + i];
            }
            rte_hash_lookup_bulk_data(table_, wanted_keys, count, &mask, data);
            for (uint32_t i = 0; i < count; ++i) {
                const bool found = (mask >> i & 1) != 0;
                done += found == wanted && (!found || data[i] == data_of(numbers[at + i])) ? 1 : 0;
            }
        }
        return done;
    }

    rte_hash *table_;
    bool in_bulk_, huge_;
};

}  // namespace

std::unique_ptr<contender> make_rte_hash(uint32_t flows, bool in_bulk, std::string &why) {
    bool huge = false;
    if (!start(huge)) {
        why = rte_strerror(rte_errno);
        return nullptr;
    }
    rte_hash_parameters params = {};
    params.name = in_bulk ? "bulk" : "single";
    params.entries = 2 * flows;  // half full, where it is fastest
    params.key_len = sizeof(padded_key);
    params.hash_func = rte_hash_crc;
    rte_hash *table = rte_hash_create(&params);
    if (table == nullptr) {
        why = rte_strerror(rte_errno);
        return nullptr;
    }
    return std::make_unique<rte_hash_table>(table, in_bulk, huge);
}

}  // namespace halden::bench
