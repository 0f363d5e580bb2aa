#include "Core/Circuit/Dict.h"

#include "tests/unit/ErrorText.h"

#include "Core/Support/Error.h"
#include "Core/Support/TLog.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

std::string printed(const Dict& d)
{
    CaptureStdout();
    d.print();
    return GetCapturedStdout();
}

}  // namespace

TEST(DictTest, MissingEntriesThrowTheirMessages)
{
    Dict d;
    d.make_empty_dict_list("l");
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[&] { d.get_double("k", false); }, "No such double: 'k'"},
        {[&] { d.get_bool("k", false); }, "No such bool: 'k'"},
        {[&] { d.get_string("k", false); }, "No such string: 'k'"},
        {[&] { d.get_dict("k", false); }, "No such dict: 'k'"},
        {[&] { d.get_dict2("k"); }, "No such dict: 'k'"},
        {[&] { d.get_dict_list("k", false); }, "No such list: 'k'"},
        {[&] { d.get_dict_in_list("k", "n", false); }, "No such list: 'k'"},
        {[&] { d.get_dict_in_list("l", "n", false); }, "No such dict with name='n' in list 'l'"},
    };
    for (const auto& [call, message] : cases) {
        EXPECT_EQ(error_of([&] { call(); }), message);
    }
    EXPECT_TRUE(d.doubles().empty());
    EXPECT_TRUE(d.get_dict_list("l", false).empty());
}

TEST(DictTest, ListEntriesAreFoundByTheirName)
{
    Dict d;
    EXPECT_FALSE(d.has_dict_in_list("pins", "a"));
    Dict* a = d.get_dict_in_list("pins", "a", true);
    EXPECT_EQ(a->get_string("name", false), "a");
    Dict* b = d.get_dict_in_list("pins", "b", true);
    EXPECT_EQ(d.get_dict_in_list("pins", "a", false), a);
    EXPECT_TRUE(d.has_dict_in_list("pins", "b"));
    EXPECT_EQ(d.get_dict_list("pins", false), (Dict::List{a, b}));

    // A second entry of the same name is never found.
    Dict* twin = d.make_dict_in_list("pins");
    twin->set_string("name", "a");
    EXPECT_EQ(d.get_dict_in_list("pins", "a", false), a);

    EXPECT_TRUE(d.make_empty_dict_list("pins").empty());
    EXPECT_FALSE(d.has_dict_in_list("pins", "a"));
}

TEST(DictTest, CopyIsDeepAndOwnsForeignDicts)
{
    Dict foreign;
    foreign.set_string("who", "foreign");
    Dict source;
    source.set_double("d", 1.0);
    source.set_bool("b", true);
    source.set_dict("f", &foreign);
    source.make_dict("owned")->set_string("s", "x");
    source.add_dict_to_list("l", &foreign);
    source.make_dict_in_list("l")->set_double("i", 2.0);

    Dict copy(&source);
    Dict assigned;
    assigned = source;
    for (Dict* d : {&copy, &assigned}) {
        EXPECT_TRUE(d->get_bool("b", false));
        Dict* f = d->get_dict("f", false);
        EXPECT_NE(f, &foreign);
        EXPECT_EQ(f->get_string("who", false), "foreign");
        EXPECT_NE(d->get_dict2("owned"), source.get_dict2("owned"));
        ASSERT_EQ(d->get_dict_list("l", false).size(), 2u);
        EXPECT_NE(d->get_dict_list("l", false)[0], &foreign);
        EXPECT_EQ(d->get_dict_list("l", false)[1]->get_double("i", false), 2.0);
    }
    foreign.set_string("who", "changed");
    EXPECT_EQ(copy.get_dict2("f")->get_string("who", false), "foreign");

    assigned = assigned;
    EXPECT_TRUE(assigned.has_dict("owned"));
}

TEST(DictTest, ReplacedAndRemovedDictsLiveOn)
{
    Dict d;
    Dict* old_dict = d.make_dict("k");
    old_dict->set_string("s", "still here");
    d.make_dict("k");
    d.remove_dict("k");
    EXPECT_TRUE(d.is_empty());
    EXPECT_EQ(old_dict->get_string("s", false), "still here");
}

TEST(DictTest, PrintFormats)
{
    Dict empty;
    EXPECT_EQ(printed(empty), "");

    Dict only_bools;
    only_bools.set_bool("b", true);
    EXPECT_FALSE(only_bools.is_empty());
    EXPECT_EQ(printed(only_bools), "");

    Dict d;
    d.set_double("k", 2.5);
    d.set_string("s", "text");
    Dict* sub = d.make_dict("sub");
    sub->set_string("name", "inner");
    sub->make_dict("deep")->set_double("x", 10);
    Dict* entry = d.make_dict_in_list("list");
    entry->set_double("e", 1);
    d.make_dict_in_list("list");
    EXPECT_EQ(printed(d), "s: 'text'\n"
                          "k:   2.5\n"
                          "sub:\n"
                          "   name: 'inner'\n"
                          "   deep:\n"
                          "      x:  10.0\n"
                          "list (2):\n"
                          "[0]\n"
                          "   e:   1.0\n"
                          "[1]\n");

    // Under an open level, as in the dump of a port, every line moves one level deeper.
    CaptureStdout();
    {
        TLog port("port");
        only_bools.set_string("s", "x");
        only_bools.print();
    }
    EXPECT_EQ(GetCapturedStdout(), "port\n   s: 'x'\n");
}
