#include <ZrHbHttpString.h>

#include <gtest/gtest.h>

#include "compose/ZrHbHttpString_Impl.h"

namespace {

struct StringWithoutState : CZrHbHttpString {
    StringWithoutState() { DeleteImpl(); }
};

TEST(HttpString, JoinsPairsInTheOrderAdded) {
    CZrHbHttpString pairs;
    EXPECT_EQ(pairs.GetPostString() + pairs.GetGetString(), "?");
    EXPECT_EQ(pairs.AddField("a", "x y", 1), 1);
    EXPECT_EQ(pairs.AddField("b &", "1&2", 0), 2);
    EXPECT_EQ(pairs.AddField("a", "%", -1), 3);
    EXPECT_EQ(pairs.AddField("", "", 1), 4);
    EXPECT_EQ(pairs.GetGetString(), "?a=x+y&b &=1&2&a=%25&=");

    CZrHbHttpString copy(pairs), assigned;
    assigned.AddField("gone", "", 0);
    assigned = pairs;
    EXPECT_EQ(pairs.Empty(), 4);
    EXPECT_EQ(pairs.Empty(), 0);
    EXPECT_EQ(copy.AddField("c", "", 0), 5);
    EXPECT_EQ(assigned.GetPostString(), "a=x+y&b &=1&2&a=%25&=");

    StringWithoutState without;
    EXPECT_EQ(without.AddField("a", "1", 0) + without.Empty(), 0);
    EXPECT_EQ(without.GetPostString() + without.GetGetString(), "?");
}

} // namespace
