#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "patch/Parser.h"
#include "patch/Registry.h"

using namespace kxhost;
using kxhosttest::testCatalogue;

namespace {

Patch parse(const std::string& text) { return parsePatchText(text, "p.kxp", testCatalogue()); }

// The message of the error parsing text raises, or "" when it parses.
std::string errorOf(const std::string& text) {
    try {
        parse(text);
    } catch (const HostError& e) {
        return e.what();
    }
    return "";
}

const std::string twoAdders = "instance a T_AddOne\ninstance b T_AddOne\n";

}  // namespace

TEST(PatchTokens, QuotesBracketsAndCommentsStayTogether) {
    const auto tokens = tokenize(R"(set p."Count V1" "a \"b\" # c\u{e9}" [00 ff]  # comment)", {"f", 1});
    ASSERT_EQ(tokens.size(), 4u);
    EXPECT_EQ(tokens[1].raw, "p.\"Count V1\"");
    EXPECT_FALSE(tokens[1].quoted);
    EXPECT_TRUE(tokens[2].quoted);
    EXPECT_EQ(tokens[2].text, "a \"b\" # c\xc3\xa9");
    EXPECT_EQ(tokens[3].raw, "[00 ff]");
    EXPECT_THROW(tokenize("set a.In \"open", {"f", 1}), HostError);
    EXPECT_THROW(tokenize("set a.In \"\\q\"", {"f", 1}), HostError);
    EXPECT_THROW(tokenize("set a.In \"\\u{d800}\"", {"f", 1}), HostError);
}

TEST(PatchParser, ResolvesPinsByNameQuotedNameAndIndex) {
    const Patch p =
        parse("instance p T_HostProbe\nscenario\nexpect p.Count 9\nexpect p.\"Count V1\" 9\nexpect p.7 0\n");
    ASSERT_EQ(p.scenario.size(), 3u);
    EXPECT_EQ(p.label({"p", Side::Gui, 1}), "p.\"Count V1\"");
    EXPECT_EQ(p.label({"p", Side::Gui, 7}), "p.Size");
}

TEST(PatchParser, EveryMistakeNamesFileAndLine) {
    EXPECT_EQ(errorOf("instance a T_Nope"), "p.kxp:1: unknown identifier 'T_Nope': no module description names it");
    EXPECT_EQ(errorOf(twoAdders + "set c.In 1"), "p.kxp:3: no instance named 'c'");
    EXPECT_EQ(errorOf(twoAdders + "set a.Nope 1"), "p.kxp:3: T_AddOne (gui) has no pin named \"Nope\"");
    EXPECT_EQ(errorOf(twoAdders + "\n\nset a.5 1"), "p.kxp:5: T_AddOne (gui) has no pin 5");
    EXPECT_EQ(errorOf(twoAdders + "set a.In 1.5"), "p.kxp:3: 1.5 is not an int");
    EXPECT_EQ(errorOf(twoAdders + "set a.In \"1\""), "p.kxp:3: \"1\" is not an int");
    EXPECT_EQ(errorOf(twoAdders + "set a.In 4294967296"), "p.kxp:3: 4294967296 does not fit in 32 bits");
    EXPECT_EQ(errorOf("instance t T_EchoText\nset t.Text hello"),
              "p.kxp:2: hello is not text (text values are quoted: \"like this\")");
    EXPECT_EQ(errorOf("instance p T_HostProbe\nset p.Unbound [0f 1]"),
              "p.kxp:2: [0f 1] is not a blob (hex bytes in brackets: [00 ff 10])");
    EXPECT_EQ(errorOf("instance a T_AddOne\ninstance a T_AddOne"), "p.kxp:2: the name 'a' is already used");
    EXPECT_EQ(errorOf("instance a T_AddOne dsp"), "p.kxp:1: T_AddOne has no dsp side in its description");
    EXPECT_EQ(errorOf("frobnicate"), "p.kxp:1: unknown directive 'frobnicate'");
    EXPECT_EQ(errorOf("expect a.In 1"), "p.kxp:1: 'expect' is a step: it belongs after a 'scenario' line");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nwire a.Out -> b.In"),
              "p.kxp:4: 'wire' belongs before the 'scenario' line");
    EXPECT_EQ(errorOf("option echo maybe"), "p.kxp:1: option echo is on or off, not 'maybe'");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nexpect a.Out 1 within 0.5"),
              "p.kxp:4: usage: expect TARGET VALUE within TOLERANCE (for float pins)");
    EXPECT_EQ(errorOf("resources no/such/folder").rfind("p.kxp:1: resource folder ", 0), 0u);
    // The standard library's regular expression compiler overflows on large counts: refused before it.
    const std::string text = "instance t T_EchoText\nscenario\nexpect-match t.Text ";
    EXPECT_EQ(errorOf(text + "\"^a{8888888888888888888}\""),
              "p.kxp:3: not a regular expression this host takes: ^a{8888888888888888888} (8888888888888888888 is "
              "above the largest repetition count or group number, 1000)");
    EXPECT_NE(errorOf(text + "\"a{2,1001}\"").find("(1001 is above"), std::string::npos);
    EXPECT_NE(errorOf(text + "\"(a)\\\\99999\"").find("(99999 is above"), std::string::npos);
    EXPECT_EQ(errorOf(text + "\"^[{99999}]\\\\{5,1000}\\\\d{3}$\""), "");
}

TEST(PatchParser, WiresCheckTypesAndFanOutInOrder) {
    EXPECT_EQ(errorOf("instance a T_AddOne\ninstance t T_EchoText\nwire a.Out -> t.Text"),
              "p.kxp:3: cannot wire a.Out (int) to t.Text (text)");
    EXPECT_EQ(errorOf(twoAdders + "wire a.Out -> a.Out"), "p.kxp:3: a wire from a.Out to itself");
    EXPECT_EQ(errorOf(twoAdders + "wire a.Out -> b.In\nwire a.Out -> b.In"),
              "p.kxp:4: a.Out is already wired to b.In at line 3");
    const Patch p = parse(twoAdders + "instance c T_AddOne\nwire a.Out -> c.In b.In\n");
    ASSERT_EQ(p.wires.size(), 2u);
    EXPECT_EQ(p.wires[0].to.instance, "c");
    EXPECT_EQ(p.wires[1].to.instance, "b");
}

TEST(PatchParser, ParametersBindPinsOfOneTypeOnce) {
    EXPECT_EQ(errorOf("instance a T_AddOne\ninstance t T_EchoText\nparam x a.In t.Text"),
              "p.kxp:3: parameter 'x' is int but t.Text is text");
    EXPECT_EQ(errorOf(twoAdders + "param x a.In\nparam y a.In b.In"),
              "p.kxp:4: a.In is already bound to parameter 'x'");
    EXPECT_EQ(errorOf(twoAdders + "param x a.In\nset x \"3\""), "p.kxp:4: \"3\" is not an int");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nset y 3"),
              "p.kxp:4: no parameter named 'y' (pins are written instance.Pin)");
}

TEST(PatchParser, UnknownKeywordsReachRegisteredHandlers) {
    static int layouts = 0;
    static bool added = Directives::add("test-layout",
                                        [](Parser& p, const Line& line) {
                                            ++layouts;
                                            p.patch.extensions["test-layout"] = line.tokens.size();
                                        }) &&
                        Steps::add("test-step", [](Parser&, const Line&) -> Action { return [](Session&) {}; });
    ASSERT_TRUE(added);
    const Patch p = parse("test-layout a b\nscenario\ntest-step\n");
    EXPECT_EQ(layouts, 1);
    EXPECT_EQ(std::any_cast<size_t>(p.extensions.at("test-layout")), 3u);
    ASSERT_EQ(p.scenario.size(), 1u);
    EXPECT_EQ(p.scenario[0].name, "test-step");
}

TEST(PatchParser, InstancesTakeAPinCountAndACreationTime) {
    const Patch p = parse("instance a T_AddOne later pins 1\ninstance b T_AddOne pins 2\n");
    EXPECT_TRUE(p.instances[0].later);
    EXPECT_EQ(p.instances[0].side(Side::Gui)->pins.size(), 1u);
    EXPECT_FALSE(p.instances[1].later);
    EXPECT_EQ(errorOf("instance a T_AddOne pins 1\nset a.Out 1"), "p.kxp:2: T_AddOne (gui) has no pin named \"Out\"");
    EXPECT_EQ(errorOf("instance a T_AddOne pins -1"), "p.kxp:1: T_AddOne takes 0 to 2 gui pins, not -1");
    EXPECT_EQ(errorOf("instance a T_AddOne later gui"),
              "p.kxp:1: usage: instance NAME IDENTIFIER [gui|dsp|both] [pins N] [later]");
    EXPECT_EQ(errorOf("instance a T_AddOne pins"),
              "p.kxp:1: usage: instance NAME IDENTIFIER [gui|dsp|both] [pins N] [later]");
}

TEST(PatchParser, ALastPinTheHostDuplicatesGivesNamedCopies) {
    Catalogue c;
    c.addText(R"({"modules": [{"id": "S", "name": "S", "gui": {"pins": [
        {"index": 0, "name": "Common", "datatype": "int", "direction": "in"},
        {"index": 1, "name": "Extra", "datatype": "int", "direction": "in", "autoDuplicate": true,
         "echo": false}]}}]})",
              "s.json");
    const Patch p = parsePatchText("instance s S pins 4\nscenario\nset s.\"Extra 3\" 1\n", "p.kxp", c);
    const auto& pins = p.instances[0].side(Side::Gui)->pins;
    ASSERT_EQ(pins.size(), 4u);
    EXPECT_EQ(pins[3].index, 3);
    EXPECT_EQ(pins[3].name, "Extra 3");
    EXPECT_FALSE(pins[3].echo) << "copies are like the pin they copy";
    EXPECT_EQ(parsePatchText("instance s S pins 0\n", "p.kxp", c).instances[0].side(Side::Gui)->pins.size(), 0u);
    EXPECT_THROW(c.addText(R"({"modules": [{"id": "T", "name": "T", "gui": {"pins": [
        {"index": 0, "name": "A", "datatype": "int", "direction": "in", "echo": "no"}]}}]})",
                           "t.json"),
                 HostError);
}

TEST(PatchParser, OrderAndPlacesAreCheckedBeforeAnythingRuns) {
    EXPECT_EQ(errorOf(twoAdders + "scenario\nexpect-order a.Out 1 then"),
              "p.kxp:4: expect-order needs an item before and after each 'then'");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nexpect-order a.Out 1 2"),
              "p.kxp:4: an item is written PIN [VALUE] [at SAMPLE], not 'a.Out 1 2'");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nexpect-order a.Out at 3"),
              "p.kxp:4: 'at' is for dsp pins, and a.Out is not one");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nexpect-message a sideways 0"),
              "p.kxp:4: a message goes to-dsp or to-gui, not 'sideways'");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nexpect-sent a.Out 3 1"), "p.kxp:4: expect-sent needs 0 <= MIN <= MAX");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nexpect_sent a.Out 3 1"), "p.kxp:4: expect_sent needs 0 <= MIN <= MAX");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nmenu a x 1"), "p.kxp:4: x is not a float");
    EXPECT_EQ(errorOf(twoAdders + "scenario\nfile-dialog c answer \"x\""), "p.kxp:4: no instance named 'c'");
}

TEST(PatchTokens, ABareColourIsAWordAndAnyOtherHashAComment) {
    const auto colour = tokenize("panel 160 110 #303038   # the background", {"f", 1});
    ASSERT_EQ(colour.size(), 4u);
    EXPECT_EQ(colour[3].text, "#303038");
    EXPECT_EQ(tokenize("panel 1 1 #FF303038", {"f", 1}).size(), 4u);
    EXPECT_EQ(tokenize("panel 1 1 #30303", {"f", 1}).size(), 3u) << "five digits are a comment";
    EXPECT_EQ(tokenize("panel 1 1 #303038x", {"f", 1}).size(), 3u);
    EXPECT_EQ(tokenize("#abcdef", {"f", 1}).size(), 1u);
}

// Names are found through indexes, not by scanning what was declared before: forty thousand instances
// with a wire and a parameter each once took seconds. The test is the size, not a timing.
TEST(PatchParser, FortyThousandNamesResolve) {
    constexpr int n = 40000;
    std::string text;
    for (int i = 0; i < n; ++i)
        text += "instance a" + std::to_string(i) + " T_AddOne\n";
    for (int i = 0; i + 1 < n; ++i)
        text += "wire a" + std::to_string(i) + ".Out -> a" + std::to_string(i + 1) + ".In\n";
    for (int i = 0; i < n; i += 2)
        text += "param p" + std::to_string(i) + " a" + std::to_string(i) + ".In\n";
    const Patch p = parse(text);
    EXPECT_EQ(p.instances.size(), size_t(n));
    EXPECT_EQ(p.wires.size(), size_t(n - 1));
    ASSERT_NE(p.instance("a39999"), nullptr);
    EXPECT_EQ(p.instance("a39999")->name, "a39999");
    ASSERT_NE(p.paramOf({"a39998", Side::Gui, 0}), nullptr);
    EXPECT_EQ(p.paramOf({"a39998", Side::Gui, 0})->name, "p39998");
    EXPECT_EQ(p.paramOf({"a39999", Side::Gui, 0}), nullptr);

    // The small cases above check each kind of repeat; here one at the end of the large patch.
    EXPECT_EQ(errorOf(text + "wire a5.Out -> a6.In"), "p.kxp:" + std::to_string(2 * n - 1 + n / 2 + 1) +
                                                          ": a5.Out is already wired to a6.In at line " +
                                                          std::to_string(n + 6));
}
