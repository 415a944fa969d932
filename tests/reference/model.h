#pragma once

// A slow second model of the hardware's images: every bit is moved by itself, from tables of
// positions that are written out in this directory (*.def, key_positions.cc). It shares no code and
// no description with the library or with the host's bit routines, so that the three can disagree.
//
// Bit n of an image is bit 7 - n % 8 of its byte n / 8. Bit n of a record field is bit n % 8 of its
// byte n / 8.

#include <cstdint>
#include <span>
#include <vector>

namespace halden::reference {

using bytes = std::vector<uint8_t>;

enum class kind { flow, hash, overflow, tcam, index_sram, index_hbm, keyless };

struct table {
    uint32_t id;
    const char *name;
    reference::kind kind;
    uint32_t key_bytes;   // of the key record
    uint32_t data_bytes;  // of the action-data record
    uint32_t actions;
    uint32_t key_bits;    // what hardware compares
    uint32_t tcam_width;  // 0 without a TCAM
    uint32_t data_bits;   // packed, without a program counter

    bool has_key() const { return id <= 15; }
    bool has_tcam() const { return kind == kind::overflow || kind == kind::tcam; }
    // The action data stands in HBM; otherwise in SRAM.
    bool in_hbm() const { return kind == kind::flow || kind == kind::index_hbm; }
    // An action-data mask is taken; other kinds refuse it.
    bool takes_data_mask() const { return id >= 16; }
};

std::span<const table> tables();  // in id order
const table &table_of(uint32_t id);

// What is known of each key record, some of which are the key of two tables.
template <class T>
struct by_key_record {
    std::span<const T> flow, vlan_mapping, tunnel_terminate_sa_v4, tunnel_terminate_sa_v6,
        registered_mac, tunnel_terminate_v4, tunnel_terminate_v6, flow_key, checksum;

    // Nothing for tables without a key.
    std::span<const T> of(uint32_t id) const {
        const std::span<const T> from_id_1[] = {
            flow,
            flow,
            vlan_mapping,
            tunnel_terminate_sa_v4,
            tunnel_terminate_sa_v6,
            registered_mac,
            vlan_mapping,
            tunnel_terminate_v4,
            tunnel_terminate_v6,
            tunnel_terminate_sa_v4,
            tunnel_terminate_sa_v6,
            flow_key,
            flow_key,
            registered_mac,
            checksum,
        };
        return id - 1 < std::size(from_id_1) ? from_id_1[id - 1] : std::span<const T>();
    }
};

// A run of record bytes, from `last_byte` downwards, of each of which `width` bits from `top_bit`
// downwards stand one after another in the key image from `position` on.
struct key_run {
    uint32_t last_byte;
    uint32_t count;
    uint32_t top_bit;
    uint32_t width;
    uint32_t position;
};
std::span<const key_run> key_positions(uint32_t id);

struct image {
    bytes data;
    uint32_t bits;
};

inline constexpr uint8_t no_pc = 0xff;

void put_bit(bytes &image, uint32_t bit, bool value);
bool image_bit(const bytes &image, uint32_t bit);
bool record_bit(const bytes &record, uint32_t byte, uint32_t bit);

// Key images of `size` bytes. The mask record is not looked at for tables without a TCAM, and their
// mask image stays zero.
struct key_images {
    bytes key;
    bytes mask;
};
key_images build_key(uint32_t id, const bytes &key, const bytes &mask, uint32_t size);

// The action's data from bit 0 (the flow tables have no such image); zero for an action without.
bytes packed_data(uint32_t id, const bytes &record);
// For the flow tables: the data before the key and behind it.
struct split_data {
    bytes before;  // 32 bits
    bytes after;   // 261 bits
};
split_data packed_flow_data(uint32_t id, const bytes &record);

// The entry of the data memory, before its bytes are reversed.
image entry(uint32_t id, uint8_t pc, const bytes &key_image, const bytes &record);

// SRAM and TCAM hold an image's bytes in reverse, in whole 16-bit words.
bytes as_stored(const bytes &image, uint32_t bits);

}  // namespace halden::reference
