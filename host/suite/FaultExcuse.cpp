#include "host/suite/FaultExcuse.h"

#include "host/procedure/TableReader.h"
#include "host/record/Vocabulary.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vant::host {

namespace {

std::vector<std::string> KnownCalls() {
    std::vector<std::string> calls;
    for (const RecordKind& each : recordKinds) {
        if (each.service != std::string_view(service::Runner))
            calls.push_back(std::string(each.service) + ' ' + each.operation);
    }
    return calls;
}

class FaultExcuseReader : private TableReader {
public:
    explicit FaultExcuseReader(Diagnostics& found) : TableReader(found) {}

    std::vector<FaultExcuse> Read(const toml::node& node) {
        std::vector<FaultExcuse> excuses;
        const toml::table* const table = AsTable(node, "'faults'");
        if (!table)
            return excuses;
        CheckKeys(*table, "the table of faults", {"mayPass"});
        const toml::node* const list = table->get("mayPass");
        const toml::array* const tables =
            list ? AsList(*list, "'mayPass' must be a list of tables") : nullptr;
        if (tables) {
            for (const toml::node& each : *tables)
                ReadOne(each, excuses);
        }
        return excuses;
    }

private:
    void ReadOne(const toml::node& node, std::vector<FaultExcuse>& excuses) {
        const toml::table* const table = AsTable(node, "an entry of 'mayPass'");
        if (!table)
            return;
        CheckKeys(*table, "an entry of 'mayPass'", {"call", "command", "lost", "refused", "step", "why"});
        const auto name = [&](const char* key) { return OptionalName(*table, key).value_or(Located()); };
        FaultExcuse excuse{.position = PositionOf(node),
                           .call = name("call"),
                           .command = name("command"),
                           .lost = name("lost"),
                           .refused = name("refused"),
                           .step = name("step")};
        if (const auto why = RequiredName(*table, "why", excuse.position))
            excuse.why = why->text;
        const bool isOfCall = table->contains("call") || table->contains("command");
        if (isOfCall + table->contains("lost") + table->contains("refused") != 1)
            m_found.Error(excuse.position,
                          "an entry of 'mayPass' needs either 'call' or 'command' or both, or 'lost', or "
                          "'refused'");
        CheckCall(excuse.call);
        excuses.push_back(std::move(excuse));
    }

    void CheckCall(const Located& call) {
        const std::vector<std::string> known = KnownCalls();
        if (!call.text.empty() && std::find(known.begin(), known.end(), call.text) == known.end())
            m_found.Error(call.position, "there is no call " + Quoted(call.text) +
                                             ", such as 'Parameter get_Value'" +
                                             m_found.Suggest(call.text, known));
    }
};

} // namespace

bool Fits(const FaultExcuse& excuse, const Fault& fault) {
    const auto fits = [](const Located& wanted, const std::string& text) {
        return wanted.text.empty() || wanted.text == text;
    };
    if (!fits(excuse.step, fault.step))
        return false;
    switch (fault.kind) {
    case Fault::Kind::Lost:
        return excuse.lost.text == fault.subject;
    case Fault::Kind::Refused:
        return excuse.refused.text == fault.subject;
    default:
        return excuse.lost.text.empty() && excuse.refused.text.empty() && fits(excuse.call, fault.subject) &&
               fits(excuse.command, fault.command);
    }
}

std::vector<FaultExcuse> ReadFaultExcuses(const toml::node& node, Diagnostics& found) {
    return FaultExcuseReader(found).Read(node);
}

} // namespace vant::host
