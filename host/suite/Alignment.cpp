#include "host/suite/Alignment.h"

#include <algorithm>
#include <utility>

namespace vant::host {

namespace {

/// The greedy algorithm of Myers: for each number of unpaired items, how far each diagonal can be followed.
class Aligner {
public:
    Aligner(std::span<const std::size_t> a, std::span<const std::size_t> b)
        : m_a(a), m_b(b), m_sizeA(static_cast<Place>(a.size())), m_sizeB(static_cast<Place>(b.size())) {}

    std::optional<std::vector<AlignedPair>> Align(std::size_t most) {
        const Place limit = std::min(static_cast<Place>(most), m_sizeA + m_sizeB);
        for (Place unpaired = 0; unpaired <= limit; ++unpaired) {
            if (Extend(unpaired))
                return TraceBack(unpaired);
        }
        return std::nullopt;
    }

private:
    using Place = std::ptrdiff_t;

    /// The places in `a` that are reached on the diagonals -unpaired, -unpaired + 2, ..., unpaired.
    using Front = std::vector<Place>;

    static Place& At(Front& front, Place diagonal) {
        return front[static_cast<std::size_t>(diagonal + static_cast<Place>(front.size() / 2))];
    }

    /// Where a diagonal is entered from its neighbours in the front before.
    static Place Enter(Front& before, Place unpaired, Place diagonal) {
        const bool down = diagonal == -unpaired ||
                          (diagonal != unpaired && At(before, diagonal - 1) < At(before, diagonal + 1));
        return down ? At(before, diagonal + 1) : At(before, diagonal - 1) + 1;
    }

    /// Whether the end of both sequences is reached.
    bool Extend(Place unpaired) {
        Front front(static_cast<std::size_t>(2 * unpaired + 3), -1);
        for (Place diagonal = -unpaired; diagonal <= unpaired; diagonal += 2) {
            Place inA = unpaired == 0 ? 0 : Enter(m_fronts.back(), unpaired, diagonal);
            while (inA < m_sizeA && inA - diagonal < m_sizeB &&
                   m_a[static_cast<std::size_t>(inA)] == m_b[static_cast<std::size_t>(inA - diagonal)])
                ++inA;
            At(front, diagonal) = inA;
            if (inA >= m_sizeA && inA - diagonal >= m_sizeB) {
                m_fronts.push_back(std::move(front));
                return true;
            }
        }
        m_fronts.push_back(std::move(front));
        return false;
    }

    std::vector<AlignedPair> TraceBack(Place unpaired) {
        std::vector<AlignedPair> pairs;
        Place inA = m_sizeA;
        Place inB = m_sizeB;
        const auto number = [](Place place) { return static_cast<std::size_t>(place); };
        for (; unpaired > 0; --unpaired) {
            Front& before = m_fronts[number(unpaired - 1)];
            const Place diagonal = inA - inB;
            const Place entered = Enter(before, unpaired, diagonal);
            while (inA > entered)
                pairs.push_back({number(--inA), number(--inB)});
            const bool down = diagonal == -unpaired ||
                              (diagonal != unpaired && At(before, diagonal - 1) < At(before, diagonal + 1));
            if (down)
                pairs.push_back({std::nullopt, number(--inB)});
            else
                pairs.push_back({number(--inA), std::nullopt});
        }
        while (inA > 0)
            pairs.push_back({number(--inA), number(--inB)});
        std::reverse(pairs.begin(), pairs.end());
        return pairs;
    }

    const std::span<const std::size_t> m_a;
    const std::span<const std::size_t> m_b;
    const Place m_sizeA;
    const Place m_sizeB;
    std::vector<Front> m_fronts; ///< By the number of unpaired items.
};

} // namespace

std::optional<std::vector<AlignedPair>> Align(std::span<const std::size_t> a, std::span<const std::size_t> b,
                                              std::size_t most) {
    return Aligner(a, b).Align(most);
}

} // namespace vant::host
