// Module descriptions as the host reads them: the texts for people and tools that ride along with the
// pins, and the errors that name the file when one is malformed.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "patch/Catalogue.h"
#include "patch/Error.h"

using namespace kxhost;

namespace {

const char* const family = R"({"purposes": {"gui": {"Value": "the family's value", "Out": "the family's out"},
                                          "dsp": {"Value": "the audio side's value"}},
  "modules": [
   {"id": "A", "name": "First", "category": "Logic", "summary": "One line.", "guide": "logic.md",
    "gui": {"pins": [{"index": 0, "name": "Value", "datatype": "int", "direction": "in"},
                     {"index": 1, "name": "Out", "datatype": "int", "direction": "out", "purpose": "its own"},
                     {"index": 2, "name": "Other", "datatype": "int", "direction": "in"}]},
    "dsp": {"pins": [{"index": 0, "name": "Value", "datatype": "int", "direction": "in"}]}},
   {"id": "B", "gui": {"pins": [{"index": 0, "name": "Out", "datatype": "int", "direction": "out"}]}}]})";

std::string errorOf(const std::string& text) {
    try {
        Catalogue c;
        c.addText(text, "family.json");
    } catch (const HostError& e) {
        return e.what();
    }
    return "";
}

// A description of module M with one GUI pin whose fields are given as JSON text.
std::string onePin(const std::string& fields) {
    return R"({"modules": [{"id": "M", "gui": {"pins": [{"index": 0, "name": "A", )" + fields + "}]}}]}";
}

}  // namespace

TEST(Catalogue, APinsPurposeIsItsOwnElseTheFamilysForItsSideAndName) {
    Catalogue c;
    c.addText(family, "family.json");
    const ModuleInfo& a = *c.find("A");
    EXPECT_EQ(a.category, "Logic");
    EXPECT_EQ(a.summary, "One line.");
    EXPECT_EQ(a.guide, "logic.md");
    EXPECT_EQ(a.gui->pins[0].purpose, "the family's value");
    EXPECT_EQ(a.gui->pins[1].purpose, "its own");
    EXPECT_EQ(a.gui->pins[2].purpose, "");
    // The same name on the other side has that side's purpose.
    EXPECT_EQ(a.dsp->pins[0].purpose, "the audio side's value");
    // Another module of the family shares the purposes; its texts default to empty.
    const ModuleInfo& b = *c.find("B");
    EXPECT_EQ(b.gui->pins[0].purpose, "the family's out");
    EXPECT_EQ(b.category, "");
    EXPECT_EQ(b.name, "B");
}

TEST(Catalogue, TextsOfTheWrongKindAreErrorsNamingTheFile) {
    const std::string pins = R"("gui": {"pins": [{"index": 0, "name": "In", "datatype": "int", "direction": "in")";
    EXPECT_NE(errorOf(R"({"modules": [{"id": "A", "category": 3, )" + pins + "}]}}]}")
                  .find("family.json: A: \"category\" must be a string"),
              std::string::npos);
    EXPECT_NE(errorOf(R"({"modules": [{"id": "A", )" + pins + R"(, "purpose": ["x"]}]}}]})")
                  .find("\"purpose\" must be a string"),
              std::string::npos);
    EXPECT_NE(errorOf(R"({"purposes": {"audio": {}}, "modules": []})").find("family.json: \"purposes\" must map"),
              std::string::npos);
    EXPECT_NE(errorOf(R"({"purposes": {"gui": {"In": 1}}, "modules": []})").find("gui pin \"In\" must be a string"),
              std::string::npos);
    EXPECT_EQ(errorOf(R"({"purposes": {"gui": {"In": "x"}}, "modules": []})"), "");
}

// Wrong types and out-of-range numbers are the loader's own errors, naming the file and the module, not
// the JSON library's exceptions (which kxhost reports as internal errors).
TEST(Catalogue, MalformedDescriptionsNameTheFileAndTheModule) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {onePin(R"("datatype": "int", "direction": 5)"),
         R"(family.json: M gui pin 0 (A): "direction" must be "in" or "out")"},
        {R"({"modules": [{"id": "M", "name": 7, "gui": {"pins": []}}]})", R"(family.json: M: "name" must be a string)"},
        {onePin(R"("datatype": "float", "direction": "in", "default": 3e666)"),
         "family.json: malformed JSON: number overflow parsing '3e666'"},
        {onePin(R"("datatype": "float", "direction": "in", "default": -1e39)"),
         R"(family.json: M gui pin 0 (A): "default" -1e+39 is not a float value)"},
        {onePin(R"("datatype": "int", "direction": "in", "default": 2147483648)"),
         R"(family.json: M gui pin 0 (A): "default" 2147483648 is not a int value)"},
        {R"({"modules": [{"id": "M", "gui": {"pins": [{"index": 4294967296, "name": "A"}]}}]})",
         R"(family.json: M gui pin 0: needs a non-negative integer "index")"},
        {R"({"modules": [{"id": "M", "gui": {"pins": [{"index": 18446744073709551615, "name": "A"}]}}]})",
         R"(family.json: M gui pin 0: needs a non-negative integer "index")"},
    };
    for (const auto& [text, message] : cases)
        EXPECT_EQ(errorOf(text), message) << text;
    // The float range's own edges are values.
    EXPECT_EQ(errorOf(onePin(R"("datatype": "float", "direction": "in", "default": 3.4028234e38)")), "");
    EXPECT_EQ(errorOf(onePin(R"("datatype": "int", "direction": "in", "default": -2147483648)")), "");
}
