// What an error quotes: nothing of it may act upon the terminal.

#include "tools/haldenctl/failure.h"

#include <gtest/gtest.h>

namespace halden::tool {
namespace {

TEST(Printable, LeavesTextAlone) {
    EXPECT_EQ(printable("lif_mapping \xc3\xa9 \xe2\x82\xac \xf0\x9f\x99\x82"),
              "lif_mapping \xc3\xa9 \xe2\x82\xac \xf0\x9f\x99\x82");
}

TEST(Printable, EscapesControlCharacters) {
    EXPECT_EQ(printable(std::string_view("a\0\x1b[31m\n\x7f", 9)), "a\\x00\\x1b[31m\\x0a\\x7f");
    EXPECT_EQ(printable("\xc2\x9b"
                        "31m"),
              "\\xc2\\x9b31m")
        << "the escape of eight bits";
    EXPECT_EQ(printable("\xe2\x80\xae"), "\\xe2\\x80\\xae") << "from right to left";
    EXPECT_EQ(printable("\xe2\x80\xa8"), "\\xe2\\x80\\xa8") << "a line end";
}

TEST(Printable, EscapesWhatIsNoUtf8) {
    EXPECT_EQ(printable("\xff"), "\\xff");
    EXPECT_EQ(printable("\x80 \xbf"), "\\x80 \\xbf") << "the rest of a character";
    EXPECT_EQ(printable("\xc3"), "\\xc3") << "cut short by the end";
    EXPECT_EQ(printable("\xe2\x82x"), "\\xe2\\x82x") << "cut short by another";
    EXPECT_EQ(printable("\xc0\xaf"), "\\xc0\\xaf") << "overlong";
    EXPECT_EQ(printable("\xe0\x80\xaf"), "\\xe0\\x80\\xaf") << "overlong";
    EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80") << "a surrogate";
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80") << "beyond U+10FFFF";
    EXPECT_EQ(printable("\xf5\x80\x80\x80"), "\\xf5\\x80\\x80\\x80");
}

TEST(Quotable, CutsBetweenCharacters) {
    const std::string x59(59, 'x'), x60(60, 'x');
    EXPECT_EQ(quotable(x60), x60);
    EXPECT_EQ(quotable(x60 + "y"), x60 + "...");
    EXPECT_EQ(quotable(x59 + "\xc3\xa9"), x59 + "...");
    EXPECT_EQ(quotable(std::string(100, '\x80')).size(), 4 * 56 + 3u) << "no character begins";
}

}  // namespace
}  // namespace halden::tool
