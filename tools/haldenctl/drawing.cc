#include "tools/haldenctl/drawing.h"

#include <algorithm>

#include "tools/haldenctl/screen.h"

namespace halden::tool {

namespace {

using pipeline::run;

constexpr unsigned line_bits = 32;
constexpr unsigned margin = 7;  // "1234 |": the number of the line's first bit

struct cell {
    const run *of;
    unsigned first, bits;
    bool goes_on;
};

std::vector<std::vector<cell>> lines_of(const std::vector<run> &runs) {
    std::vector<std::vector<cell>> lines;
    for (const run &r : runs) {
        unsigned at = r.first;
        const unsigned end = r.first + r.bits;
        while (at < end) {
            const unsigned line_end = (at / line_bits + 1) * line_bits;
            const unsigned stop = std::min(end, line_end);
            if (lines.size() <= at / line_bits) lines.resize(at / line_bits + 1);
            lines[at / line_bits].push_back({&r, at, stop - at, stop < end});
            at = stop;
        }
    }
    return lines;
}

std::string letters(size_t n) {
    std::string out(1, static_cast<char>('a' + static_cast<char>(n % 26)));
    if (n >= 26) out += std::to_string(n / 26);
    return out;
}

// "src_lport", or with the bits of it that this run holds: "vlan_id 11:8".
std::string label_of(const run &r) {
    std::string out(r.field);
    if (r.bits == r.field_bits) return out;
    const unsigned high = r.low_bit + r.bits - 1;
    out += " " + std::to_string(high);
    if (r.bits > 1) out += ":" + std::to_string(r.low_bit);
    return out;
}

std::string centred(const std::string &text, unsigned width) {
    const size_t left = (width - text.size()) / 2;
    return std::string(left, ' ') + text + std::string(width - text.size() - left, ' ');
}

class legend {
  public:
    std::string letter_of(const run *r) {
        for (size_t i = 0; i < shown_.size(); ++i)
            if (shown_[i] == r) return letters(i);
        shown_.push_back(r);
        return letters(shown_.size() - 1);
    }
    std::string text(unsigned indent) const {
        std::string out;
        for (size_t i = 0; i < shown_.size(); ++i)
            out += std::string(indent, ' ') + letters(i) + "  " + label_of(*shown_[i]) + "\n";
        return out;
    }

  private:
    std::vector<const run *> shown_;
};

std::string border(const std::vector<cell> &above, const std::vector<cell> &below) {
    std::string out(2 * line_bits + 1, ' ');
    const auto rule = [&](const std::vector<cell> &cells) {
        for (const cell &c : cells) {
            const unsigned from = 2 * (c.first % line_bits), to = from + 2 * c.bits;
            for (unsigned i = from; i <= to; ++i)
                if (out[i] == ' ') out[i] = '-';
            out[from] = out[to] = '+';
        }
    };
    rule(above);
    rule(below);
    out.erase(out.find_last_not_of(' ') + 1);
    return out;
}

// The bits of one line, each above its place.
std::string bits_of(const std::vector<cell> &cells, const std::vector<uint8_t> &image) {
    std::string out;
    for (const cell &c : cells) {
        out.resize(2 * (c.first % line_bits) + 1, ' ');
        for (unsigned bit = c.first; bit < c.first + c.bits; ++bit) {
            const bool one = bit / 8 < image.size() && (image[bit / 8] >> (7 - bit % 8) & 1) != 0;
            out += one ? "1" : "0";
            if (bit + 1 < c.first + c.bits) out += ' ';
        }
    }
    return out;
}

colour colour_of(const run &r) {
    if (r.number == run::none) return colour::dim;
    return r.of_key ? colour::key : colour::data;
}

}  // namespace

std::string drawing(const std::vector<run> &runs, unsigned indent,
                    const std::vector<uint8_t> *image) {
    const std::string left(indent, ' '), blank(margin, ' ');
    std::string heading(2 * line_bits + 4, ' ');
    for (unsigned bit = 0; bit < line_bits; bit += 8) {
        const std::string number = std::to_string(bit);
        heading.replace(2 * bit + 1, number.size(), number);
    }
    heading.erase(heading.find_last_not_of(' ') + 1);

    std::string out = left + blank + painted(heading, colour::dim) + "\n";
    legend names;
    const auto lines = lines_of(runs);
    const std::vector<cell> nothing;
    for (size_t l = 0; l < lines.size(); ++l) {
        out += left + blank + border(l == 0 ? nothing : lines[l - 1], lines[l]) + "\n";
        if (image != nullptr) out += left + blank + bits_of(lines[l], *image) + "\n";
        std::string number = std::to_string(l * line_bits);
        number.insert(0, margin - 1 - number.size(), ' ');
        std::string shown = left + painted(number, colour::dim) + " |";
        unsigned at = static_cast<unsigned>(l) * line_bits;
        for (const cell &c : lines[l]) {
            if (c.first > at) shown += std::string(2 * (c.first - at) - 1, ' ') + "|";
            const unsigned width = 2 * c.bits - 1;
            std::string label = label_of(*c.of);
            if (label.size() > width) label = names.letter_of(c.of);
            if (label.size() > width) label = label.substr(0, width);
            shown += painted(centred(label, width), colour_of(*c.of));
            shown += c.goes_on ? ">" : "|";
            at = c.first + c.bits;
        }
        out += shown + "\n";
    }
    if (!lines.empty()) out += left + blank + border(lines.back(), nothing) + "\n";
    return out + names.text(indent + margin);
}

}  // namespace halden::tool
