#pragma once

// CRC-32 of the flow table: polynomial 0x04C11DB7, most significant bit first, initial value 0, no
// final inversion. Over the ASCII digits 1 to 9 it gives 0x89A1897F.
//
// `pack_key` makes a flow entry's hardware key image and its CRC in one pass. Because the image is
// the body with its bytes reversed, the CRC of the image is the remainder of the body itself, taken
// as one little-endian polynomial: nothing has to be swapped before it is multiplied.

#include <cstddef>
#include <cstdint>

namespace flow_crc {

struct routines {
    // CRC of `bytes` bytes in address order.
    uint32_t (*crc)(const uint8_t *data, size_t bytes);
    // Writes the 128-byte hardware image of the key of `body` (data, hints and valid bit zero) to
    // `image` and returns the image's CRC. The two buffers do not overlap.
    uint32_t (*pack_key)(uint8_t *image, const uint8_t *body);
    const char *name;
};

extern const routines portable;

// Carry-less multiplication (PCLMULQDQ, PMULL); null where the processor has none.
const routines *accelerated();

// The accelerated routines where there are any, else the portable ones.
const routines &best();

}  // namespace flow_crc
