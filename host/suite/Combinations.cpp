#include "host/suite/Combinations.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace vant::host {

namespace {

constexpr std::size_t open = std::numeric_limits<std::size_t>::max();

/// An option of a choice.
using Option = std::pair<std::size_t, std::size_t>;

/// The pairs of options that no combination has yet; the earlier choice comes first.
class OpenPairs {
public:
    explicit OpenPairs(const std::vector<std::size_t>& options) {
        for (std::size_t i = 0; i < options.size(); ++i)
            for (std::size_t j = i + 1; j < options.size(); ++j)
                for (std::size_t a = 0; a < options[i]; ++a)
                    for (std::size_t b = 0; b < options[j]; ++b)
                        m_pairs.insert({{i, a}, {j, b}});
    }

    bool IsEmpty() const { return m_pairs.empty(); }
    const std::pair<Option, Option>& First() const { return *m_pairs.begin(); }

    /// How many open pairs the option makes with those that the combination has.
    std::size_t CountWith(const Combination& combination, Option option) const {
        std::size_t count = 0;
        for (std::size_t i = 0; i < combination.size(); ++i) {
            if (i != option.first && combination[i] != open)
                count += m_pairs.count(std::minmax(Option{i, combination[i]}, option));
        }
        return count;
    }

    void Close(const Combination& combination) {
        for (std::size_t i = 0; i < combination.size(); ++i)
            for (std::size_t j = i + 1; j < combination.size(); ++j)
                m_pairs.erase({{i, combination[i]}, {j, combination[j]}});
    }

private:
    std::set<std::pair<Option, Option>> m_pairs;
};

} // namespace

std::vector<Combination> AllCombinations(const std::vector<std::size_t>& options) {
    std::vector<Combination> all;
    Combination current(options.size(), 0);
    for (;;) {
        all.push_back(current);
        std::size_t choice = options.size();
        while (choice > 0 && ++current[choice - 1] == options[choice - 1])
            current[--choice] = 0;
        if (choice == 0)
            return all;
    }
}

std::vector<Combination> PairCombinations(const std::vector<std::size_t>& options) {
    if (options.size() < 3)
        return AllCombinations(options);
    std::vector<Combination> chosen;
    for (OpenPairs pairs(options); !pairs.IsEmpty(); pairs.Close(chosen.back())) {
        // Begins with a pair that is open, and then takes of each choice the option that closes most.
        Combination& next = chosen.emplace_back(options.size(), open);
        const auto& [one, other] = pairs.First();
        next[one.first] = one.second;
        next[other.first] = other.second;
        for (std::size_t choice = 0; choice < options.size(); ++choice) {
            if (next[choice] != open)
                continue;
            std::size_t best = 0;
            std::size_t most = 0;
            for (std::size_t option = 0; option < options[choice]; ++option) {
                const std::size_t count = pairs.CountWith(next, {choice, option});
                if (count > most) {
                    best = option;
                    most = count;
                }
            }
            next[choice] = best;
        }
    }
    return chosen;
}

std::size_t CountCombinations(const std::vector<std::size_t>& options, std::size_t most) {
    std::size_t count = 1;
    for (const std::size_t each : options)
        count = each > most / count ? most : count * each;
    return count;
}

} // namespace vant::host
