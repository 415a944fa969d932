/* The records are plain C: this file is compiled as C11. The layout header asserts every size and
 * offset; the functions below let the C++ side see what C sees. */

#include "p4gen/halden/src/gen/records_layout.h"
#include "tests/abi/record_layouts.h"

unsigned c_size_of_flow_key(void) { return (unsigned)sizeof(flow_swkey_t); }
unsigned c_size_of_flow_info(void) { return (unsigned)sizeof(flow_info_actiondata_t); }
unsigned c_offset_of_sip(void) { return (unsigned)offsetof(flow_swkey_t, metadata_flow_key_sip); }

uint32_t c_read_source_address(const void *key) {
    return ((const tunnel_terminate_sa_v4_swkey_t *)key)->ipv4_1_srcAddr;
}
