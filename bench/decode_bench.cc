// Decoding one flow_info entry, 32 fields: the library's two decoders beside versions that print
// the same text with one snprintf per field. All four are held to one text before anything is
// measured, and each counts what it takes from the heap.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <random>
#include <string>

#include "benchmark/benchmark.h"
#include "host/adapter.h"
#include "p4gen/halden/pipeline/pipeline.h"
#include "p4gen/halden/src/entry_read.h"
#include "p4pd.h"
#include "tests/support/allocation_count.h"

namespace {

using namespace halden;

constexpr const pipeline::table &table = pipeline::flow_info;
constexpr auto fields = table.actions[0].fields;
static_assert(fields.size() == 32);
constexpr uint32_t row = 12345;

using record = std::array<uint8_t, table.data_bytes>;
constexpr uint16_t text_bytes = 2048;
using text = std::array<char, text_bytes>;

struct entry {
    record data;
    std::array<uint8_t, host::row_bytes> image;
    uint16_t bits;
};

// A random entry and its row as the memory of an adapter holds it.
entry make_entry() {
    entry out = {};
    std::mt19937_64 random(21);
    for (size_t n = 0; n < fields.size(); ++n) {
        const uint64_t value = random() >> (64 - fields[n].bits);
        std::memcpy(&out.data[1u + pipeline::record_offset(fields, n)], &value,
                    pipeline::storage_bytes(fields[n].bits));
    }
    const auto adapter = host::adapter::anonymous();
    const host::scoped_current use(*adapter);
    p4pd_entry_install(table.id, row, nullptr, nullptr, out.data.data());
    adapter->hbm_read(table.id, row, out.image.data(), &out.bits);
    return out;
}

entry &the_entry() {
    static entry made = make_entry();
    return made;
}

// --- One snprintf per field ----------------------------------------------------------------------

// The end of a text in a buffer, and the room behind it.
struct printed {
    char *at;
    int left;

    template <class... Values>
    bool print(const char *format, Values... values) {
        const int length = std::snprintf(at, static_cast<size_t>(left), format, values...);
        at += length < left ? length : 0;
        left -= length;
        return left > 0;
    }
};

unsigned scalar(const uint8_t *field, unsigned bytes) {
    uint32_t value = 0;
    std::memcpy(&value, field, bytes);
    return value;
}

#define EIGHT_BYTES(b) b[0], b[1], b[2], b[3], b[4], b[5], b[6], b[7]

void snprintf_fields(printed &out, const uint8_t *data, const char *scalar_line,
                     const char *array_line) {
    for (size_t at = 1; const pipeline::field &f : fields) {
        const uint8_t *const value = data + at;
        const unsigned bytes = pipeline::storage_bytes(f.bits);
        // The names are literals, so they end with a zero; the one array has eight bytes.
        if (pipeline::is_array(f.bits)
                ? !out.print(array_line, f.name.data(), EIGHT_BYTES(value))
                : !out.print(scalar_line, f.name.data(), scalar(value, bytes)))
            return;
        at += bytes;
    }
}

void snprintf_records(const uint8_t *data, char *buffer, uint16_t size) {
    std::memset(buffer, 0, size);
    printed out = {buffer, size};
    if (!out.print("%s", "Table Entry Fields\n") ||
        !out.print("Table : %s, Index : 0x%x/%u\n", "P4TBL_ID_FLOW_INFO", row, row) ||
        !out.print("Action : %s\n", "FLOW_INFO_FLOW_INFO_A_ID"))
        return;
    snprintf_fields(out, data, "%s : 0x%x\n", "%s : 0x%02x%02x%02x%02x%02x%02x%02x%02x\n");
}

void snprintf_entry(const uint8_t *image, uint16_t bits, char *buffer, uint16_t size) {
    std::memset(buffer, 0, size);
    printed out = {buffer, size};
    uint8_t copy[p4pd::row_buffer_bytes] = {};
    std::memcpy(copy, image, (bits + 7u) / 8);
    record data = {};
    p4pd::unpack_row<table>(copy, data.data());
    if (!out.print("%s",
                   "!!!! Decode HW table entry into (Table Key + Actiondata)/Actiondata!!!! \n") ||
        !out.print("Table: %s, Index 0x%x/%u\n", "P4TBL_ID_FLOW_INFO", row, row) ||
        !out.print("Action: %s\n", "FLOW_INFO_FLOW_INFO_A_ID"))
        return;
    snprintf_fields(out, data.data(), "%s: 0x%x\n",
                    "%s: \n  0x%x :  0x%x :  0x%x :  0x%x :  0x%x :  0x%x :  0x%x :  0x%x :\n");
}

// --- What is measured ----------------------------------------------------------------------------

void library_records_into(text &out) {
    p4pd_table_ds_decoded_string_get(table.id, row, nullptr, nullptr, the_entry().data.data(),
                                     out.data(), text_bytes);
}
void snprintf_records_into(text &out) {
    snprintf_records(the_entry().data.data(), out.data(), text_bytes);
}
void library_entry_into(text &out) {
    p4pd_table_entry_decoded_string_get(table.id, row, the_entry().image.data(), nullptr,
                                        the_entry().bits, out.data(), text_bytes);
}
void snprintf_entry_into(text &out) {
    snprintf_entry(the_entry().image.data(), the_entry().bits, out.data(), text_bytes);
}

template <auto Decode>
void decode(benchmark::State &state) {
    text out = {};
    Decode(out);
    const uint64_t before = test::allocation_count();
    for (auto _ : state) {
        Decode(out);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    const uint64_t allocations = test::allocation_count() - before;
    state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(allocations), benchmark::Counter::kAvgIterations);
}

BENCHMARK(decode<library_records_into>)->Name("records/library");
BENCHMARK(decode<snprintf_records_into>)->Name("records/snprintf");
BENCHMARK(decode<library_entry_into>)->Name("entry/library");
BENCHMARK(decode<snprintf_entry_into>)->Name("entry/snprintf");

// A comparison of different texts would say nothing.
template <auto Left, auto Right>
bool same_text(const char *what) {
    static text left, right;
    left.fill('x');
    right.fill('y');
    Left(left);
    Right(right);
    if (left == right && std::strstr(left.data(), "\nmirror_egress") != nullptr) return true;
    std::cerr << what << ": the texts differ or lack the last field:\n"
              << left.data() << right.data();
    return false;
}

// Zeros of a count that stands still would say nothing either.
bool counts_allocations() {
    const uint64_t before = test::allocation_count();
    void *volatile block = std::malloc(1);
    std::free(block);
    if (test::allocation_count() == before + 1) return true;
    std::cerr << "allocations are not counted\n";
    return false;
}

}  // namespace

int main(int argc, char **argv) {
    if (!counts_allocations() ||
        !same_text<library_records_into, snprintf_records_into>("records") ||
        !same_text<library_entry_into, snprintf_entry_into>("entry"))
        return EXIT_FAILURE;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
