#pragma once

// What the host tool writes. Each function returns one whole file; the files are checked in, and a
// test compares them with a fresh emission.

#include <string>
#include <string_view>

#include "p4gen/halden/pipeline/names.h"
#include "p4gen/halden/pipeline/pipeline.h"

namespace halden::emit {

// The comment every emitted file opens with.
std::string banner(std::string_view what);

// include/p4pd_records.h
std::string records_header();
// p4gen/halden/src/gen/records_layout.h: sizes and offsets as static assertions
std::string records_layout();
// p4gen/halden/src/gen/entry_writers.{h,cc}
std::string entry_writers_header();
std::string entry_writers_source();
// include/tev_tbl.h and p4gen/halden/src/gen/tev_tbl.cc
std::string tev_tbl_header();
std::string tev_tbl_source();

// docs/tables/<table>.md and docs/tables/README.md
std::string reference_page(const pipeline::table &t);
std::string reference_index();

// Text helpers of the emitters.
std::string c_type(uint16_t bits);                         // "uint16_t"
std::string member(std::string_view name, uint16_t bits);  // "uint8_t mac[6]"

}  // namespace halden::emit
