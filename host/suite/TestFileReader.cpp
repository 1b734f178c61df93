#include "host/suite/TestFileReader.h"

#include "host/procedure/InputFile.h"
#include "host/procedure/TableReader.h"
#include "host/suite/ExpectationReader.h"
#include "host/suite/SweepReader.h"
#include "platform/Utf8.h"

#include <set>
#include <utility>

namespace vant::host {

namespace {

class TestFileReader : private TableReader {
public:
    TestFileReader(const std::string& file, Diagnostics& found) : TableReader(found), m_file(file) {}

    std::vector<TestCase> Read(const toml::table& root) {
        CheckKeys(root, "a test file",
                  {"case", "procedure", "engine", "data", "parameters", "answers", "tags", "seed", "maxTime",
                   "expected", "faults"});
        TestCase defaults;
        defaults.file = m_file;
        ReadKeys(root, defaults);
        const toml::node* const list = root.get("case");
        if (!list) {
            if (!HasOrMeans(root, "case"))
                m_found.Error({}, "there is no [[case]]");
            return {};
        }
        if (const toml::array* const cases = AsList(*list, "'case' must be a list of tables, as in [[case]]"))
            for (const toml::node& each : *cases)
                ReadCase(each, defaults);
        return std::move(m_cases);
    }

private:
    void ReadCase(const toml::node& node, const TestCase& defaults) {
        const toml::table* const table = AsTable(node, "a case");
        if (!table)
            return;
        CheckKeys(*table, "a case",
                  {"name", "procedure", "engine", "data", "parameters", "answers", "tags", "seed", "maxTime",
                   "expected", "faults", "sweep"});
        TestCase read = defaults;
        read.position = PositionOf(*table);
        if (const auto name = RequiredName(*table, "name", read.position)) {
            read.name = name->text;
            if (!m_names.insert(read.name).second)
                m_found.Error(name->position, "there is already a case " + Quoted(read.name));
        }
        ReadKeys(*table, read);
        if (read.procedure.text.empty() && !HasOrMeans(*table, "procedure"))
            m_found.Error(read.position, "'procedure' is missing, here and at the top of the file");
        if (const toml::node* const sweep = table->get("sweep")) {
            if (const Sweep values = ReadSweep(*sweep, m_found); !values.swept.empty())
                for (TestCase& each : Expand(read, values))
                    m_cases.push_back(std::move(each));
        } else {
            m_cases.push_back(std::move(read));
        }
    }

    /// The keys that the file itself may have for all cases, too.
    void ReadKeys(const toml::table& table, TestCase& target) {
        if (auto procedure = OptionalName(table, "procedure"))
            target.procedure = Beside(std::move(*procedure));
        if (auto engine = OptionalName(table, "engine"))
            target.engine = Beside(std::move(*engine));
        ReadValues(table, "data", target.data);
        ReadValues(table, "parameters", target.parameters);
        if (const toml::node* const answers = table.get("answers"))
            target.answers = ReadAnswerList(*answers, "answers", m_found);
        ForEach(table, "tags", [&](const toml::key& key, const toml::node& node) {
            if (const auto text = Text(node, "tag " + Quoted(key.str())))
                target.tags.insert_or_assign(std::string(key.str()), text->text);
        });
        if (const auto seed = OptionalCount(table, "seed", 0))
            target.seed = seed;
        if (const auto maxTime = OptionalDuration(table, "maxTime")) {
            if (*maxTime == 0)
                m_found.Error(PositionOf(*table.get("maxTime")), "'maxTime' must be above 0");
            target.maxTime = maxTime;
        }
        if (const toml::node* const faults = table.get("faults"))
            target.mayPass = ReadFaultExcuses(*faults, m_found);
        if (const toml::node* const expected = table.get("expected")) {
            target.hasExpectation = true;
            ReadExpectation(*expected, target.expected, m_found);
        }
    }

    void ReadValues(const toml::table& table, std::string_view key,
                    std::map<std::string, GivenValue>& values) {
        ForEach(table, key, [&](const toml::key& name, const toml::node& node) {
            if (auto value = Scalar(node, Quoted(name.str())))
                values.insert_or_assign(std::string(name.str()),
                                        GivenValue{std::move(*value), PositionOf(name)});
        });
    }

    Located Beside(Located name) const {
        name.text = FileName(PathFromUtf8(m_file).parent_path() / PathFromUtf8(name.text));
        return name;
    }

    const std::string m_file;
    std::vector<TestCase> m_cases;
    std::set<std::string> m_names;
};

} // namespace

std::vector<TestCase> ReadTestFile(std::string_view toml, const std::string& file, Diagnostics& found) {
    const auto root = ParseToml(toml, found);
    return root ? TestFileReader(file, found).Read(*root) : std::vector<TestCase>();
}

} // namespace vant::host
