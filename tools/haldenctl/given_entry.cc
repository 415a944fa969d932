#include "tools/haldenctl/given_entry.h"

#include <istream>
#include <nlohmann/json.hpp>
#include <string_view>

#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/naming.h"

namespace halden::tool {

namespace {

using nlohmann::json;
using kind = given_value::kind;

// What a text of the JSON library contains, and what this tool says instead.
struct wording {
    std::string_view theirs;
    const char *ours;
};

constexpr wording reasons[] = {
    {"unexpected end of input", "the text ends here"},
    {"unexpected string literal", "a text in quotes was read"},
    {"unexpected number literal", "a number was read"},
    {"unexpected true literal", "true was read"},
    {"unexpected false literal", "false was read"},
    {"unexpected null literal", "null was read"},
    {"unexpected '['", "'[' was read"},
    {"unexpected ']'", "']' was read"},
    {"unexpected '{'", "'{' was read"},
    {"unexpected '}'", "'}' was read"},
    {"unexpected ':'", "':' was read"},
    {"unexpected ','", "',' was read"},
    {"missing closing quote", "the text ends inside quotes"},
    {"ill-formed UTF-8", "a byte that is no UTF-8 stands inside quotes"},
    {"must be escaped",
     "a control character stands inside quotes; it is written as \\n or \\u000a"},
    {"'\\u' must be followed", "\\u is followed by something else than four hex digits"},
    {"surrogate", "half of a pair of \\ud800 to \\udfff stands alone"},
    {"after backslash",
     "no such escape is known; allowed: \\\" \\\\ \\/ \\b \\f \\n \\r \\t and \\u with four "
     "digits"},
    {"invalid number", "a number ends without a digit"},
    {"invalid BOM", "a byte order mark is cut short"},
};

constexpr wording expectations[] = {
    {"; expected string literal", "; allowed: a name in quotes"},
    {"; expected end of input", "; allowed: the end of the text"},
    {"; expected '[', '{', or a literal", "; allowed: a value"},
    {"; expected ']'", "; allowed: ',' or ']'"},
    {"; expected '}'", "; allowed: ',' or '}'"},
    {"; expected ':'", "; allowed: ':'"},
};

template <size_t N>
const char *ours(const wording (&words)[N], std::string_view theirs) {
    for (const wording &w : words)
        if (theirs.find(w.theirs) != theirs.npos) return w.ours;
    return nullptr;
}

class entry_reader final : public nlohmann::json_sax<json> {
  public:
    using each_entry = std::function<void(size_t, const given_value &)>;
    entry_reader(text_input &text, const each_entry &each) : text_(text), each_(each) {
        text_.allow(file_limits::bytes_of_entry);
    }

    bool null() override { return scalar({kind::null, "null", {}}); }
    bool boolean(bool value) override {
        return scalar({kind::boolean, value ? "true" : "false", {}});
    }
    // 0 arrives here when "-0" was written.
    bool number_integer(number_integer_t value) override {
        return scalar({kind::number, value == 0 ? "-0" : std::to_string(value), {}});
    }
    bool number_unsigned(number_unsigned_t value) override {
        return scalar({kind::number, std::to_string(value), {}});
    }
    // Whole numbers too, beyond 64 bits.
    bool number_float(number_float_t, const std::string &written) override {
        return scalar({kind::number, written, {}});
    }
    bool string(std::string &text) override { return scalar({kind::text, std::move(text), {}}); }
    bool binary(json::binary_t &) override { return false; }  // JSON has none

    bool start_object(size_t) override { return open({kind::object, {}, {}}); }
    bool start_array(size_t) override { return open({kind::list, {}, {}}); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(std::string &name) override;
    bool parse_error(size_t, const std::string &read,
                     const nlohmann::detail::exception &error) override;

    void finish() const {
        if (!entries_given_) throw failure("no \"entries\" are given");
    }

  private:
    // What the innermost open object or list is.
    enum class level : uint8_t { nothing, file, entries, entry, fields, stepped_over };
    level here() const { return open_.empty() ? level::nothing : open_.back(); }

    level taken(given_value value);
    bool scalar(given_value value);
    bool open(given_value value);
    bool close();
    void entry_ended();

    text_input &text_;
    const each_entry &each_;
    std::vector<level> open_;
    bool entries_given_ = false, comment_given_ = false;
    std::string name_;  // of the value that comes
    size_t number_ = 0;
    given_value entry_;
    size_t members_ = 0;  // of the entry
};

void refuse_twice(const std::string &name) {
    throw failure("the member '" + quotable(name) + "' is given twice");
}

std::string entry_called(size_t number) { return "entry " + std::to_string(number); }

bool entry_reader::key(std::string &name) {
    name_ = std::move(name);
    if (here() == level::file) {
        if (name_ != "entries" && name_ != "comment")
            throw failure(unknown("member", name_, {"entries", "comment"}));
        bool &given = name_ == "entries" ? entries_given_ : comment_given_;
        if (given) refuse_twice(name_);
        given = true;
    } else if (here() == level::entry || here() == level::fields) {
        try {
            if (++members_ > file_limits::members_of_entry)
                throw failure("more than " + std::to_string(file_limits::members_of_entry) +
                              " members are given; allowed: up to that, those of its objects "
                              "included");
            given_value &object = here() == level::entry ? entry_ : entry_.members.back().value;
            for (const given_member &other : object.members)
                if (other.name == name_) refuse_twice(name_);
        } catch (const failure &error) {
            throw error.inside(entry_called(number_));
        }
    }
    return true;
}

// Puts a value where it belongs, and answers what it is when it is an object or a list.
entry_reader::level entry_reader::taken(given_value value) {
    const bool object = value.is(kind::object);
    switch (here()) {
        case level::nothing:
            entries_given_ = value.is(kind::list);
            if (!object && !entries_given_)
                throw failure(value.shown() + " was given; allowed: {\"entries\": [ ... ]}");
            return object ? level::file : level::entries;
        case level::file:
            if (name_ == "comment") return level::stepped_over;
            if (!value.is(kind::list))
                throw failure("entries: " + value.shown() + " was given; allowed: a list");
            return level::entries;
        case level::entries:
            if (++number_ > file_limits::entries)
                throw failure(entry_called(number_) + ": a file has up to " +
                              std::to_string(file_limits::entries) +
                              " entries; allowed: several files");
            entry_ = std::move(value);
            members_ = 0;
            return object ? level::entry : level::stepped_over;
        case level::entry: {
            const bool fields = object && name_ != "comment";
            entry_.members.push_back({std::move(name_), std::move(value)});
            return fields ? level::fields : level::stepped_over;
        }
        case level::fields:
            entry_.members.back().value.members.push_back({std::move(name_), std::move(value)});
            return level::stepped_over;
        case level::stepped_over:
            break;
    }
    return level::stepped_over;
}

void entry_reader::entry_ended() {
    each_(number_, entry_);
    text_.allow(file_limits::bytes_of_entry);
}

bool entry_reader::scalar(given_value value) {
    taken(std::move(value));
    if (here() == level::entries) entry_ended();
    return true;
}

bool entry_reader::open(given_value value) {
    if (open_.size() == file_limits::levels)
        throw failure("lists and objects stand in one another more than " +
                      std::to_string(file_limits::levels) +
                      " deep; allowed: the levels of entries");
    open_.push_back(taken(std::move(value)));
    return true;
}

bool entry_reader::close() {
    open_.pop_back();
    if (here() == level::entries) entry_ended();
    return true;
}

// Only this tool's own words leave: the library's quote what was read, raw and whole. It says "...
// - REASON; last read: 'TEXT'; expected SIGN", and the reason is looked for in front of the text.
bool entry_reader::parse_error(size_t, const std::string &read,
                               const nlohmann::detail::exception &error) {
    const std::string_view theirs = error.what();
    const std::string_view reason = theirs.substr(0, theirs.find("; last read: "));
    constexpr int number_overflow = 406;
    std::string text = text_.place() + ": ";
    if (error.id == number_overflow)
        text += "the number " + quotable(read) + " has " + std::to_string(read.size()) +
                " characters and is beyond any field; allowed: up to 128 bits";
    else if (const char *known = ours(reasons, reason))
        text += known;
    else
        text += text_.last_read() + " was read";
    // Inside quotes and numbers its expectation is of what the whole of them is there for.
    if (reason.find("invalid literal") != reason.npos ||
        reason.find("- unexpected ") != reason.npos) {
        const size_t at = theirs.rfind("; expected ");
        const char *expected = at == theirs.npos ? nullptr : ours(expectations, theirs.substr(at));
        text += expected != nullptr ? expected : "; allowed: a value";
    }
    throw failure(text);
}

}  // namespace

bool given_value::is_whole_number() const {
    return is(kind::number) && text.find_first_not_of("0123456789") == text.npos;
}

std::string given_value::shown() const {
    switch (what) {
        case kind::list:
            return "a list";
        case kind::object:
            return "an object";
        case kind::text:
            return '"' + quotable(text) + '"';
        default:
            return quotable(text);
    }
}

void read_given_entries(text_input &text,
                        const std::function<void(size_t number, const given_value &entry)> &each) {
    entry_reader reader(text, each);
    std::istream in(&text);
    json::sax_parse(in, &reader);
    reader.finish();
}

}  // namespace halden::tool
