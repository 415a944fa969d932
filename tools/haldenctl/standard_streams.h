#pragma once

// Descriptors 0 to 2, made sure of before anything is opened. A process that is started with one of
// them closed would get that number for the next file it opens, and would print into it: into a
// memory of the adapter, say. A closed one is filled with a file on which its use is an error, so
// that what could not be read or printed is not taken for done.

namespace halden::tool {

// False when a descriptor is closed and cannot be filled.
bool fill_standard_streams() noexcept;

}  // namespace halden::tool
