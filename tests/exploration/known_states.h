#pragma once

#include <string>
#include <unordered_map>
#include <vector>

/// How much a run has used of what it may use.
struct Effort {
    int requests;
    int probes;

    bool isWithin(const Effort &other) const { return requests <= other.requests && probes <= other.probes; }
};

/// Every state that runs have come to, and with how little effort.
class KnownStates
{
public:
    /// False where a run has come to it before, with no more effort.
    bool add(const std::string &state, const Effort &effort)
    {
        std::vector<Effort> &efforts = m_states[state];
        for (const Effort &known : efforts) {
            if (known.isWithin(effort))
                return false;
        }
        efforts.push_back(effort);
        return true;
    }
    std::size_t size() const { return m_states.size(); }

private:
    std::unordered_map<std::string, std::vector<Effort>> m_states;
};
