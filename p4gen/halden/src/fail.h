#pragma once

#include "log/fail.h"

namespace halden {

// The file that the assertions of the p4pd layer name.
inline constexpr char p4pd_source[] = "p4gen/halden/src/p4pd";

}  // namespace halden
