#include "host/procedure/BehaviourReader.h"

#include "host/procedure/Cycles.h"
#include "host/record/Value.h"
#include "host/text/Suggestion.h"

#include <array>
#include <functional>
#include <set>
#include <utility>

namespace vant::host {

namespace {

constexpr std::int64_t longestDelay = 600'000;
constexpr std::int64_t mostDecimals = 9;

const std::array<std::string_view, 7> sources = {"follows", "sum",     "threshold", "towards",
                                                 "ramp",    "changes", "sequence"};

/// Whether a key needs a source in time.
bool ActsInTime(std::string_view key) {
    return key == "delay" || key == "loads" || key == "stick" || key == "lag" || key == "rate";
}

Position PositionOfKey(const toml::table& table, std::string_view name) {
    return PositionOf(table.find(name)->first);
}

} // namespace

void BehaviourReader::ReadBehaviour(const std::string& id, const toml::table& table,
                                    EngineParameter& parameter) {
    const toml::node* const node = table.get("behaviour");
    const toml::table* const keys = node ? AsTable(*node, "'behaviour'") : nullptr;
    if (!keys)
        return;
    CheckKeys(*keys, "a behaviour",
              {"follows", "gain", "offset", "sum", "threshold", "towards", "ramp", "changes", "sequence",
               "every", "delay", "loads", "stick", "lag", "rate", "noise", "decimals"});
    if (keys->empty())
        m_found.Error(PositionOf(*node),
                      "'behaviour' is empty: say what the parameter does, or leave it out");
    if (table.contains("text"))
        m_found.Error(PositionOfKey(table, "text"), "a parameter with a 'behaviour' has no text of its own");
    CheckOneSource(*keys);
    CheckFits(*keys, parameter.value);
    Behaviour& behaviour = parameter.behaviour.emplace();
    ReadSource(id, *keys, behaviour, parameter.value);
    ReadDelay(*keys, behaviour);
    if (const toml::node* const loads = keys->get("loads"))
        ReadLoads(*loads, behaviour);
    behaviour.stick = AboveZero(*keys, "stick");
    behaviour.lag = SecondsAboveZero(*keys, "lag");
    behaviour.rate = AboveZero(*keys, "rate");
    behaviour.noise = AboveZero(*keys, "noise");
    if (const toml::node* const decimals = keys->get("decimals"))
        ReadDecimals(*decimals, behaviour, parameter.value);
}

void BehaviourReader::ReadSource(const std::string& id, const toml::table& table, Behaviour& behaviour,
                                 const Value& value) {
    if (const toml::node* const follows = table.get("follows"))
        ReadFollows(id, *follows, behaviour);
    behaviour.gain = Number(table, "gain").value_or(1);
    behaviour.offset = Number(table, "offset").value_or(0);
    if (const toml::node* const sum = table.get("sum"))
        ReadSum(id, *sum, behaviour);
    if (const toml::node* const threshold = table.get("threshold"))
        ReadThreshold(id, *threshold, behaviour, value);
    behaviour.towards = Number(table, "towards");
    if (const toml::node* const ramp = table.get("ramp"))
        ReadRamp(*ramp, behaviour, value);
    if (const toml::node* const changes = table.get("changes"))
        ReadChanges(*changes, behaviour, value);
    if (const toml::node* const sequence = table.get("sequence"))
        ReadSequence(table, *sequence, behaviour, value);
}

void BehaviourReader::ReadFollows(const std::string& id, const toml::node& node, Behaviour& behaviour) {
    const auto add = [&](const toml::node& each) {
        if (auto followed = Text(each, "the id of a parameter")) {
            behaviour.follows.push_back(followed->text);
            m_references.push_back({"follows", id, std::move(*followed)});
        }
    };
    const toml::array* const list = node.as_array();
    if (!list) {
        add(node);
        return;
    }
    if (list->empty())
        m_found.Error(PositionOf(node), "'follows' is empty: name a parameter, or leave the key out");
    for (const toml::node& each : *list)
        add(each);
}

void BehaviourReader::ReadSum(const std::string& id, const toml::node& node, Behaviour& behaviour) {
    const toml::array* const list = ListOf(node, "sum", "an input");
    if (!list)
        return;
    for (const toml::node& each : *list) {
        const toml::table* const table = AsTable(each, "an input of a sum");
        if (!table)
            continue;
        CheckKeys(*table, "an input of a sum", {"of", "gain", "offset"});
        Term& term = behaviour.sum.emplace_back();
        term.of = ReadOf(id, *table, PositionOf(each));
        term.gain = Number(*table, "gain").value_or(1);
        term.offset = Number(*table, "offset").value_or(0);
    }
}

std::string BehaviourReader::ReadOf(const std::string& id, const toml::table& table, Position owner) {
    auto of = RequiredText(table, "of", owner);
    if (!of)
        return {};
    m_references.push_back({"of", id, *of});
    return std::move(of->text);
}

void BehaviourReader::ReadThreshold(const std::string& id, const toml::node& node, Behaviour& behaviour,
                                    const Value& value) {
    const toml::table* const table = AsTable(node, "'threshold'");
    if (!table)
        return;
    CheckKeys(*table, "a threshold", {"of", "on", "off", "high", "low"});
    const Position position = PositionOf(node);
    Threshold& threshold = behaviour.threshold.emplace();
    threshold.of = ReadOf(id, *table, position);
    const auto on = RequiredNumber(*table, "on", position);
    const auto off = RequiredNumber(*table, "off", position);
    if (on && off && *on == *off)
        m_found.Error(PositionOf(*table->get("off")), "'off' must differ from 'on'");
    threshold.on = on.value_or(1);
    threshold.off = off.value_or(0);
    const auto read = [&](std::string_view key, Value& result) {
        const toml::node* const found = table->get(key);
        if (!found)
            m_found.Error(position, Quoted(key) + " is missing");
        else if (auto same = SameKind(*found, Quoted(key), value))
            result = std::move(*same);
    };
    read("high", threshold.high);
    read("low", threshold.low);
}

void BehaviourReader::ReadRamp(const toml::node& node, Behaviour& behaviour, const Value& value) {
    const toml::table* const table = AsTable(node, "'ramp'");
    if (!table)
        return;
    CheckKeys(*table, "a ramp", {"from", "to", "at", "over"});
    Ramp& ramp = behaviour.ramp.emplace();
    ramp.from = Number(*table, "from").value_or(NumberIn(value).value_or(0));
    ramp.to = RequiredNumber(*table, "to", PositionOf(node)).value_or(0);
    ramp.at = Time(*table, "at").value_or(0);
    const auto over = RequiredTime(*table, "over", PositionOf(node));
    if (over && *over == 0)
        m_found.Error(PositionOf(*table->get("over")), "'over' must be above 0 seconds");
    ramp.over = std::max<std::int64_t>(over.value_or(1), 1);
}

void BehaviourReader::ReadChanges(const toml::node& node, Behaviour& behaviour, const Value& value) {
    const toml::array* const list = ListOf(node, "changes", "a change");
    if (!list)
        return;
    for (const toml::node& each : *list) {
        const toml::table* const table = AsTable(each, "a change");
        if (!table)
            continue;
        CheckKeys(*table, "a change", {"at", "to"});
        const auto at = RequiredTime(*table, "at", PositionOf(each));
        std::optional<Value> to;
        if (const toml::node* const next = table->get("to"))
            to = SameKind(*next, "'to'", value);
        else
            m_found.Error(PositionOf(each), "'to' is missing");
        if (!at || !to)
            continue;
        if (!behaviour.changes.empty() && *at <= behaviour.changes.back().at)
            m_found.Error(PositionOf(*table->get("at")), "'at' must be later than that of the change before");
        behaviour.changes.push_back({*at, std::move(*to)});
    }
}

void BehaviourReader::ReadSequence(const toml::table& table, const toml::node& node, Behaviour& behaviour,
                                   const Value& value) {
    const toml::array* const list = ListOf(node, "sequence", "a value");
    if (!list)
        return;
    std::vector<Value> values;
    for (const toml::node& each : *list) {
        if (auto next = SameKind(each, "a value of the sequence", value))
            values.push_back(std::move(*next));
    }
    if (!table.contains("every")) {
        behaviour.sequence = std::move(values);
        return;
    }
    const auto every = Time(table, "every");
    if (every && *every == 0)
        m_found.Error(PositionOf(*table.get("every")), "'every' must be above 0 seconds");
    for (Value& each : values) {
        const auto at = static_cast<std::int64_t>(behaviour.changes.size()) * every.value_or(0);
        behaviour.changes.push_back({at, std::move(each)});
    }
}

void BehaviourReader::ReadDelay(const toml::table& table, Behaviour& behaviour) {
    const auto delay = Time(table, "delay");
    if (!delay)
        return;
    if (*delay == 0 || *delay > longestDelay)
        m_found.Error(PositionOf(*table.get("delay")), "'delay' must be above 0 and at most 600 seconds");
    behaviour.delay = *delay;
}

void BehaviourReader::ReadLoads(const toml::node& node, Behaviour& behaviour) {
    const toml::array* const list = AsList(node, "'loads' must be a list of loads");
    if (!list)
        return;
    for (const toml::node& each : *list) {
        const toml::table* const table = AsTable(each, "a load");
        if (!table)
            continue;
        CheckKeys(*table, "a load", {"at", "until", "by"});
        const auto at = RequiredTime(*table, "at", PositionOf(each));
        const auto by = RequiredNumber(*table, "by", PositionOf(each));
        const auto until = Time(*table, "until");
        if (!at || !by)
            continue;
        behaviour.loads.push_back({*at, *by});
        if (!until)
            continue;
        if (*until <= *at)
            m_found.Error(PositionOf(*table->get("until")), "'until' must be later than 'at'");
        behaviour.loads.push_back({*until, -*by});
    }
}

void BehaviourReader::ReadDecimals(const toml::node& node, Behaviour& behaviour, const Value& value) {
    const auto decimals = node.value_exact<std::int64_t>();
    if (!decimals || *decimals < 0 || *decimals > mostDecimals)
        m_found.Error(PositionOf(node), "'decimals' must be a whole number from 0 to 9");
    else if (std::holds_alternative<std::int64_t>(value))
        m_found.Error(PositionOf(node), "a parameter whose value is a whole number has no decimals");
    else
        behaviour.decimals = static_cast<int>(*decimals);
}

void BehaviourReader::ReadFails(const toml::table& table, EngineParameter& parameter) {
    const toml::node* const node = table.get("fails");
    if (!node)
        return;
    if (const auto truth = node->value_exact<bool>()) {
        parameter.fails = *truth;
        return;
    }
    const toml::table* const keys = node->as_table();
    if (!keys) {
        m_found.Error(PositionOf(*node),
                      std::string("'fails' must be true, false or a table with 'from' or 'read', not ") +
                          KindOf(*node));
        return;
    }
    CheckKeys(*keys, "a failure", {"from", "until", "read"});
    if (!keys->contains("from") && !keys->contains("read"))
        m_found.Error(PositionOf(*node), "a failure needs 'from' or 'read'");
    const auto until = Time(*keys, "until");
    if (const auto from = Time(*keys, "from")) {
        parameter.outage = Outage{*from, until};
        if (until && *until <= *from)
            m_found.Error(PositionOf(*keys->get("until")), "'until' must be later than 'from'");
    } else if (until && !keys->contains("from")) {
        m_found.Error(PositionOfKey(*keys, "until"), "'until' needs 'from'");
    }
    if (const toml::node* const read = keys->get("read")) {
        parameter.failingRead = read->value_exact<std::int64_t>();
        if (!parameter.failingRead || *parameter.failingRead < 1)
            m_found.Error(PositionOf(*read), "'read' must be a whole number above 0: 1 is the first read");
    }
}

void BehaviourReader::CheckOneSource(const toml::table& table) {
    std::set<std::pair<Position, std::string_view>, std::less<>> present;
    for (const std::string_view source : sources) {
        if (table.contains(source))
            present.emplace(PositionOfKey(table, source), source);
    }
    for (const auto& [position, source] : present) {
        if (source != present.begin()->second)
            m_found.Error(position, Quoted(source) + " excludes " + Quoted(present.begin()->second) +
                                        ": a behaviour has one source");
    }
    const auto needs = [&](std::string_view key, std::string_view source) {
        if (table.contains(key) && !HasOrMeans(table, source))
            m_found.Error(PositionOfKey(table, key), Quoted(key) + " needs " + Quoted(source));
    };
    needs("gain", "follows");
    needs("offset", "follows");
    needs("every", "sequence");
    if (table.contains("lag") && table.contains("rate"))
        m_found.Error(PositionOfKey(table, "rate"), "'lag' and 'rate' exclude each other");
    if (table.contains("towards") && !table.contains("lag") && !table.contains("rate"))
        m_found.Error(PositionOfKey(table, "towards"), "'towards' needs 'lag' or 'rate'");
}

void BehaviourReader::CheckFits(const toml::table& table, const Value& value) {
    const bool byReads = table.contains("sequence") && !table.contains("every");
    for (const std::string_view key : {"follows", "sum", "towards", "ramp", "delay", "loads", "stick", "lag",
                                       "rate", "noise", "decimals"}) {
        if (!table.contains(key))
            continue;
        if (!NumberIn(value))
            m_found.Error(PositionOfKey(table, key),
                          "only a parameter whose value is a number has " + Quoted(key));
        else if (byReads && ActsInTime(key))
            m_found.Error(PositionOfKey(table, key), Quoted(key) + " needs a sequence in time: add 'every'");
    }
}

void BehaviourReader::CheckFollowed(const std::map<std::string, EngineParameter>& parameters) {
    for (const Reference& each : m_references)
        CheckReference(each, parameters);
    CheckCircles(parameters);
}

void BehaviourReader::CheckReference(const Reference& reference,
                                     const std::map<std::string, EngineParameter>& parameters) {
    const auto& [id, position] = reference.followed;
    if (id == reference.follower) {
        m_found.Error(position, reference.key == "follows"
                                    ? "a parameter without a source follows what is written to it: leave "
                                      "'follows' out"
                                    : "a parameter cannot follow itself");
        return;
    }
    const auto followed = parameters.find(id);
    if (followed == parameters.end())
        m_found.Error(position, "there is no parameter " + Quoted(id) + m_found.Suggest(id, parameters));
    else if (!NumberIn(followed->second.value))
        m_found.Error(position, "the value of " + Quoted(id) + " is not a number, so nothing can follow it");
    else if (followed->second.behaviour && !followed->second.behaviour->sequence.empty())
        m_found.Error(position,
                      Quoted(id) + " changes when it is read, so nothing can follow it: add 'every'");
}

void BehaviourReader::CheckCircles(const std::map<std::string, EngineParameter>& parameters) {
    std::map<std::string_view, std::size_t> numbers;
    for (const auto& [id, parameter] : parameters)
        numbers.emplace(id, numbers.size());
    Graph graph(parameters.size());
    const auto forEach = [&](auto visit) {
        for (const auto& [key, follower, followed] : m_references) {
            if (follower != followed.text && numbers.contains(followed.text))
                visit(numbers[follower], numbers[followed.text], follower, followed);
        }
    };
    forEach([&](std::size_t from, std::size_t to, const std::string&, const Located&) {
        graph[from].push_back(to);
    });
    const std::vector<std::size_t> components = StrongComponents(graph);
    forEach([&](std::size_t from, std::size_t to, const std::string& follower, const Located& followed) {
        if (components[from] == components[to])
            m_found.Error(followed.position,
                          Quoted(follower) + " follows itself through " + Quoted(followed.text));
    });
}

} // namespace vant::host
