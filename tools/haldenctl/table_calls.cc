#include "tools/haldenctl/table_calls.h"

#include "p4gen/halden/pipeline/words.h"
#include "tev_tbl.h"
#include "tev_tbl_impl_state.h"
#include "tools/haldenctl/failure.h"

namespace halden::tool {

using namespace pipeline;

namespace {

struct calls {
    std::string_view table;
    tev_tbl_ret_t (*create)(const void *spec);
    tev_tbl_ret_t (*update)(const void *spec);
    tev_tbl_ret_t (*remove)(const void *key);
    tev_tbl_ret_t (*find)(const void *key);
    tev_tbl_ret_t (*read)(const void *key, void *info);
    sdk::table::sltcam *(*ternary)();  // null but for ternary tables
};

sdk::table::sltcam *as_ternary(sdk::table::sltcam *engine) { return engine; }
sdk::table::sltcam *as_ternary(const void *) { return nullptr; }

#define TABLE_CALLS(engine, name, id)                                                        \
    {#name,                                                                                  \
     [](const void *spec) {                                                                  \
         return tev_tbl_##name##_create(static_cast<const tev_tbl_##name##_spec_t *>(spec)); \
     },                                                                                      \
     [](const void *spec) {                                                                  \
         return tev_tbl_##name##_update(static_cast<const tev_tbl_##name##_spec_t *>(spec)); \
     },                                                                                      \
     [](const void *key) {                                                                   \
         return tev_tbl_##name##_delete(static_cast<const tev_tbl_##name##_key_t *>(key));   \
     },                                                                                      \
     [](const void *key) {                                                                   \
         return tev_tbl_##name##_find(static_cast<const tev_tbl_##name##_key_t *>(key));     \
     },                                                                                      \
     [](const void *key, void *info) {                                                       \
         return tev_tbl_##name##_read(static_cast<const tev_tbl_##name##_key_t *>(key),      \
                                      static_cast<tev_tbl_##name##_info_t *>(info));         \
     },                                                                                      \
     [] { return as_ternary(api::impl::g_tev_impl_state.state->tables.name##_tbl()); }},

constexpr calls all_calls[] = {TEV_TBL_FOR_EACH_ENGINE(TABLE_CALLS)};

const calls *calls_of(const table &t) {
    for (const calls &c : all_calls)
        if (c.table == t.name) return &c;
    return nullptr;
}

// The index record, a field at a time at its storage width.
std::vector<uint8_t> index_record(const table &t, uint32_t row) {
    std::vector<uint8_t> out(record_bytes(t.index));
    for (size_t n = t.index.size(); n-- > 0;) {
        const unsigned bits = t.index[n].bits;
        set_field_value(out.data(), record_offset(t.index, n), bits,
                        row & static_cast<uint32_t>(all_ones(bits)));
        row >>= bits;
    }
    return out;
}

void append(std::vector<uint8_t> &to, const std::vector<uint8_t> &bytes, size_t from = 0) {
    to.insert(to.end(), bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end());
}

// | action id | key or index record | has_mask, mask (ternary) | action data |
std::vector<uint8_t> spec_of(const records &entry, uint32_t index) {
    std::vector<uint8_t> spec = {entry.action_id()};
    append(spec, is_index(entry.of->kind) ? index_record(*entry.of, index) : entry.key);
    if (has_mask(entry.of->kind)) {
        spec.push_back(1);
        append(spec, entry.mask);
    }
    append(spec, entry.data, 1);
    return spec;
}

std::vector<uint8_t> key_of(const records &entry, uint32_t index) {
    return is_index(entry.of->kind) ? index_record(*entry.of, index) : entry.key;
}

// The table API hands a ternary engine no mask to find, read and delete an entry: a program that
// has its key alone finds the most specific entry made with it. Whoever writes an entry down means
// the one with that very mask, so the engine itself is asked for it.
class ternary_call {
  public:
    explicit ternary_call(const records &entry) : entry_(entry) {
        params_.key = entry_.key.data();
        params_.mask = entry_.mask.data();
        params_.data = entry_.data.data();
        params_.action_id = entry_.action_id();
        params_.handle = sdk::table::handle_t::null();
        params_.from_hardware = true;
    }
    ternary_call(const ternary_call &) = delete;
    ternary_call &operator=(const ternary_call &) = delete;

    tev_tbl_ret_t update() { return written(engine().update(&params_)); }
    tev_tbl_ret_t remove() { return written(engine().remove(&params_)); }
    tev_tbl_ret_t find() {
        const sdk_ret_t result = engine().get(&params_);
        if (result == SDK_RET_ENTRY_NOT_FOUND) return TEV_TBL_RET_ENTRY_NOT_FOUND;
        return read(result);
    }
    tev_tbl_ret_t read(records &into) {
        const tev_tbl_ret_t result = read(engine().get(&params_));
        if (result == TEV_TBL_RET_OK) into.data = entry_.data;
        return result;
    }

  private:
    sdk::table::sltcam &engine() const { return *calls_of(*entry_.of)->ternary(); }
    // The codes of the table API.
    static tev_tbl_ret_t written(sdk_ret_t result) {
        return result == SDK_RET_OK ? TEV_TBL_RET_OK : TEV_TBL_RET_WRITE_FAILED;
    }
    static tev_tbl_ret_t read(sdk_ret_t result) {
        return result == SDK_RET_OK ? TEV_TBL_RET_OK : TEV_TBL_RET_READ_FAILED;
    }

    records entry_;
    sdk::table::sdk_table_api_params_t params_ = {};
};

bool is_ternary(const records &entry) { return has_mask(entry.of->kind); }

}  // namespace

bool has_engine(const table &t) { return calls_of(t) != nullptr; }

void check_engine(const table &t) {
    if (has_engine(t)) return;
    std::string text = "it has no engine of its own; ";
    if (t.kind == kind::overflow_tcam)
        text += "entries of " + std::string(find_table(t.owner)->name) + " overflow into it";
    else if (t.kind == kind::hash_hbm)
        text += "entries of flow are chained in it";
    else
        text += "its program always runs";
    throw failure(text + "; `haldenctl write` writes raw rows");
}

tev_tbl_ret_t create_entry(const records &entry, uint32_t index) {
    return calls_of(*entry.of)->create(spec_of(entry, index).data());
}
tev_tbl_ret_t update_entry(const records &entry, uint32_t index) {
    if (is_ternary(entry)) return ternary_call(entry).update();
    return calls_of(*entry.of)->update(spec_of(entry, index).data());
}
tev_tbl_ret_t delete_entry(const records &entry, uint32_t index) {
    if (is_ternary(entry)) return ternary_call(entry).remove();
    return calls_of(*entry.of)->remove(key_of(entry, index).data());
}
tev_tbl_ret_t find_entry(const records &entry, uint32_t index) {
    if (is_ternary(entry)) return ternary_call(entry).find();
    return calls_of(*entry.of)->find(key_of(entry, index).data());
}
tev_tbl_ret_t read_entry(records &entry, uint32_t index) {
    if (is_ternary(entry)) return ternary_call(entry).read(entry);
    std::vector<uint8_t> info = spec_of(entry, index);
    const tev_tbl_ret_t result =
        calls_of(*entry.of)->read(key_of(entry, index).data(), info.data());
    if (result != TEV_TBL_RET_OK) return result;
    entry.data[0] = info[0];
    const size_t data = info.size() - (entry.data.size() - 1);
    std::copy(info.begin() + static_cast<std::ptrdiff_t>(data), info.end(), entry.data.begin() + 1);
    return result;
}

std::string name_of(tev_tbl_ret_t result) {
    const char *text = "unknown";
    switch (result) {
        case TEV_TBL_RET_OK:
            text = "done";
            break;
        case TEV_TBL_RET_INVALID_ARG:
            text = "invalid argument";
            break;
        case TEV_TBL_RET_ENTRY_NOT_FOUND:
            text = "entry not found";
            break;
        case TEV_TBL_RET_WRITE_FAILED:
            text = "write refused by the engine";
            break;
        case TEV_TBL_RET_READ_FAILED:
            text = "read failed";
            break;
        case TEV_TBL_RET_NOT_IMPLEMENTED:
            text = "not implemented";
            break;
    }
    return std::to_string(result) + ", " + text;
}

}  // namespace halden::tool
