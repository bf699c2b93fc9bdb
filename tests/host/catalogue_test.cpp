#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "patch/Catalogue.h"
#include "patch/Error.h"

using namespace kxhost;

namespace {

// The message of the error reading text as "d.json" raises, or "" when it reads.
std::string errorOf(const std::string& text) {
    try {
        Catalogue c;
        c.addText(text, "d.json");
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

// Wrong types and out-of-range numbers are the loader's own errors, naming the file and the module, not
// the JSON library's exceptions (which kxhost reports as internal errors).
TEST(Catalogue, MalformedDescriptionsNameTheFileAndTheModule) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {onePin(R"("datatype": "int", "direction": 5)"),
         R"(d.json: M gui pin 0 (A): "direction" must be "in" or "out")"},
        {R"({"modules": [{"id": "M", "name": 7, "gui": {"pins": []}}]})", R"(d.json: M: "name" must be text)"},
        {onePin(R"("datatype": "float", "direction": "in", "default": 3e666)"),
         "d.json: malformed JSON: number overflow parsing '3e666'"},
        {onePin(R"("datatype": "float", "direction": "in", "default": -1e39)"),
         R"(d.json: M gui pin 0 (A): "default" -1e+39 is not a float value)"},
        {onePin(R"("datatype": "int", "direction": "in", "default": 2147483648)"),
         R"(d.json: M gui pin 0 (A): "default" 2147483648 is not a int value)"},
        {R"({"modules": [{"id": "M", "gui": {"pins": [{"index": 4294967296, "name": "A"}]}}]})",
         R"(d.json: M gui pin 0: needs a non-negative integer "index")"},
        {R"({"modules": [{"id": "M", "gui": {"pins": [{"index": 18446744073709551615, "name": "A"}]}}]})",
         R"(d.json: M gui pin 0: needs a non-negative integer "index")"},
    };
    for (const auto& [text, message] : cases)
        EXPECT_EQ(errorOf(text), message) << text;
    // The float range's own edges are values.
    EXPECT_EQ(errorOf(onePin(R"("datatype": "float", "direction": "in", "default": 3.4028234e38)")), "");
    EXPECT_EQ(errorOf(onePin(R"("datatype": "int", "direction": "in", "default": -2147483648)")), "");
}
