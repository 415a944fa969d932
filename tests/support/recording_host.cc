#include "tests/support/recording_host.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "sdk/impl_state.h"
#include "sdk/trace.h"

namespace halden::test {

namespace {

thread_local int depth = 0;

int record_trace(int level, int module, const char *format, ...) {
    recording_host::scope inside;
    trace_message message{level, module, format, {}, 0, {}};
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    // Every message of the library opens with its source path and line.
    if (std::strncmp(format, "[%s:%u] ", 8) == 0) {
        message.path = va_arg(again, const char *);
        message.line = va_arg(again, unsigned);
    }
    va_end(again);
    char buffer[1024];
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    message.text = buffer;
    recording_host::get().record_message(std::move(message));
    return 0;
}

}  // namespace

recording_host::scope::scope() { ++depth; }
recording_host::scope::~scope() { --depth; }
bool recording_host::inside() { return depth > 0; }

recording_host &recording_host::get() {
    static recording_host host;
    return host;
}

void recording_host::reset() {
    scope inside;
    const std::lock_guard lock(mutex_);
    calls_.clear();
    messages_.clear();
    buffers_.clear();
    on_action_pc = nullptr;
    on_action_id = nullptr;
    on_prepare = nullptr;
    on_read = nullptr;
    on_properties = nullptr;
    on_global_properties = nullptr;
    on_global_entry_read = nullptr;
    on_decode = nullptr;
    on_engine = nullptr;
    on_call = nullptr;
    entry_offset = 0;
    asic_result = 0;
    global_write_result = 0;
}

std::vector<call> recording_host::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

std::vector<trace_message> recording_host::messages() const {
    const std::lock_guard lock(mutex_);
    return messages_;
}

void recording_host::forget_calls() {
    const std::lock_guard lock(mutex_);
    calls_.clear();
}

void recording_host::name_buffer(std::string name, const void *start, size_t size) {
    const std::lock_guard lock(mutex_);
    buffers_.push_back({std::move(name), static_cast<const uint8_t *>(start), size});
}

std::string recording_host::text_of(const call &c) const {
    std::string out = c.name;
    for (const argument &a : c.arguments) {
        out += ' ';
        if (!a.is_pointer) {
            out += std::to_string(a.number);
            continue;
        }
        if (a.pointer == nullptr) {
            out += "null";
            continue;
        }
        const uint8_t *at = static_cast<const uint8_t *>(a.pointer);
        bool named = false;
        for (const named_buffer &b : buffers_) {
            if (at < b.start || at >= b.start + b.size) continue;
            out += b.name;
            if (at != b.start) out += '+' + std::to_string(at - b.start);
            named = true;
            break;
        }
        if (named) continue;
        char address[32];
        std::snprintf(address, sizeof address, "%p", a.pointer);
        out += address;
    }
    return out;
}

std::vector<std::string> recording_host::text() const {
    std::vector<std::string> lines;
    for (const call &c : calls()) lines.push_back(text_of(c));
    return lines;
}

call recording_host::record(const char *name, std::vector<argument> arguments) {
    call made{name, std::move(arguments)};
    {
        const std::lock_guard lock(mutex_);
        calls_.push_back(made);
    }
    if (on_call) on_call(made);
    return made;
}

void recording_host::record_message(trace_message message) {
    const std::lock_guard lock(mutex_);
    messages_.push_back(std::move(message));
}

argument number(uint64_t value) { return {false, value, nullptr, {}}; }

argument pointer(const void *address) { return {true, 0, address, {}}; }

argument image(const void *address, size_t bits) {
    argument out = pointer(address);
    if (address != nullptr) {
        const uint8_t *start = static_cast<const uint8_t *>(address);
        out.bytes.assign(start, start + (bits + 7) / 8);
    }
    return out;
}

}  // namespace halden::test

sdk_trace_cb_t g_trace_cb = halden::test::record_trace;

namespace api::impl {

tev_impl_state g_tev_impl_state{};

}  // namespace api::impl
