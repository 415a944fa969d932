#pragma once

// A host that programs nothing: it defines every name the library imports (but the table engines,
// see recording_engines.cc), keeps each call with its arguments, in order, and answers what a test
// told it to answer.
//
//     recording_host &host = recording_host::get();
//     host.reset();
//     host.on_action_pc = [](uint32_t, uint8_t action) { return uint8_t(0x40 + action); };
//     host.name_buffer("record", record.data(), record.size());
//     p4pd_entry_write_with_datamask(...);
//     EXPECT_THAT(host.text(), ElementsAre("asicpd_get_action_pc 37 0", ...));
//
// A test program compiles recording_host.cc and recording_engines.cc into itself and links the
// library alone. The bit routines copy nothing. They read and write back the bytes they would
// touch, so that a sanitizer sees a buffer that is too short.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "sdk/p4pd_global.h"
#include "sdk/table/types.h"

namespace halden::test {

struct argument {
    bool is_pointer = false;
    uint64_t number = 0;  // the value, for what is no pointer
    const void *pointer = nullptr;
    std::vector<uint8_t> bytes;  // what stood there when the call was made; see each routine
};

struct call {
    std::string name;
    std::vector<argument> arguments;
};

// One trace message: how it was sent and how it reads.
struct trace_message {
    int level;
    int module;
    std::string format;
    std::string path;
    unsigned line;
    std::string text;
};

// What an ASIC read answers.
struct read_answer {
    std::vector<uint8_t> entry;  // key image, for a TCAM row
    std::vector<uint8_t> mask;   // TCAM rows only
    uint16_t bits = 0;           // the out length; 0 is an empty row
    int result = 0;
};

class recording_host {
  public:
    static recording_host &get();

    // Forgets calls, messages, names and answers.
    void reset();

    std::vector<call> calls() const;
    std::vector<trace_message> messages() const;
    void forget_calls();

    // One line per call: name, then the arguments. A pointer into a named buffer reads as name or
    // name+offset, a null pointer as null, any other pointer as its address.
    std::vector<std::string> text() const;
    std::string text_of(const call &c) const;
    void name_buffer(std::string name, const void *start, size_t size);

    // --- Answers. Unset functions answer what the comment says.
    // -----------------------------------
    std::function<uint8_t(uint32_t tableid, uint8_t action)> on_action_pc;  // 0x20 + action
    std::function<uint8_t(uint32_t tableid, uint8_t pc)> on_action_id;      // pc - 0x20
    // The length of a prepared entry: 8 bits for a program counter, the key and the data.
    std::function<uint16_t(const call &)> on_prepare;
    std::function<read_answer(const char *name, uint32_t tableid, uint32_t index)>
        on_read;  // empty
    std::function<p4pd_error_t(uint32_t tableid, p4pd_table_properties_t *)> on_properties;  // -1
    std::function<p4pd_error_t(uint32_t tableid, void *)> on_global_properties;              // -1
    std::function<p4pd_error_t(const call &)> on_global_entry_read;  // 0, touches nothing
    std::function<p4pd_error_t(const call &, char *buffer, uint16_t size)> on_decode;  // 0, empty
    // Result of an engine call, by its name ("directmap::insert_withid"). Success.
    std::function<sdk_ret_t(const call &)> on_engine;
    uint16_t entry_offset = 0;  // bytes, of the hash prepares
    int asic_result = 0;        // of every ASIC write
    p4pd_error_t global_write_result = 0;
    // Runs before a call answers, with the caller's buffers as they are then.
    std::function<void(const call &)> on_call;

    // --- For the definitions of the imported names.
    // ----------------------------------------------- Keeps the call, runs on_call and returns it.
    call record(const char *name, std::vector<argument> arguments);
    void record_message(trace_message message);

    // True while the calling thread is inside the recording host, whose own allocations are not the
    // library's.
    static bool inside();
    class scope {
      public:
        scope();
        ~scope();
        scope(const scope &) = delete;
        scope &operator=(const scope &) = delete;
    };

  private:
    struct named_buffer {
        std::string name;
        const uint8_t *start;
        size_t size;
    };

    mutable std::mutex mutex_;
    std::vector<call> calls_;
    std::vector<trace_message> messages_;
    std::vector<named_buffer> buffers_;
};

// Arguments of a call: a number, a pointer, or a pointer with the bytes behind it.
argument number(uint64_t value);
argument pointer(const void *address);
argument image(const void *address, size_t bits);

}  // namespace halden::test
