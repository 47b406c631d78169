// mediatool's JSON against its schema.

#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include <nlohmann/json.hpp>

#include "tests/mediatool/command.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

using JsonView = valijson::adapters::NlohmannJsonAdapter;

class Schema {
  public:
    Schema() {
        const Json document =
            Json::parse(ReadFile(FromUtf8(SOURCE_FOLDER) / "docs" / "mediatool.schema.json"));
        valijson::SchemaParser parser(valijson::SchemaParser::kDraft7);
        parser.populateSchema(JsonView(document), schema_);
    }

    // Empty for a valid document.
    std::string Complaints(const Json& document) const {
        valijson::Validator validator;
        valijson::ValidationResults results;
        if (validator.validate(schema_, JsonView(document), &results)) return {};
        std::string text = "invalid: ";
        valijson::ValidationResults::Error error;
        while (results.popError(error)) {
            for (const std::string& part : error.context)
                text += part;
            text += ": " + error.description + "\n";
        }
        return text;
    }

  private:
    valijson::Schema schema_;
};

}  // namespace

std::string SchemaComplaints(const Json& document) {
    return Schema().Complaints(document);
}

namespace {

TEST(SchemaFile, RefusesWhatIsNoOutput) {
    EXPECT_NE(SchemaComplaints(Json::object()), "");
    EXPECT_NE(SchemaComplaints(Json{{"schema", 1}, {"command", "validate"}}), "");
}

}  // namespace
}  // namespace launcher::test
