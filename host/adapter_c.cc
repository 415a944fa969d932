#include "host/adapter_c.h"

#include "host/adapter.h"
#include "host/state/table_state.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <optional>

struct halden_adapter_ {
    std::unique_ptr<halden::host::adapter> hardware;
    std::optional<halden::host::table_state> tables;  // ends first
};

namespace {

using halden::host::adapter;

// Of fixed size, so that a failure for want of memory has its message too.
thread_local char last_error[1024];

std::mutex opening;
halden_adapter_t *open_one = nullptr;

halden_adapter_result_t fail(halden_adapter_result_t result, const char *text) {
    std::snprintf(last_error, sizeof last_error, "%s", text);
    return result;
}

halden::host::adapter_options options_of(const halden_adapter_options_t &given) {
    halden::host::adapter_options out;
    out.access = static_cast<halden::host::access>(given.access);
    if (given.flow_rows != 0) out.flow_rows = given.flow_rows;
    if (given.flow_ohash_rows != 0) out.flow_ohash_rows = given.flow_ohash_rows;
    return out;
}

static_assert(static_cast<int>(halden::host::access::create) == HALDEN_ACCESS_CREATE);
static_assert(static_cast<int>(halden::host::access::write) == HALDEN_ACCESS_WRITE);
static_assert(static_cast<int>(halden::host::access::read) == HALDEN_ACCESS_READ);
static_assert(static_cast<int>(halden::host::access::rehearse) == HALDEN_ACCESS_REHEARSE);

// Looked at as a number: to read one that is no access as the enumeration is undefined.
bool has_access(const halden_adapter_options_t &options) {
    unsigned number;
    static_assert(sizeof number == sizeof options.access);
    std::memcpy(&number, &options.access, sizeof number);
    return number <= HALDEN_ACCESS_REHEARSE;
}

void open_into(halden_adapter_t &out, const char *directory,
               const halden_adapter_options_t &options) {
    const auto wanted = options_of(options);
    out.hardware =
        directory == nullptr ? adapter::anonymous(wanted) : adapter::open(directory, wanted);
    out.tables.emplace(*out.hardware);
}

}  // namespace

halden_adapter_result_t halden_adapter_open(const char *directory,
                                            const halden_adapter_options_t *options,
                                            halden_adapter_t **out) {
    if (out == nullptr)
        return fail(HALDEN_ADAPTER_INVALID_ARG, "halden_adapter_open: no place for the adapter");
    *out = nullptr;
    const halden_adapter_options_t wanted =
        options == nullptr ? halden_adapter_options_t{} : *options;
    if (!has_access(wanted))
        return fail(HALDEN_ADAPTER_INVALID_ARG, "halden_adapter_open: access is 0 to 3");
    try {
        const std::scoped_lock one_at_a_time(opening);
        if (open_one != nullptr)
            return fail(HALDEN_ADAPTER_IN_USE,
                        "halden_adapter_open: this process has an adapter open; close it first");
        auto made = std::make_unique<halden_adapter_t>();
        open_into(*made, directory, wanted);
        *out = open_one = made.release();
        return HALDEN_ADAPTER_OK;
    } catch (const halden::host::no_adapter &e) {
        return fail(HALDEN_ADAPTER_ABSENT, e.what());
    } catch (const std::bad_alloc &) {
        return fail(HALDEN_ADAPTER_NO_MEMORY, "halden_adapter_open: out of memory");
    } catch (const std::exception &e) {
        return fail(HALDEN_ADAPTER_REFUSED, e.what());
    } catch (...) {
        return fail(HALDEN_ADAPTER_REFUSED, "halden_adapter_open: refused without a reason");
    }
}

void halden_adapter_close(halden_adapter_t *adapter) {
    if (adapter == nullptr) return;
    const std::scoped_lock one_at_a_time(opening);
    if (open_one == adapter) open_one = nullptr;
    delete adapter;
}

const char *halden_adapter_error(void) { return last_error; }
