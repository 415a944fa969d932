#pragma once

// The entries of a JSON file as they are written there, one after the other: nothing is kept but
// the entry at hand, so a file may be as long as it likes. What the members mean is
// entry_file.cc's.
//
// The file is {"entries": [ ... ]} or the list alone. An entry is an object of members that are
// values or objects of values; what stands deeper can be nothing but a comment, and is stepped
// over.

#include <functional>
#include <string>
#include <vector>

#include "tools/haldenctl/text_input.h"

namespace halden::tool {

// What a file may hold. They are far from what tables need, and near enough to end a file that
// nobody wrote.
struct file_limits {
    static constexpr size_t entries = size_t{1} << 23;         // the flow tables have 6 M rows
    static constexpr size_t bytes_of_entry = size_t{1} << 20;  // white space and comments included
    static constexpr size_t members_of_entry = 256;            // its objects' included
    static constexpr size_t levels = 64;
};

struct given_member;

struct given_value {
    enum class kind : uint8_t { null, boolean, number, text, list, object };
    kind what = kind::null;
    std::string text;  // of a text its characters; else what was written; empty for lists, objects
    std::vector<given_member> members;  // of an object, in the file's order

    bool is(kind k) const { return what == k; }
    // A number without sign, fraction or exponent, of any length.
    bool is_whole_number() const;
    // As an error shows it: 5, "text", a list.
    std::string shown() const;
};

struct given_member {
    std::string name;
    given_value value;
};

// Calls `each` with the number, from 1, and the value of every entry; it need not be an object. It
// throws failure for what is no such file, with the line and column or the number of the entry.
void read_given_entries(text_input &text,
                        const std::function<void(size_t number, const given_value &entry)> &each);

}  // namespace halden::tool
