#pragma once

// Index records: what p4pd_index_to_hwindex_map turns into a row, most significant field first. A
// field is read at its natural width and cut to its bits.

#include "p4gen/halden/pipeline/model.h"

namespace halden::pipeline {

inline constexpr field index_3[] = {{"index", 3}};
inline constexpr field index_4[] = {{"index", 4}};
inline constexpr field index_11[] = {{"index", 11}};
inline constexpr field index_12[] = {{"index", 12}};
inline constexpr field index_13[] = {{"index", 13}};
inline constexpr field index_16[] = {{"index", 16}};
inline constexpr field index_22[] = {{"index", 22}};
inline constexpr field index_24[] = {{"index", 24}};
// Two fields side by side: the first stands above the second.
inline constexpr field mirror_rewrite_index[] = {{"index_high", 3}, {"index_low", 1}};
inline constexpr field mirror_rewrite_l3_index[] = {{"index_high", 3}, {"index_low", 10}};

}  // namespace halden::pipeline
