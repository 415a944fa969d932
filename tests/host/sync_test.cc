// What a power cut leaves of a directory that is opened for it.
//
// The kernel writes pages back when it likes, in any order and at any instant; only a flush says
// that bytes are on the disk. So between two flushes the disk may hold, of every word stored since
// that word was last flushed, the old or the new. The test keeps such a disk beside the directory:
// before each flush it looks at which words differ, puts choices of them on the disk, and opens it
// as the next process would. No entry that was acknowledged may be missing, and the one under way
// is there whole, or as it was.

#include "host/adapter.h"
#include "host/state/table_state.h"
#include "host/trace/trace.h"

#include "tests/support/scratch_directory.h"
#include "tev_tbl.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// A thread that hashes keeps its scratch entry for good, also when it ends.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() { return "leak:flow_hash::genhash_\n"; }

namespace {

using namespace halden;
using host::access;
using host::adapter;
using host::memory;
using test::scratch_directory;
namespace fs = std::filesystem;

host::adapter_options small_with(access how, host::durability durability) {
    host::adapter_options out;
    out.flow_rows = 4;
    out.flow_ohash_rows = 16;
    out.access = how;
    out.durability = durability;
    return out;
}

// --- Entries of three kinds of memory ------------------------------------------------------------

enum class kind : uint8_t { lif, tunnel, flow };
using name = std::pair<kind, uint16_t>;
// What each entry holds, never 0; a name that is not in it is absent.
using contents = std::map<name, uint16_t>;

tev_tbl_lif_mapping_spec_t lif(uint16_t n, uint16_t value) {
    tev_tbl_lif_mapping_spec_t out = {};
    out.key.index = n;
    out.action_u.lif_mapping.src_lport = value;
    return out;
}
tev_tbl_tunnel_terminate_v4_spec_t tunnel(uint16_t n, uint16_t value) {
    tev_tbl_tunnel_terminate_v4_spec_t out = {};
    out.key.lif_id = n;
    out.action_u.tunnel_terminate_a.local_vtep_idx = static_cast<uint8_t>(value);
    return out;
}
tev_tbl_flow_spec_t flow(uint16_t n, uint16_t value) {
    tev_tbl_flow_spec_t out = {};
    out.key.metadata_flow_key_sport = n;
    out.action_u.flow_hash.flow_idx = value;
    return out;
}

tev_tbl_ret_t create(const name &which, uint16_t value) {
    const auto [of, n] = which;
    if (of == kind::lif) {
        const auto spec = lif(n, value);
        return tev_tbl_lif_mapping_create(&spec);
    }
    if (of == kind::tunnel) {
        const auto spec = tunnel(n, value);
        return tev_tbl_tunnel_terminate_v4_create(&spec);
    }
    const auto spec = flow(n, value);
    return tev_tbl_flow_create(&spec);
}
tev_tbl_ret_t update(const name &which, uint16_t value) {
    const auto [of, n] = which;
    if (of == kind::lif) {
        const auto spec = lif(n, value);
        return tev_tbl_lif_mapping_update(&spec);
    }
    if (of == kind::tunnel) {
        const auto spec = tunnel(n, value);
        return tev_tbl_tunnel_terminate_v4_update(&spec);
    }
    const auto spec = flow(n, value);
    return tev_tbl_flow_update(&spec);
}
tev_tbl_ret_t remove(const name &which) {
    const auto [of, n] = which;
    if (of == kind::lif) {
        const auto spec = lif(n, 0);
        return tev_tbl_lif_mapping_delete(&spec.key);
    }
    if (of == kind::tunnel) {
        const auto spec = tunnel(n, 0);
        return tev_tbl_tunnel_terminate_v4_delete(&spec.key);
    }
    const auto spec = flow(n, 0);
    return tev_tbl_flow_delete(&spec.key);
}
// Nothing when it is absent.
std::optional<uint16_t> read(const name &which) {
    const auto [of, n] = which;
    if (of == kind::lif) {
        auto spec = lif(n, 0);
        if (tev_tbl_lif_mapping_read(&spec.key, &spec) != TEV_TBL_RET_OK) return std::nullopt;
        return static_cast<uint16_t>(spec.action_u.lif_mapping.src_lport);
    }
    if (of == kind::tunnel) {
        auto spec = tunnel(n, 0);
        if (tev_tbl_tunnel_terminate_v4_read(&spec.key, &spec) != TEV_TBL_RET_OK)
            return std::nullopt;
        return static_cast<uint16_t>(spec.action_u.tunnel_terminate_a.local_vtep_idx);
    }
    auto spec = flow(n, 0);
    if (tev_tbl_flow_read(&spec.key, &spec) != TEV_TBL_RET_OK) return std::nullopt;
    return static_cast<uint16_t>(spec.action_u.flow_hash.flow_idx);
}

// --- A disk that was cut off ---------------------------------------------------------------------

class PowerCut : public testing::Test {
  protected:
    static constexpr size_t word = 8;
    using file_bytes = std::vector<uint8_t>;
    struct stored_word {
        std::string file;
        size_t at;
    };

    void SetUp() override {
        host::trace::set_level("off");
        live_ = adapter::open(path(), small_with(access::create, host::durability::power));
        live_->set_flush_hook([this](memory where, uint32_t table, size_t at, size_t bytes) {
            return before_flush(where, table, at, bytes);
        });
        tables_ = std::make_unique<host::table_state>(*live_);
        fs::create_directory(disk());
    }
    void TearDown() override { host::trace::set_level("info"); }

    std::string path() const { return scratch_.file("live"); }
    std::string disk() const { return scratch_.file("disk"); }

    // An operation on one entry that is acknowledged.
    void acknowledged(const name &which, std::optional<uint16_t> value,
                      const std::function<tev_tbl_ret_t()> &call) {
        under_way_ = before_;
        if (value)
            under_way_[which] = *value;
        else
            under_way_.erase(which);
        ASSERT_EQ(call(), TEV_TBL_RET_OK);
        before_ = under_way_;
        judge_choices();
    }
    void creates(const name &which, uint16_t value) {
        acknowledged(which, value, [&] { return create(which, value); });
    }
    void updates(const name &which, uint16_t value) {
        acknowledged(which, value, [&] { return update(which, value); });
    }
    void removes(const name &which) {
        acknowledged(which, std::nullopt, [&] { return remove(which); });
    }

    size_t flushes_ = 0, cuts_ = 0, lost_ = 0;
    bool flushes_fail_ = false;
    bool looks_ = true;
    std::unique_ptr<adapter> live_;

  private:
    static std::string file_of(memory where, uint32_t table) {
        const char *endings[] = {"sram", "tcam", "hbm"};
        const std::string number = std::to_string(table);
        return "table-" + std::string(2 - number.size(), '0') + number + "." +
               endings[static_cast<size_t>(where)];
    }
    static file_bytes read_file(const std::string &path) {
        const std::string text = test::text_of(path);
        return {text.begin(), text.end()};
    }
    static bool is_watched(const std::string &file) {
        return file == "table-16.sram" || file == "table-08.sram" || file == "table-08.tcam" ||
               file == "table-02.hbm" || file == "table-01.hbm";
    }

    bool before_flush(memory where, uint32_t table, size_t at, size_t bytes) {
        ++flushes_;
        if (flushes_fail_) return false;
        if (!looks_) return true;
        judge_choices();
        const std::string file = file_of(where, table);
        const file_bytes now = read_file(path() + "/" + file);
        file_bytes &kept = kept_[file];
        kept.resize(now.size());
        std::copy_n(now.begin() + static_cast<long>(at), bytes,
                    kept.begin() + static_cast<long>(at));
        return true;
    }

    // Words that the disk may or may not have yet.
    std::vector<stored_word> unflushed(std::map<std::string, file_bytes> &now) {
        std::vector<stored_word> out;
        for (const auto &each : fs::directory_iterator(path())) {
            const std::string file = each.path().filename().string();
            if (!is_watched(file)) continue;
            file_bytes &bytes = now[file] = read_file(each.path());
            file_bytes &kept = kept_[file];
            kept.resize(bytes.size());
            for (size_t at = 0; at < bytes.size(); at += word)
                if (!std::equal(kept.begin() + static_cast<long>(at),
                                kept.begin() + static_cast<long>(at + word),
                                bytes.begin() + static_cast<long>(at)))
                    out.push_back({file, at});
        }
        return out;
    }

    // Opens the disk with none, each alone, all but each, all, and some of the words.
    void judge_choices() {
        std::map<std::string, file_bytes> now;
        const std::vector<stored_word> words = unflushed(now);
        const size_t count = words.size();
        const auto judge_if = [&](const std::function<bool(size_t)> &chosen) {
            auto there = kept_;
            for (size_t i = 0; i < count; ++i)
                if (chosen(i))
                    std::copy_n(now[words[i].file].begin() + static_cast<long>(words[i].at), word,
                                there[words[i].file].begin() + static_cast<long>(words[i].at));
            judge(there);
        };
        judge_if([](size_t) { return true; });
        if (count == 0) return;
        judge_if([](size_t) { return false; });
        for (size_t one = 0; one < count && count > 1; ++one) {
            judge_if([&](size_t i) { return i == one; });
            judge_if([&](size_t i) { return i != one; });
        }
        for (int more = 0; more < 4 && count > 3; ++more)
            judge_if([&](size_t) { return random_() % 2 == 0; });
    }

    void judge(const std::map<std::string, file_bytes> &there) {
        ++cuts_;
        for (const auto &each : fs::directory_iterator(path())) {
            const std::string file = each.path().filename().string();
            if (file.starts_with("table-")) continue;
            fs::copy_file(each.path(), disk() + "/" + file, fs::copy_options::overwrite_existing);
        }
        for (const auto &[file, bytes] : there)
            test::write_text(disk() + "/" + file, {bytes.begin(), bytes.end()});
        // Another thread: this one is in the middle of a call.
        std::thread([this] { look(); }).join();
    }

    // As the next process: it repairs first, and here nothing of that reaches the disk.
    void look() {
        const auto again =
            adapter::open(disk(), small_with(access::rehearse, host::durability::process));
        const host::table_state tables(*again);
        contents names = before_;
        names.insert(under_way_.begin(), under_way_.end());
        for (const auto &[which, unused] : names) {
            const auto found = read(which);
            if (found == value_in(before_, which) || found == value_in(under_way_, which)) continue;
            ++lost_;
            ADD_FAILURE() << "cut " << cuts_ << " before flush " << flushes_ << ": entry "
                          << which.second << " of kind " << static_cast<int>(which.first) << " is "
                          << (found ? std::to_string(*found) : "absent");
        }
    }
    static std::optional<uint16_t> value_in(const contents &of, const name &which) {
        const auto found = of.find(which);
        return found != of.end() ? std::optional(found->second) : std::nullopt;
    }

    scratch_directory scratch_;
    std::unique_ptr<host::table_state> tables_;
    std::map<std::string, file_bytes> kept_;  // what certainly is on the disk
    contents before_, under_way_;
    std::mt19937 random_{7};
};

TEST_F(PowerCut, LosesNoAcknowledgedRow) {
    creates({kind::lif, 1}, 11);
    creates({kind::lif, 2}, 12);
    updates({kind::lif, 1}, 13);
    updates({kind::lif, 1}, 14);
    removes({kind::lif, 2});
    creates({kind::lif, 2}, 15);
    EXPECT_EQ(flushes_, 12u);
    EXPECT_GT(cuts_, 25u);
}

TEST_F(PowerCut, LosesNoAcknowledgedTernaryEntry) {
    creates({kind::tunnel, 1}, 21);
    creates({kind::tunnel, 2}, 22);
    updates({kind::tunnel, 1}, 23);
    removes({kind::tunnel, 2});
    creates({kind::tunnel, 3}, 24);
    EXPECT_GE(flushes_, 5 * 4u);
    EXPECT_GT(cuts_, 60u);
}

// Chains of overflow rows grow, shrink from the middle, and are filled again.
TEST_F(PowerCut, LosesNoAcknowledgedFlow) {
    constexpr uint16_t flows = 9;
    for (uint16_t n = 1; n <= flows; ++n) creates({kind::flow, n}, static_cast<uint16_t>(100 + n));
    ASSERT_LT(live_->next_used(1, 0), 16u) << "no flow overflows";
    for (uint16_t n = 1; n <= flows; n = static_cast<uint16_t>(n + 4))
        updates({kind::flow, n}, static_cast<uint16_t>(200 + n));
    for (uint16_t n = 1; n <= flows; n = static_cast<uint16_t>(n + 2)) removes({kind::flow, n});
    creates({kind::flow, 20}, 120);
    creates({kind::flow, 21}, 121);
    EXPECT_GT(flushes_, 40u);
    EXPECT_GT(cuts_, 200u);
}

TEST_F(PowerCut, AFlushThatFailsFailsTheCall) {
    looks_ = false;
    ASSERT_EQ(create({kind::lif, 1}, 11), TEV_TBL_RET_OK);
    ASSERT_EQ(create({kind::flow, 1}, 101), TEV_TBL_RET_OK);
    flushes_fail_ = true;
    EXPECT_EQ(create({kind::lif, 2}, 12), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(update({kind::lif, 1}, 13), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(create({kind::tunnel, 1}, 21), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(update({kind::flow, 1}, 102), TEV_TBL_RET_WRITE_FAILED);
    const std::vector<uint8_t> image(128, 0xff);
    EXPECT_EQ(live_->hbm_write(2, 0, image.data(), 1024), SDK_RET_HW_PROGRAM_ERR);
    flushes_fail_ = false;
    EXPECT_EQ(read({kind::lif, 1}), 11);
    EXPECT_EQ(update({kind::lif, 1}, 14), TEV_TBL_RET_OK);
    // What of the flow tables the disk has is not known any more.
    EXPECT_EQ(create({kind::flow, 2}, 103), TEV_TBL_RET_WRITE_FAILED);
}

TEST(Durability, NothingIsFlushedWhereNobodyAskedForIt) {
    const scratch_directory scratch;
    size_t flushes = 0;
    const auto count = [&](memory, uint32_t, size_t, size_t) {
        ++flushes;
        return true;
    };
    const auto made =
        adapter::open(scratch.file("a"), small_with(access::create, host::durability::process));
    made->set_flush_hook(count);
    const auto anonymous = adapter::anonymous(small_with(access::create, host::durability::power));
    anonymous->set_flush_hook(count);
    for (adapter *each : {made.get(), anonymous.get()}) {
        EXPECT_FALSE(each->flushes());
        host::table_state tables(*each);
        EXPECT_EQ(create({kind::lif, 1}, 11), TEV_TBL_RET_OK);
        EXPECT_EQ(create({kind::flow, 1}, 101), TEV_TBL_RET_OK);
    }
    EXPECT_EQ(flushes, 0u);
}

}  // namespace
