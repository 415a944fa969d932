// Files of entries as streams: in linear time, in bounded memory, with an end for what has none.

#include "tools/haldenctl/entry_file.h"

#include <gtest/gtest.h>

#include <ctime>
#include <sstream>

#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/given_entry.h"

namespace halden::tool {
namespace {

using namespace std::string_literals;

// A text, then a piece over and over: without end when nobody stops reading.
class endless : public std::streambuf {
  public:
    endless(std::string front, const std::string &piece) : front_(std::move(front)) {
        while (pieces_.size() < 1000) pieces_ += piece;
        give(front_);
    }
    size_t given() const { return given_; }

  protected:
    int_type underflow() override {
        give(pieces_);
        return traits_type::to_int_type(pieces_[0]);
    }

  private:
    void give(std::string &text) {
        given_ += text.size();
        setg(text.data(), text.data(), text.data() + text.size());
    }
    std::string front_, pieces_;
    size_t given_ = 0;
};

std::string refusal(std::istream &in) {
    try {
        read_entries(in, "f");
    } catch (const failure &error) {
        return error.what();
    }
    return "nothing was refused";
}

std::string refusal_of(const std::string &text) {
    std::istringstream in(text);
    return refusal(in);
}

std::vector<file_entry> entries_of(const std::string &text) {
    std::istringstream in(text);
    return read_entries(in, "f");
}

std::string entries(size_t count) {
    std::string out = "{\"entries\": [\n";
    for (size_t n = 0; n < count; ++n)
        out += (n == 0 ? "" : ",\n") + R"({"table": "lif_mapping", "index": )"s +
               std::to_string(n % 1024) + R"(, "data": {"src_lport": )" + std::to_string(n % 2048) +
               "}}";
    return out + "\n]}\n";
}

double seconds_of(const std::string &text) {
    const std::clock_t start = std::clock();
    entries_of(text);
    return double(std::clock() - start) / CLOCKS_PER_SEC;
}

// Eight times the entries take about eight times as long; what looks at all of them for each takes
// 64 times as long.
TEST(EntryFile, IsReadInLinearTime) {
    const std::string few = entries(4000), many = entries(32000);
    seconds_of(few);
    EXPECT_LT(seconds_of(many), 24 * seconds_of(few));
    EXPECT_EQ(entries_of(many).size(), 32000u);
}

TEST(EntryFile, RefusesTooManyMembersEarly) {
    endless members(R"({"entries": [{"table": "lif_mapping", "data": {)", R"("src_lport": 1, )");
    std::string some;
    for (int n = 0; n < 500; ++n) some += "\"m" + std::to_string(n) + "\": 1, ";
    endless different(R"([{"table": "lif_mapping", "data": {)" + some, some);
    std::istream in(&different);
    EXPECT_EQ(refusal(in),
              "f: entry 1: more than 256 members are given; allowed: up to that, those of its "
              "objects included");
    EXPECT_LT(different.given(), 200000u) << "bytes read";
    std::istream again(&members);
    EXPECT_EQ(refusal(again), "f: entry 1: the member 'src_lport' is given twice");
}

TEST(EntryFile, TakesAsManyMembersAsAnEntryMayHave) {
    // Members are counted for each entry: table, comment, data and those of data.
    std::string more;
    for (int n = 0; n < 250; ++n) more += ", \"m" + std::to_string(n) + "\": 1";
    EXPECT_EQ(refusal_of(R"([{"table": "l2seg", "index": 1}, {"table": "l2seg", "index": 2, )"
                         R"("comment": 1, "data": {"comment": [])" +
                         more + "}}]")
                  .substr(0, 40),
              "f: entry 2 (l2seg): no data field 'm0'; ");
    more += R"(, "x": 1, "y": 2)";
    EXPECT_EQ(refusal_of(R"([{"table": "l2seg", "index": 1}, {"table": "l2seg", "index": 2, )"
                         R"("comment": 1, "data": {"comment": [])" +
                         more + "}}]"),
              "f: entry 2: more than 256 members are given; allowed: up to that, those of its "
              "objects included");
}

TEST(EntryFile, EndsInputThatHasNoEnd) {
    constexpr size_t soon = 1 << 21;  // bytes
    struct {
        const char *front, *piece, *words;
    } const cases[] = {
        {"", " ", "f: line 1, column 1048576: "},
        {"[", "\n", "f: line 1048576, column 1: "},
        {"[\"", "x", "f: line 1, column 1048576: "},
        {"[{\"table\": 1", "2", "f: line 1, column 1048576: "},
        {"[{\"comment\": [", "0,", "f: line 1, column 1048576: "},
        {"{\"comment\": [", "{},", "f: line 1, column 1048576: "},
    };
    for (const auto &c : cases) {
        endless source(c.front, c.piece);
        std::istream in(&source);
        EXPECT_EQ(refusal(in), c.words +
                                   "1048576 bytes were read and no entry has ended; allowed: up to "
                                   "1048576 bytes for each"s);
        EXPECT_LT(source.given(), soon);
    }
    endless deep("", "[");
    std::istream in(&deep);
    EXPECT_EQ(refusal(in),
              "f: lists and objects stand in one another more than 64 deep; allowed: the levels of "
              "entries");
    EXPECT_LT(deep.given(), soon);
    endless zeros("", "\0"s);
    std::istream zero(&zeros);
    EXPECT_EQ(refusal(zero), "f: line 1: a NUL byte stands there; allowed: text");
    EXPECT_LT(zeros.given(), soon);
}

// The limit is exact, and starts anew behind every entry.
TEST(EntryFile, TakesEntriesOfUpToAMebibyte) {
    const std::string front = R"({"table": "l2seg", "index": 1, "comment": ")", end = "\"}";
    const std::string largest =
        front + std::string((1 << 20) - front.size() - end.size(), 'x') + end;
    const std::string next =
        front + std::string((1 << 20) - 1 - front.size() - end.size(), 'x') + end;
    EXPECT_EQ(entries_of("[" + next + "," + next + "," + next + "]").size(), 3u);
    EXPECT_EQ(refusal_of("[" + largest + "]"),
              "f: line 1, column 1048576: 1048576 bytes were read and no entry has ended; allowed: "
              "up to 1048576 bytes for each");
    EXPECT_EQ(refusal_of("[" + next + "," + largest + "]"),
              "f: line 1, column 2097152: 1048576 bytes were read and no entry has ended; allowed: "
              "up to 1048576 bytes for each");
}

struct bad_text {
    std::string text, words;
};

// Line and column are those of the character at which the reading ended.
TEST(EntryFile, SaysWhereTheSyntaxIsWrong) {
    const bad_text cases[] = {
        {"", "line 1, column 1: the text ends here; allowed: a value"},
        {"\n\n", "line 3, column 1: the text ends here; allowed: a value"},
        {"[", "line 1, column 2: the text ends here; allowed: a value"},
        {"[{", "line 1, column 3: the text ends here; allowed: a name in quotes"},
        {"[{\"table\"", "line 1, column 10: the text ends here; allowed: ':'"},
        {"[{\"table\":", "line 1, column 11: the text ends here; allowed: a value"},
        {"[{\"table\": \"a", "line 1, column 14: the text ends inside quotes"},
        {"[{\"table\": \"l2seg\", \"index\": 1",
         "line 1, column 31: the text ends here; allowed: "
         "',' or '}'"},
        {"[{\"table\": \"l2seg\", \"index\": 1}",
         "line 1, column 32: the text ends here; allowed: "
         "',' or ']'"},
        {"[\n x]", "line 2, column 2: 'x' was read; allowed: a value"},
        {"[\n tru]", "line 2, column 5: ']' was read; allowed: a value"},
        {"[{\"a\": \"; must be escaped; expected ']'\" x",
         "line 1, column 42: 'x' was read; allowed: ',' or '}'"},
        {"[\"- unexpected ']' invalid BOM\xff\"]",
         "line 1, column 31: a byte that is no UTF-8 stands inside quotes"},
        {"[\xc3\xa9]", "line 1, column 2: byte 0xc3 was read; allowed: a value"},
        {"[{1: 2}]", "line 1, column 4: a number was read; allowed: a name in quotes"},
        {"[{\"a\" 1}]", "line 1, column 8: a number was read; allowed: ':'"},
        {"[{\"a\": }]", "line 1, column 8: '}' was read; allowed: a value"},
        {"[{\"a\": 1,}]", "line 1, column 10: '}' was read; allowed: a name in quotes"},
        {"[{\"a\": 1]", "line 1, column 9: ']' was read; allowed: ',' or '}'"},
        {"[]]", "line 1, column 3: ']' was read; allowed: the end of the text"},
        {"[]\n[]", "line 2, column 1: '[' was read; allowed: the end of the text"},
        {"[] \"a\"", "line 1, column 6: a text in quotes was read; allowed: the end of the text"},
        {"[{\"\xc3\xa9\xff\": 1}]",
         "line 1, column 5: a byte that is no UTF-8 stands inside quotes"},
        {"[{\"a\": \"\xed\xa0\x80\"}]",
         "line 1, column 9: a byte that is no UTF-8 stands inside quotes"},
        {"[\"a\nb\"]",
         "line 2, column 1: a control character stands inside quotes; it is written as \\n or "
         "\\u000a"},
        {"[\"\\x\"]",
         "line 1, column 4: no such escape is known; allowed: \\\" \\\\ \\/ \\b \\f \\n \\r \\t "
         "and \\u with four digits"},
        {"[\"\\u12g4\"]",
         "line 1, column 7: \\u is followed by something else than four hex digits"},
        {"[\"\\ud800x\"]", "line 1, column 9: half of a pair of \\ud800 to \\udfff stands alone"},
        {"[\"\\udc00\"]", "line 1, column 8: half of a pair of \\ud800 to \\udfff stands alone"},
        {"[-]", "line 1, column 3: a number ends without a digit"},
        {"[1.]", "line 1, column 4: a number ends without a digit"},
        {"[1e]", "line 1, column 4: a number ends without a digit"},
        {"[1e+]", "line 1, column 5: a number ends without a digit"},
        {"\xef\xbb[]", "line 1, column 2: a byte order mark is cut short"},
        {"[]\n\0"s, "line 2: a NUL byte stands there; allowed: text"},
        {"[\"a\0b\"]"s, "line 1: a NUL byte stands there; allowed: text"},
        {"[1e400]",
         "line 1, column 7: the number 1e400 has 5 characters and is beyond any field; allowed: up "
         "to 128 bits"},
    };
    for (const bad_text &c : cases) EXPECT_EQ(refusal_of(c.text), "f: " + c.words) << c.text;
}

TEST(EntryFile, QuotesNumbersAsTheyWereWritten) {
    const auto index = [](const std::string &written) {
        return refusal_of(R"([{"table": "lif_mapping", "index": )" + written + "}]");
    };
    const auto words = [](const std::string &quoted) {
        return "f: entry 1 (lif_mapping): index: '" + quoted + "' is no row; allowed: 0 to 1023";
    };
    for (const char *written :
         {"-1", "-0", "1e3", "1.0", "1E+2", "0.0", "100000000000000000000000000",
          "-100000000000000000000000000", "4294967296", "true", "null"})
        EXPECT_EQ(index(written), words(written));
    const std::string huge(300, '7');
    EXPECT_EQ(index(huge), words(std::string(60, '7') + "..."));
    EXPECT_EQ(index(std::string(100000, '7')),
              "f: line 1, column 100036: the number " + std::string(60, '7') +
                  "... has 100000 characters and is beyond any field; allowed: up to 128 bits");
    EXPECT_EQ(index("[1]"),
              "f: entry 1 (lif_mapping): index: a list was given; allowed: a row, or an object of "
              "index fields");
}

TEST(EntryFile, RefusesWhatIsNoValueOfAField) {
    const auto field = [](const std::string &written) {
        return refusal_of(R"([{"table": "lif_mapping", "index": 1, "data": {"src_lport": )" +
                          written + "}}]");
    };
    const std::string where = "f: entry 1 (lif_mapping): data.src_lport: ",
                      allowed = "; allowed: 0 to 2047 (0x7ff)";
    for (const char *written : {"-1", "-0", "1.5", "1e3", "1E1", "null"})
        EXPECT_EQ(field(written), where + written + " was given" + allowed);
    EXPECT_EQ(field("[]"), where + "a list was given" + allowed);
    EXPECT_EQ(field("[[[1]]]"), where + "a list was given" + allowed);
    EXPECT_EQ(field("{\"a\": {\"a\": 1, \"a\": 2}}"), where + "an object was given" + allowed);
    EXPECT_EQ(field("true"), where + "'true' is for one-bit fields" + allowed);
    EXPECT_EQ(field("100000000000000000000000000"),
              where + "100000000000000000000000000 does not fit 11 bits" + allowed);
    EXPECT_EQ(field("\"\""), where + "no value was given" + allowed);
}

TEST(EntryFile, TakesNumbersBeyond64Bits) {
    const auto read = entries_of(
        R"([{"table": "nat_rewrite", "index": 0, "data": {"ipsa": 42535295865117307932921825928971026432}}])");
    ASSERT_EQ(read.size(), 1u);
    EXPECT_EQ(to_json(read[0].entry, 0).dump(),
              R"({"table":"nat_rewrite","index":0,"data":{"ipsa":"2000::"}})");
}

TEST(EntryFile, RefusesMembersGivenTwice) {
    EXPECT_EQ(refusal_of(R"({"entries": [], "entries": []})"),
              "f: the member 'entries' is given twice");
    EXPECT_EQ(refusal_of(R"({"comment": 1, "entries": [], "comment": 2})"),
              "f: the member 'comment' is given twice");
    for (const char *twice : {R"({"table": 1, "table": 1})", R"({"\u0074able": 1, "table": 1})"})
        EXPECT_EQ(refusal_of("["s + twice + "]"), "f: entry 1: the member 'table' is given twice");
    EXPECT_EQ(refusal_of(R"([{"table": "l2seg", "index": 1},
                             {"table": "vlan_mapping", "key": {"vlan_id": 1, "vlan_id": 1}}])"),
              "f: entry 2: the member 'vlan_id' is given twice");
    EXPECT_EQ(refusal_of(R"([{"comment": 1, "comment": 1}])"),
              "f: entry 1: the member 'comment' is given twice");
}

TEST(EntryFile, RefusesOtherShapes) {
    const bad_text cases[] = {
        {"5", "5 was given; allowed: {\"entries\": [ ... ]}"},
        {"\"a\"", "\"a\" was given; allowed: {\"entries\": [ ... ]}"},
        {"null", "null was given; allowed: {\"entries\": [ ... ]}"},
        {"{}", "no \"entries\" are given"},
        {R"({"comment": {"entries": []}})", "no \"entries\" are given"},
        {R"({"entries": {}})", "entries: an object was given; allowed: a list"},
        {R"({"entries": "x"})", "entries: \"x\" was given; allowed: a list"},
        {R"({"entry": []})", "no member 'entry'; allowed: entries, comment"},
        {"[5]", "entry 1: 5 was given; allowed: an object with a \"table\""},
        {"[[]]", "entry 1: a list was given; allowed: an object with a \"table\""},
        {"[{}]", "entry 1: no \"table\" is given"},
        {R"([{"table": []}])", "entry 1: table: a list was given; allowed: a name or an id"},
        {R"([{"table": -1}])", "entry 1: table: -1 was given; allowed: a name or an id"},
        {R"([{"table": true}])", "entry 1: table: true was given; allowed: a name or an id"},
        {R"([{"table": "l2seg", "data": []}])",
         "entry 1 (l2seg): data: a list was given; allowed: an object of fields and values"},
        {R"([{"table": "vlan_mapping", "key": "x"}])",
         "entry 1 (vlan_mapping): key: \"x\" was given; allowed: an object of fields and values"},
    };
    for (const bad_text &c : cases) EXPECT_EQ(refusal_of(c.text), "f: " + c.words) << c.text;
}

TEST(EntryFile, LeavesCommentsAlone) {
    const auto read = entries_of(
        R"({"comment": {"a": [1, {"entries": 5}], "a": null},
            "entries": [{"comment": [{"table": 1}], "table": "mirror_rewrite",
                         "index": {"comment": "x", "index_high": 1, "index_low": 1},
                         "data": {"comment": {"x": {"y": [1.5]}}}},
                        {"table": 16, "index": "0x10"}]})");
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0].place, "f: entry 1 (mirror_rewrite)");
    EXPECT_EQ(read[1].place, "f: entry 2 (lif_mapping)");
    EXPECT_EQ(read[1].index, 16u);
}

}  // namespace
}  // namespace halden::tool
