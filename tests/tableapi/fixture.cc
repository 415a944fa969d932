#include "tests/tableapi/fixture.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

namespace halden::test {

std::function<uint64_t(uint32_t tableid, const void *key)> on_index_map;

TableApi::TableApi() {
    host.reset();
    host.on_properties = [](uint32_t tableid, p4pd_table_properties_t *properties) {
        *properties = {};
        properties->tablename = "a table";
        properties->tableid = tableid;
        properties->tabledepth = 16;
        properties->actiondata_struct_size = 8;
        return P4PD_SUCCESS;
    };
    state.reset(new api::impl::tev_host_state{});
    api::impl::g_tev_impl_state.state = state.get();
    forget();
}

TableApi::~TableApi() {
    on_index_map = nullptr;
    host.on_engine = nullptr;
    host.on_call = nullptr;
    // The recording engine leaves the flow table's memory to the test.
    void *flows = state->tables.flow_tbl();
    api::impl::g_tev_impl_state.state = nullptr;
    state.reset();
    std::free(flows);
    host.reset();
}

void TableApi::forget() {
    const auto engine = host.on_engine;
    const auto seen = host.on_call;
    host.reset();
    host.on_engine = engine;
    host.on_call = seen;
}

bytes TableApi::random_record(uint32_t size) {
    bytes out(size);
    for (uint8_t &byte : out) byte = static_cast<uint8_t>(random());
    return out;
}

void TableApi::expect_report(const std::string &format, std::optional<uint64_t> number) {
    const std::vector<trace_message> sent = host.messages();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].level, 11);
    EXPECT_EQ(sent[0].module, 1);
    EXPECT_EQ(sent[0].format, format);
    EXPECT_EQ(sent[0].path, "p4gen/halden/src/tev_tbl");
    EXPECT_GT(sent[0].line, 0u);
    std::string text = "[p4gen/halden/src/tev_tbl:" + std::to_string(sent[0].line) + "] " +
                       format.substr(std::strlen("[%s:%u] "));
    const size_t at = text.find("%lu");
    ASSERT_EQ(at != std::string::npos, number.has_value());
    if (number) text.replace(at, 3, std::to_string(*number));
    EXPECT_EQ(sent[0].text, text);
}

std::vector<call> TableApi::engine_calls() const {
    std::vector<call> out;
    for (const call &c : host.calls())
        if (c.name.find("::") != std::string::npos) out.push_back(c);
    return out;
}

bytes OneTable::data_of(const bytes &spec) const {
    bytes out = {spec[0]};
    out.insert(out.end(), spec.begin() + t().data_at(), spec.end());
    return out;
}

std::set<uint32_t> OneTable::lines_of_five(const void *spec, const void *key) {
    bytes info = random_record(t().spec_bytes());
    t().create(spec);
    t().update(spec);
    t().read(key, info.data());
    t().remove(key);
    t().find(key);
    std::set<uint32_t> lines;
    const std::vector<trace_message> sent = host.messages();
    EXPECT_EQ(sent.size(), 5u);
    for (const trace_message &message : sent) lines.insert(message.line);
    forget();
    return lines;
}

std::vector<uint32_t> engine_codes() {
    std::vector<uint32_t> out;
    for (uint32_t code = 0; code <= 20; ++code) out.push_back(code);
    out.push_back(255);
    return out;
}

sdk::table::sdk_table_api_params_ params_of(const call &c) {
    sdk::table::sdk_table_api_params_ out;
    std::memcpy(static_cast<void *>(&out), c.arguments.at(1).bytes.data(), sizeof out);
    return out;
}

}  // namespace halden::test

// In front of the library's own: the functions of the table API call it by its exported name.
uint64_t p4pd_index_to_hwindex_map(uint32_t tableid, void *swkey) {
    if (halden::test::on_index_map) return halden::test::on_index_map(tableid, swkey);
    using function = uint64_t (*)(uint32_t, void *);
    static const auto real =
        reinterpret_cast<function>(dlsym(RTLD_NEXT, "_Z25p4pd_index_to_hwindex_mapjPv"));
    return real(tableid, swkey);
}
