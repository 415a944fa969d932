#pragma once

// What a terminal shows: colours where they are wanted, columns, how wide a line may be.

#include <string>
#include <string_view>
#include <vector>

namespace halden::tool {

enum class colour : uint8_t { none, title, key, data, dim, good, bad };

// "auto" (a terminal, and NO_COLOR not set), "always" or "never".
void use_colours(std::string_view when);
std::string painted(std::string_view text, colour c);

// Columns of the terminal, or 100 when the output goes elsewhere.
unsigned screen_columns();

// Text broken at blanks, every line behind `indent` blanks.
std::string wrapped(std::string_view text, unsigned indent, unsigned columns);

// Rows of cells under a heading; columns as wide as their widest cell. The last column is not
// filled up.
class columns {
  public:
    // A heading that begins with '>' makes a column that is set to the right.
    explicit columns(std::vector<std::string> headings);
    void row(std::vector<std::string> cells, colour c = colour::none);
    std::string text(unsigned indent = 0) const;

  private:
    struct line {
        std::vector<std::string> cells;
        colour c;
    };
    std::vector<bool> right_;
    std::vector<line> lines_;
};

}  // namespace halden::tool
