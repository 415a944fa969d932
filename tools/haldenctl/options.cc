#include "tools/haldenctl/options.h"

#include <sstream>

#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/naming.h"
#include "tools/haldenctl/value.h"

namespace halden::tool {

namespace {

constexpr host::asic_call calls[] = {host::asic_call::sram_write, host::asic_call::sram_read,
                                     host::asic_call::tcam_write, host::asic_call::tcam_read,
                                     host::asic_call::hbm_write,  host::asic_call::hbm_read,
                                     host::asic_call::allocate};

host::asic_call call_named(const std::string &name) {
    std::vector<std::string_view> names;
    for (host::asic_call call : calls) {
        if (name == host::name_of(call)) return call;
        names.emplace_back(host::name_of(call));
    }
    throw failure(unknown("call", name, names));
}

uint32_t number(const std::string &value) { return static_cast<uint32_t>(parse_value(value, 31)); }

host::fault parsed_fault(const std::string &text) {
    host::fault out;
    std::istringstream in(text);
    std::string part;
    bool first = true;
    try {
        while (std::getline(in, part, ',')) {
            const size_t equals = part.find('=');
            const std::string name = part.substr(0, equals);
            const std::string value = equals == part.npos ? "" : part.substr(equals + 1);
            if (first)
                out.call = call_named(part);
            else if (name == "table")
                out.table = table_named(value).id;
            else if (name == "skip")
                out.skip = number(value);
            else if (name == "count")
                out.count = value == "all" ? host::every_time : number(value);
            else if (name == "delay") {
                out.delay = std::chrono::milliseconds(number(value));
                out.result = SDK_RET_OK;
            } else
                throw failure(unknown("part", name, {"table", "skip", "count", "delay"}));
            first = false;
        }
        if (first) out.call = call_named(text);
    } catch (const failure &error) {
        throw error.inside("--fault " + text);
    }
    return out;
}

}  // namespace

host::fault fault_of(const std::string &text) {
    return typed([&] { return parsed_fault(text); });
}

}  // namespace halden::tool
