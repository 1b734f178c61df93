#include "host/engine/model/LiveParameter.h"

#include "host/engine/model/Noise.h"
#include "host/record/Value.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vant::host {

namespace {

/// Keeps every sum and difference of levels finite, whatever has been written.
constexpr double greatestLevel = 1e300;

double Finite(double number) {
    return std::isnan(number) ? 0 : std::clamp(number, -greatestLevel, greatestLevel);
}

double RampAt(const Ramp& ramp, std::int64_t time, double before) {
    if (time < ramp.at)
        return before;
    if (time - ramp.at >= ramp.over)
        return ramp.to;
    return ramp.from +
           (ramp.to - ramp.from) * (static_cast<double>(time - ramp.at) / static_cast<double>(ramp.over));
}

double RoundedTo(int decimals, double number) {
    double scale = 1;
    for (int i = 0; i < decimals; ++i)
        scale *= 10;
    const double scaled = number * scale;
    // A greater number has no such decimals.
    return std::abs(scaled) < 0x1p52 ? std::nearbyint(scaled) / scale : number;
}

} // namespace

LiveParameter::LiveParameter(const std::string& id, const EngineParameter& description, std::uint64_t seed)
    : m_description(description), m_noise(NoiseStream(seed, id)), m_value(description.value),
      m_text(description.text) {}

void LiveParameter::Connect(const std::map<std::string, LiveParameter>& all) {
    if (!m_description.behaviour)
        return;
    for (const std::string& id : m_description.behaviour->Followed())
        m_followed.push_back(&all.at(id));
}

void LiveParameter::Begin() {
    if (!m_description.behaviour)
        return;
    const Behaviour& behaviour = *m_description.behaviour;
    if (behaviour.threshold) {
        m_switch.emplace(behaviour.threshold->on, behaviour.threshold->off);
        m_switch->Take(m_followed.front()->LevelAt({}));
    }
    if (behaviour.delay > 0)
        m_delayed.emplace(Finite(SourceAt(behaviour, {})), StepsUpTo(behaviour.delay));
    const bool inert = behaviour.lag > 0 || behaviour.rate > 0;
    const double value = Limited(NumberIn(m_value).value_or(0));
    if (behaviour.stick > 0)
        m_sticking.emplace(inert ? value : InputAt({}), behaviour.stick);
    if (inert)
        m_inertia.emplace(value, behaviour.lag, behaviour.rate);
}

bool LiveParameter::BeginRead(std::int64_t time) {
    ++m_reads;
    const auto& outage = m_description.outage;
    const bool out = outage && time >= outage->from && !(outage->until && time >= *outage->until);
    return !m_description.fails && !out && m_description.failingRead != m_reads;
}

Value LiveParameter::Read(const Moment& moment) const {
    const double amplitude = m_description.behaviour ? m_description.behaviour->noise : 0;
    if (!(amplitude > 0))
        return QuietValue(moment);
    const double noise = NoiseAt(m_noise, static_cast<std::uint64_t>(moment.time / engineStep));
    return Shown(Limited(LevelAt(moment) + amplitude * noise));
}

Value LiveParameter::QuietValue(const Moment& moment) const {
    if (!m_description.behaviour)
        return m_value;
    return NumberIn(m_value) ? Shown(LevelAt(moment)) : Scripted(moment.time);
}

bool LiveParameter::IsReadOnly() const noexcept {
    return m_description.readOnly || (m_description.behaviour && !m_description.behaviour->FollowsWrites());
}

bool LiveParameter::Admits(const Value& value) const {
    const auto number = NumberIn(value);
    const std::optional<double>& min = m_description.min;
    const std::optional<double>& max = m_description.max;
    // NaN fails both comparisons, and texts have no limits.
    return !number || ((!min || *number >= *min) && (!max || *number <= *max));
}

void LiveParameter::Write(Value value, std::uint64_t order) {
    m_value = std::move(value);
    m_text.reset();
    m_writtenAs = order;
}

void LiveParameter::FindMoves(std::int64_t step) {
    const auto moves = [step](const LiveParameter* each) { return each->Moves(step); };
    const auto& behaviour = m_description.behaviour;
    const bool rises =
        behaviour && behaviour->ramp && step * engineStep < behaviour->ramp->at + behaviour->ramp->over;
    m_inputMoves = rises || std::any_of(m_followed.begin(), m_followed.end(), moves);
}

void LiveParameter::AddSchedule(std::vector<std::int64_t>& times) const {
    if (!m_description.behaviour)
        return;
    for (const ScheduledValue& change : m_description.behaviour->changes)
        times.push_back(change.at);
    for (const Load& load : m_description.behaviour->loads)
        times.push_back(load.at);
}

void LiveParameter::TakeInput(std::int64_t step, std::uint64_t writes) {
    const Moment moment = {step * engineStep, writes};
    if (m_switch)
        m_switch->Take(m_followed.front()->LevelAt(moment));
    if (m_delayed)
        m_delayed->Take(Finite(SourceAt(*m_description.behaviour, moment)), step);
    if (!m_sticking && !m_inertia)
        return;
    double input = InputAt(moment);
    if (m_sticking) {
        m_sticking->Take(input);
        input = m_sticking->Number();
    }
    if (m_inertia)
        m_inertia->Follow(input, step);
}

std::int64_t LiveParameter::NextArrival() const noexcept {
    return m_delayed ? m_delayed->NextArrival() : std::numeric_limits<std::int64_t>::max();
}

double LiveParameter::LevelAt(const Moment& moment) const {
    if (m_inertia)
        return m_inertia->At(moment.time / engineStep);
    if (m_sticking)
        return m_sticking->Number();
    if (!TakesLevels())
        return m_description.behaviour ? InputAt(moment) : Limited(NumberIn(m_value).value_or(0));
    FindLevel(moment);
    return m_level->number;
}

/// Chains of parameters may be long: a loop instead of a recursion.
void LiveParameter::FindLevel(const Moment& moment) const {
    if (KnowsLevel(moment))
        return;
    std::vector<const LiveParameter*> open = {this};
    while (!open.empty()) {
        const LiveParameter& last = *open.back();
        const std::size_t count = open.size();
        if (!last.KnowsLevel(moment))
            last.AddUnknown(moment, open);
        if (open.size() > count)
            continue;
        if (!last.KnowsLevel(moment))
            last.m_level = Level{moment, last.InputAt(moment)};
        open.pop_back();
    }
}

void LiveParameter::AddUnknown(const Moment& moment, std::vector<const LiveParameter*>& open) const {
    const auto add = [&](const LiveParameter& each) {
        if (each.TakesLevels() && !each.KnowsLevel(moment))
            open.push_back(&each);
    };
    if (m_description.behaviour->sum.empty()) {
        add(Leader());
        return;
    }
    for (const LiveParameter* const each : m_followed)
        add(*each);
}

double LiveParameter::InputAt(const Moment& moment) const {
    const Behaviour& behaviour = *m_description.behaviour;
    double load = 0;
    for (const Load& each : behaviour.loads)
        load += moment.time >= each.at ? each.by : 0;
    return Limited((m_delayed ? m_delayed->Number() : SourceAt(behaviour, moment)) + load);
}

double LiveParameter::SourceAt(const Behaviour& behaviour, const Moment& moment) const {
    if (!behaviour.sum.empty())
        return SumAt(behaviour.sum, moment);
    if (!behaviour.follows.empty())
        return behaviour.gain * Leader().LevelAt(moment) + behaviour.offset;
    if (behaviour.towards)
        return *behaviour.towards;
    const double scripted = NumberIn(Scripted(moment.time)).value_or(0);
    return behaviour.ramp ? RampAt(*behaviour.ramp, moment.time, scripted) : scripted;
}

double LiveParameter::SumAt(const std::vector<Term>& terms, const Moment& moment) const {
    double sum = 0;
    for (std::size_t i = 0; i < terms.size(); ++i)
        sum += terms[i].gain * m_followed[i]->LevelAt(moment) + terms[i].offset;
    return sum;
}

const LiveParameter& LiveParameter::Leader() const {
    return **std::max_element(
        m_followed.begin(), m_followed.end(),
        [](const LiveParameter* a, const LiveParameter* b) { return a->m_writtenAs < b->m_writtenAs; });
}

const Value& LiveParameter::Scripted(std::int64_t time) const {
    const Behaviour& behaviour = *m_description.behaviour;
    if (m_switch)
        return m_switch->IsOn() ? behaviour.threshold->high : behaviour.threshold->low;
    if (!behaviour.sequence.empty()) {
        const auto last = static_cast<std::int64_t>(behaviour.sequence.size()) - 1;
        return behaviour.sequence[static_cast<std::size_t>(std::clamp<std::int64_t>(m_reads - 1, 0, last))];
    }
    const auto& changes = behaviour.changes;
    const auto next =
        std::upper_bound(changes.begin(), changes.end(), time,
                         [](std::int64_t now, const ScheduledValue& change) { return now < change.at; });
    return next == changes.begin() ? m_value : std::prev(next)->value;
}

double LiveParameter::Limited(double number) const {
    number = Finite(number);
    if (m_description.min)
        number = std::max(number, *m_description.min);
    if (m_description.max)
        number = std::min(number, *m_description.max);
    return number;
}

Value LiveParameter::Shown(double number) const {
    if (std::holds_alternative<std::int64_t>(m_value)) {
        const double whole = std::nearbyint(number);
        return static_cast<std::int64_t>(std::clamp<double>(whole, std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max()));
    }
    const auto& decimals = m_description.behaviour->decimals;
    return decimals ? RoundedTo(*decimals, number) : number;
}

} // namespace vant::host
