// Sequences of table API calls and row writes over all tables, with restarts of the engines in
// between, against plain maps: every call is taken or refused as the maps say, and engines and
// memory hold afterwards what they hold.
//
//     4 bytes an operation: table, entry, what (low 3 bits), value

#include "fuzz/input.h"
#include "host/state/table_state.h"
#include "host/trace/trace.h"
#include "tests/model/shadow.h"

#include <memory>
#include <set>

namespace {

using namespace halden;
using test::change;
using test::operation;
using test::shadow;

// Stays from input to input: making the engines takes longer than most inputs.
struct bed {
    bed() { host::trace::set_level("off"); }
    void restart() {
        tables.reset();
        tables = std::make_unique<host::table_state>(*hardware);
    }

    std::unique_ptr<host::adapter> hardware = host::adapter::anonymous(shadow::depths);
    std::unique_ptr<host::table_state> tables = std::make_unique<host::table_state>(*hardware);
};

void run(bed &on, shadow &wanted, const operation &op) {
    const bool must = wanted.accepts(op);
    const uint32_t result = shadow::run(*on.hardware, op);
    const std::string text = shadow::text_of(op);
    fuzz::require(must || result != 0, (text + ": was taken").c_str());
    fuzz::require(!must || result == 0 || shadow::may_be_refused(op),
                  (text + ": was refused").c_str());
    if (result == 0) wanted.note(op);
}

void compare(bed &on, const shadow &wanted, const std::set<uint16_t> &touched) {
    for (const uint16_t table : touched)
        for (const std::string &wrong : wanted.differences_of(*on.hardware, table))
            fuzz::require(false, wrong.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static bed on;
    constexpr size_t most = 512;
    fuzz::input in(data, size);
    shadow wanted;
    std::set<uint16_t> touched;
    const auto tables = shadow::tables();
    for (size_t n = 0; n < most && !in.rest().empty(); ++n) {
        operation op = {};
        op.table = static_cast<uint16_t>(in.take<uint8_t>() % tables.size());
        op.entry = static_cast<uint16_t>(in.take<uint8_t>() % tables[op.table].candidates.size());
        const auto what = static_cast<uint8_t>(in.take<uint8_t>() % 8);
        op.value = in.take<uint8_t>();
        if (what == 7) {
            compare(on, wanted, touched);
            on.restart();
            continue;
        }
        op.what = static_cast<change>(what % test::changes);
        touched.insert(op.table);
        run(on, wanted, op);
    }
    compare(on, wanted, touched);
    // Everything goes again, so that the next input starts with empty tables.
    for (const uint16_t table : touched)
        for (uint16_t entry = 0; entry < tables[table].candidates.size(); ++entry)
            if (wanted.has(table, entry)) run(on, wanted, {change::remove, table, entry, 0});
    compare(on, wanted, touched);
    return 0;
}
