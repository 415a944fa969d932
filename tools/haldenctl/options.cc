#include "tools/haldenctl/options.h"

#include <iostream>
#include <sstream>

#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/naming.h"
#include "tools/haldenctl/value.h"

namespace halden::tool {

namespace {

// All but those of programs, which the library does without by ending the process.
std::vector<host::asic_call> calls() {
    std::vector<host::asic_call> out;
    for (unsigned n = 0; n < host::asic_calls; ++n)
        if (const auto call = static_cast<host::asic_call>(n); call != host::asic_call::action_pc)
            out.push_back(call);
    return out;
}

host::asic_call call_named(const std::string &name) {
    for (host::asic_call call : calls())
        if (name == host::name_of(call)) return call;
    throw failure("no call '" + quotable(name) + "'; allowed: " + fault_calls());
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

std::string fault_calls() {
    std::string out;
    for (host::asic_call call : calls())
        out += (out.empty() ? "" : ", ") + std::string(host::name_of(call));
    return out;
}

fault_report::~fault_report() {
    std::cout.flush();
    for (const given_fault &each : given_.faults)
        if (!each.met)
            std::cerr << "haldenctl: --fault " << printable(each.text) << ": no call met it\n";
}

}  // namespace halden::tool
