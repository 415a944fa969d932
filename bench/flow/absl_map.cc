// absl::flat_hash_map at its best: a CRC hash in hardware where there is one, and room reserved.

#include <cstring>

#include "absl/container/flat_hash_map.h"
#include "bench/flow/contender.h"

#if defined(__SSE4_2__)
#include <nmmintrin.h>
#endif

namespace halden::bench {

namespace {

struct crc_hash {
    size_t operator()(const padded_key &key) const {
#if defined(__SSE4_2__)
        uint64_t words[10];
        std::memcpy(words, &key, sizeof words);
        uint64_t a = 0, b = 0x9e3779b9;
        for (int i = 0; i < 10; i += 2) {
            a = _mm_crc32_u64(a, words[i]);
            b = _mm_crc32_u64(b, words[i + 1]);
        }
        // The map takes its control byte from the low bits and the position from the rest.
        return (a << 32 | b) * 0x9ddfea08eb382d69ull >> 1;
#else
        return absl::Hash<std::string_view>{}({reinterpret_cast<const char *>(&key), sizeof key});
#endif
    }
};

struct same_bytes {
    bool operator()(const padded_key &a, const padded_key &b) const {
        return std::memcmp(&a, &b, sizeof a) == 0;
    }
};

class absl_map : public contender {
  public:
    explicit absl_map(uint32_t flows) { map_.reserve(flows); }
    std::string name() const override { return "absl::flat_hash_map"; }

    uint64_t create(const std::vector<padded_key> &keys, order numbers) override {
        uint64_t done = 0;
        for (size_t i = 0; i < numbers.size(); ++i) {
            fetch_key(keys, i);
            done += map_.try_emplace(keys[i], value_of(numbers[i])).second ? 1 : 0;
            end_of_call();
        }
        return done;
    }
    uint64_t hit(const std::vector<padded_key> &keys, order numbers) override {
        uint64_t done = 0;
        for (size_t i = 0; i < numbers.size(); ++i) {
            fetch_key(keys, i);
            const auto at = map_.find(keys[i]);
            done += at != map_.end() && at->second == value_of(numbers[i]) ? 1 : 0;
            end_of_call();
        }
        return done;
    }
    uint64_t miss(const std::vector<padded_key> &keys, order numbers) override {
        uint64_t done = 0;
        for (size_t i = 0; i < numbers.size(); ++i) {
            fetch_key(keys, i);
            done += map_.find(keys[i]) == map_.end() ? 1 : 0;
            end_of_call();
        }
        return done;
    }
    uint64_t remove(const std::vector<padded_key> &keys, order numbers) override {
        uint64_t done = 0;
        for (size_t i = 0; i < numbers.size(); ++i) {
            fetch_key(keys, i);
            done += map_.erase(keys[i]);
            end_of_call();
        }
        return done;
    }

  private:
    absl::flat_hash_map<padded_key, uint32_t, crc_hash, same_bytes> map_;
};

}  // namespace

std::unique_ptr<contender> make_absl(uint32_t flows) { return std::make_unique<absl_map>(flows); }

}  // namespace halden::bench
