#include "desk/learning/cost_learner.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace
{

// Times of requests tell what a unit costs when their lengths differ by as much: there are a dozen units of
// overhead around those of a reply.
const int Apart = 16;
// So many of them at either end, for some may be far out.
const size_t Enough = 3;
// Lengths in a bucket differ by less than twice, so do times.
const double FarOut = 2.5;
const double Lower = 0.34;
// How far off a time may be that agrees with the others.
const double Agreement = 0.25;
// What a request costs at least, in units of its reply: with a device that takes its time for each unit, and
// otherwise, where the bytes around those of the reply count.
const double LeastRequest = 3;
const double CommonRequest = 6.5;
// Times from before so many others belong to another day.
const quint64 Lifetime = 10000;
const quint64 MaxFitDistance = 1000;

size_t bucketOf(int units)
{
    size_t bucket = 0;
    for (; units > 1; units /= 2)
        ++bucket;
    return bucket;
}

double quantileOf(std::vector<double> numbers, double share)
{
    const auto place = static_cast<std::ptrdiff_t>(share * static_cast<double>(numbers.size() - 1));
    std::nth_element(numbers.begin(), numbers.begin() + place, numbers.end());
    return numbers[static_cast<size_t>(place)];
}

double medianOf(std::vector<double> numbers)
{
    return quantileOf(std::move(numbers), 0.5);
}

// What `number` makes of each sample.
template <typename Samples, typename Number>
std::vector<double> numbersOf(const Samples &samples, Number number)
{
    std::vector<double> numbers(samples.size());
    std::transform(samples.begin(), samples.end(), numbers.begin(), number);
    return numbers;
}

} // namespace

void CostLearner::add(int units, double microseconds)
{
    std::vector<Sample> &bucket = m_buckets.at(std::min(bucketOf(units), BucketCount - 1));
    if (bucket.size() < Enough)
        m_fitAt = m_count;
    if (bucket.size() == BucketSize)
        bucket.erase(bucket.begin());
    bucket.push_back({units, microseconds, m_count});
    ++m_count;
}

const RequestCost &CostLearner::cost()
{
    if (m_count > m_fitAt) {
        fit();
        m_fitAt = m_count + std::min(m_count / 2, MaxFitDistance);
    }
    return m_cost;
}

std::optional<CostLearner::Lengths> CostLearner::wantedLengths()
{
    cost();
    return m_wanted;
}

void CostLearner::restore(const RequestCost &cost)
{
    m_start = m_cost = cost;
    m_isRestored = true;
}

void CostLearner::setStart(const RequestCost &start)
{
    if (m_isRestored)
        return;
    m_start = start;
    if (m_count == 0)
        m_cost = start;
}

// Of each bucket those that are not too old and did not take far longer than most of the others.
std::vector<CostLearner::Sample> CostLearner::goodSamples() const
{
    std::vector<Sample> good;
    for (const std::vector<Sample> &bucket : m_buckets) {
        if (bucket.empty())
            continue;
        const double longest =
            FarOut *
            quantileOf(numbersOf(bucket, [](const Sample &sample) { return sample.microseconds; }), Lower);
        std::copy_if(bucket.begin(), bucket.end(), std::back_inserter(good), [&](const Sample &sample) {
            return sample.microseconds <= longest && m_count - sample.number <= Lifetime;
        });
    }
    std::sort(good.begin(), good.end(),
              [](const Sample &left, const Sample &right) { return left.units < right.units; });
    return good;
}

void CostLearner::fit()
{
    const std::vector<Sample> samples = goodSamples();
    if (samples.empty())
        return;
    if (samples.back().units - samples.front().units >= Apart)
        fitBoth(samples);
    else
        fitInProportion(samples);
    m_wanted = wantedBeside(samples);
    m_cost.perRequest =
        std::max(m_cost.perRequest, (m_wanted ? CommonRequest : LeastRequest) * m_cost.perUnit);
    if (m_isRestored)
        m_wanted.reset();
}

// The slope is the median of those between any two that are far enough apart, which a minority of bad times
// does not move.
void CostLearner::fitBoth(const std::vector<Sample> &samples)
{
    std::vector<double> slopes;
    for (size_t i = 0; i < samples.size(); ++i) {
        for (size_t j = i + 1; j < samples.size(); ++j) {
            const int apart = samples[j].units - samples[i].units;
            if (apart >= Apart)
                slopes.push_back((samples[j].microseconds - samples[i].microseconds) / apart);
        }
    }
    m_cost.perUnit = std::max(0.0, medianOf(std::move(slopes)));
    m_cost.perRequest = medianOf(numbersOf(
        samples, [&](const Sample &sample) { return sample.microseconds - m_cost.perUnit * sample.units; }));
}

void CostLearner::fitInProportion(const std::vector<Sample> &samples)
{
    const double proportion = medianOf(numbersOf(
        samples, [&](const Sample &sample) { return sample.microseconds / m_start.of(sample.units); }));
    m_cost = {m_start.perRequest * proportion, m_start.perUnit * proportion};
}

// Only times that agree with what was made of all of them count.
std::optional<CostLearner::Lengths> CostLearner::wantedBeside(const std::vector<Sample> &samples) const
{
    std::vector<int> lengths;
    for (const Sample &sample : samples) {
        const double expected = m_cost.of(sample.units);
        if (std::abs(sample.microseconds - expected) <= Agreement * expected)
            lengths.push_back(sample.units);
    }
    if (lengths.size() >= 2 * Enough && lengths[lengths.size() - Enough] - lengths[Enough - 1] >= Apart)
        return std::nullopt;
    const int middle = samples[samples.size() / 2].units;
    return middle > Apart ? Lengths{1, middle - Apart}
                          : Lengths{middle + Apart, std::numeric_limits<int>::max()};
}
